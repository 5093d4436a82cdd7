#include "formats/codesignature/verification.h"

#include "formats/codesignature/bundleroot.h"
#include "formats/codesignature/designation.h"
#include "formats/codesignature/detritus.h"
#include "formats/codesignature/entitlementsder.h"
#include "formats/codesignature/partcheck.h"
#include "formats/codesignature/sealedbundle.h"
#include "formats/fileattributes.h"
#include "formats/resourceseal/sealcheck.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace toolchain::codesignature {

namespace {

constexpr int deepestNesting = 32;

QList<::toolchain::DirectoryDigest> directoryDigests(const SignedPart &part)
{
    QList<::toolchain::DirectoryDigest> digests;
    for (const CodeDirectory &directory : part.directories)
        digests.append({int(directory.fields().hashType), directory.digest()});
    return digests;
}

bool isMet(const QByteArray &requirement, const RequirementSubject &subject)
{
    return meetsRequirement(requirement, subject).valueOr(false);
}

CodeProblem problemWith(const QString &text)
{
    CodeProblem problem;
    problem.text = text.section(u'\n', 0, 0);
    problem.detail = text.section(u'\n', 1);
    return problem;
}

/// Whether one slice meets the designated requirement in its own signature.
bool meetsItsOwn(SignedCode code, qsizetype part, const std::optional<CmsJudgement> &signer)
{
    code.parts = {code.parts[part]};
    code.image.reset();
    const auto designated = designatedRequirementOf(code);
    return designated && isMet(*designated, requirementSubject(code, signer));
}

/// The folders of a versioned framework's other versions, beside the one that is current.
QStringList otherVersionsOf(const CodeBundle &bundle)
{
    const QString folder = bundle.root + u"/Versions"_s;
    if (bundle.layout != BundleLayout::frameworkVersion || !QFileInfo(folder).isDir())
        return {};
    QStringList versions;
    const auto entries =
        QDir(folder).entryInfoList(QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.filePath() != QDir::cleanPath(bundle.base))
            versions.append(entry.filePath());
    }
    return versions;
}

class Verifier {
public:
    Verifier(const VerificationOrder &order, int depth)
        : m_order(order)
        , m_depth(depth)
    {
    }

    Verification verify(const QString &path)
    {
        auto code = readSignedCode(path);
        if (!code) {
            m_result.problem = problemWith(code.error());
            return m_result;
        }
        m_result.code = *std::move(code);
        for (const auto step : {&Verifier::checkParts, &Verifier::checkRoot, &Verifier::checkResources,
                                &Verifier::checkRequirements}) {
            if (m_result.problem.isNone())
                (this->*step)();
        }
        return m_result;
    }

private:
    void checkParts()
    {
        const SignedCode &code = *m_result.code;
        if (!m_order.architecture.isEmpty())
            return checkPartOf(m_order.architecture);
        // The native slice first: its problem is the one that the machine would meet.
        checkPartAt(code.nativeIndex());
        for (qsizetype part = 0; part < code.parts.size(); ++part) {
            if (m_result.problem.isNone() && part != code.nativeIndex())
                checkOtherPart(part);
        }
    }

    void checkPartOf(const QString &architecture)
    {
        const SignedCode &code = *m_result.code;
        for (qsizetype part = 0; part < code.parts.size(); ++part) {
            if (m_result.problem.isNone() && code.parts[part].architecture == architecture)
                checkPartAt(part);
        }
    }

    std::optional<CmsJudgement> checkPartAt(qsizetype part)
    {
        std::optional<CmsJudgement> signer;
        m_result.problem = checkPart(*m_result.code, part, m_order, signer);
        if (part == m_result.code->nativeIndex())
            m_result.signer = signer;
        return signer;
    }

    /// Where the machine's own slice is what its requirement says, the others must be what theirs say: else
    /// nothing tells of a change in their certificates.
    void checkOtherPart(qsizetype part)
    {
        const SignedCode &code = *m_result.code;
        const auto signer = checkPartAt(part);
        if (!m_result.problem.isNone() || !meetsItsOwn(code, code.nativeIndex(), m_result.signer)
            || meetsItsOwn(code, part, signer))
            return;
        m_result.problem = problemWith(text::requirementFailed);
        m_result.problem.architecture = code.parts[part].architecture;
    }

    void checkRoot()
    {
        if (m_order.strictness == Strictness::usual)
            return;
        const SignedCode &code = *m_result.code;
        // What lies in nested code has been looked at with the item that it is nested in.
        const QString detritus = m_depth == 0 ? detritusIn(code.path) : QString();
        if (!detritus.isEmpty())
            m_result.problem = problemWith(text::detritus + u'\n' + detritusDetail(detritus));
        else if (code.bundle)
            m_result.problem = problemWith(unsealedRootOf(*code.bundle));
    }

    void checkResources()
    {
        const SignedCode &code = *m_result.code;
        if (!code.bundle)
            return;
        const auto seal = seal::readSealFile(code.bundle->base);
        if (!seal) {
            m_result.problem = problemWith(text::noResources);
            return;
        }
        const auto strictness =
            m_order.strictness == Strictness::strict ? seal::Strictness::strict : seal::Strictness::usual;
        const auto problems = seal::checkSeal(
            *seal, sealedFolder(*code.bundle), strictness,
            [this](const QString &path, const seal::Entry &entry) { return nested(path, entry); });
        if (!problems.isEmpty())
            m_result.problem = combined(problems);
    }

    /// What is wrong with files of the bundle comes before what is wrong with the code inside.
    CodeProblem combined(const QList<seal::Problem> &problems) const
    {
        CodeProblem result;
        for (const seal::Problem &problem : problems) {
            const bool isFirst = result.isNone();
            if (isFirst && problem.kind == seal::ProblemKind::nested && m_nested)
                result = *m_nested;
            else if (isFirst) {
                result.text = problem.text;
                result.detail = problem.detail;
            }
            if (isFirst && problem.kind == seal::ProblemKind::nested && !m_nested)
                result.subcomponent = problem.path;
            if (!problem.line().isEmpty() && !result.files.contains(problem.line()))
                result.files.append(problem.line());
        }
        return result;
    }

    QString nested(const QString &path, const seal::Entry &entry)
    {
        if (m_depth >= deepestNesting)
            return text::nestedModified;
        if (m_order.prepared)
            m_order.prepared(path);
        VerificationOrder order = m_order;
        order.requirement.clear();
        order.architecture.clear();
        Verification inner = Verifier(order, m_depth + 1).verify(path);
        if (inner.problem.isNone() && !fitsEntry(inner, entry))
            inner.problem = problemWith(text::nestedModified);
        if (inner.problem.isNone())
            inner.problem = otherVersionsProblem(*inner.code);
        if (!inner.problem.isNone() && inner.problem.subcomponent.isEmpty())
            inner.problem.subcomponent = path;
        if (!inner.problem.isNone() && !m_nested)
            m_nested = inner.problem;
        if (inner.problem.isNone() && m_order.validated)
            m_order.validated(path);
        return inner.problem.text;
    }

    /// Strict: what is signed of a framework's other versions holds. The seal says nothing of them, so one
    /// that nobody has signed is no failure here.
    [[nodiscard]] CodeProblem otherVersionsProblem(const SignedCode &code) const
    {
        if (m_order.strictness == Strictness::usual || !code.bundle)
            return {};
        VerificationOrder order = m_order;
        order.requirement.clear();
        for (const QString &version : otherVersionsOf(*code.bundle)) {
            const CodeProblem problem = Verifier(order, m_depth + 1).verify(version).problem;
            if (!problem.isNone() && (problem.text != text::notSigned || !problem.subcomponent.isEmpty()))
                return problemWith(text::badFrameworkVersion + u'\n' + version + u": "_s + problem.text);
        }
        return {};
    }

    static bool fitsEntry(const Verification &inner, const seal::Entry &entry)
    {
        const auto requirement = compileRequirement(entry.requirement);
        return requirement && isMet(*requirement, requirementSubject(*inner.code, inner.signer));
    }

    void checkRequirements()
    {
        const RequirementSubject subject = requirementSubject(*m_result.code, m_result.signer);
        const auto designated = designatedRequirementOf(*m_result.code);
        m_result.meetsDesignatedRequirement = designated && isMet(*designated, subject);
        if (!m_order.requirement.isEmpty())
            m_result.meetsRequirement = isMet(m_order.requirement, subject);
    }

    const VerificationOrder &m_order;
    int m_depth;
    Verification m_result;
    std::optional<CodeProblem> m_nested; ///< the first one, with all that is known of it
};

} // namespace

CmsJudgement judgePart(const SignedPart &part, const TrustStore &store)
{
    CmsJudgement judgement;
    const auto signature = readCms(part.cms());
    if (!signature) {
        judgement.problem = signature.error();
        return judgement;
    }
    SignedContent content;
    content.digest = [&part](QCryptographicHash::Algorithm algorithm) {
        return QCryptographicHash::hash(part.primary().bytes(), algorithm);
    };
    content.directories = directoryDigests(part);
    return judgeCms(*signature, content, TrustPurpose::codeSigning, store);
}

RequirementSubject requirementSubject(const SignedCode &code, const std::optional<CmsJudgement> &signer)
{
    RequirementSubject subject;
    subject.identifier = code.native().best().fields().identifier;
    subject.cdHashes = cdHashesOf(code);
    if (code.bundle)
        subject.info = code.bundle->info;
    subject.entitlements = readEntitlements(code.native().entitlements()).valueOr({});
    if (!signer)
        return subject;
    subject.chain = signer->trust.chain;
    const Anchor anchor = signer->trust.anchor;
    subject.endsInApplesRoot = anchor == Anchor::apple;
    subject.isTrusted = [anchor, last = subject.chain.size() - 1](qsizetype index) {
        return index == last && (anchor == Anchor::apple || anchor == Anchor::thisMachine);
    };
    return subject;
}

Verification verifyCode(const QString &path, const VerificationOrder &order)
{
    return Verifier(order, 0).verify(QDir::cleanPath(QDir::current().absoluteFilePath(path)));
}

} // namespace toolchain::codesignature
