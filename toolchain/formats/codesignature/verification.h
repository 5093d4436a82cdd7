#pragma once

#include "formats/codesignature/cmsreader.h"
#include "formats/codesignature/requirement.h"
#include "formats/codesignature/signaturereader.h"

#include <QStringList>

#include <functional>

namespace toolchain::codesignature {

enum class Strictness { usual, strict };

/// What is to be verified beside the code itself.
struct VerificationOrder {
    Strictness strictness = Strictness::usual;
    QByteArray requirement; ///< a blob that the code has to meet; empty: none
    QString architecture; ///< the one slice of Mach-O code that is looked at; empty: all
    TrustStore store = TrustStore::ofThisMachine();
    /// Told of nested code, by its absolute path, before and after it has been looked at; may be empty.
    std::function<void(const QString &path)> prepared;
    std::function<void(const QString &path)> validated;
};

/// The first thing that is wrong with code.
struct CodeProblem {
    QString text; ///< a sentence of codebundle.h; empty: nothing is
    QString subcomponent; ///< the absolute path of the nested code that is meant; empty: the code itself
    QString architecture; ///< of the slice that is meant; empty: all, or none
    QStringList files; ///< "file modified: PATH" and so on, absolute
    QString detail; ///< the reason behind it, where there is more to say

    [[nodiscard]] bool isNone() const { return text.isEmpty(); }
};

/// A judgement on code.
struct Verification {
    CodeProblem problem;
    std::optional<SignedCode> code; ///< as far as it could be read
    std::optional<CmsJudgement> signer; ///< of the native slice; none if it is ad hoc
    bool meetsDesignatedRequirement = false; ///< asked only of code without a problem
    bool meetsRequirement = true; ///< the one of the order
};

/// Verifies an item with everything that is nested in it: code directories and CMS signatures, the files that
/// special slots stand for, every page of every slice, the seal, nested code by its requirement. A signer
/// whose chain ends nowhere is no problem by itself, as long as signature and chain hold; what it ends in
/// stands in the judgement.
[[nodiscard]] Verification verifyCode(const QString &path, const VerificationOrder &order);

/// The judgement on the signature of one part, which is no ad hoc one.
[[nodiscard]] CmsJudgement judgePart(const SignedPart &part, const TrustStore &store);

/// What a requirement is asked of: the native slice of code and its signer.
[[nodiscard]] RequirementSubject requirementSubject(const SignedCode &code,
                                                    const std::optional<CmsJudgement> &signer);

} // namespace toolchain::codesignature
