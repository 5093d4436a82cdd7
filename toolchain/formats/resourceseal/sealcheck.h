#pragma once

#include "formats/resourceseal/bundlescan.h"
#include "formats/resourceseal/sealformat.h"

#include <QList>

#include <functional>

namespace toolchain::seal {

enum class ProblemKind {
    modified, ///< "file modified: PATH"
    added, ///< "file added: PATH"
    missing, ///< "file missing: PATH"
    nested, ///< of nested code; "In subcomponent: PATH"
    badSeal, ///< the seal or the folder cannot be read
    badLink, ///< strict: a link that leads out of the bundle
    obsolete ///< strict: rules that omit more than usual, or a seal of the first version
};

/// One way in which files and seal differ.
struct Problem {
    ProblemKind kind = ProblemKind::modified;
    QString path; ///< as the base is given, of the item; of the seal for BadSeal and Obsolete
    QString text; ///< what codesign says of the bundle or, for Nested, of the subcomponent
    QString detail; ///< the reason behind it where there is more to say; codesign has no place for it

    /// "file modified: PATH" and so on; null for the kinds that have no such line.
    [[nodiscard]] QString line() const;
};

/// Judges one item of nested code that the seal names; answers codesign's text of what is wrong with it, or
/// an empty text. Called on the caller's thread.
using VerifyNested = std::function<QString(const QString &path, const Entry &entry)>;

enum class Strictness { usual, strict };

/// Compares a seal's bytes with the files of a bundle by the seal's own rules, and answers all problems, the
/// digests being made on all cores. None means that they agree.
[[nodiscard]] QList<Problem> checkSeal(const QByteArray &sealBytes, const SealedFolder &folder,
                                       Strictness strictness, const VerifyNested &verify);

/// The seal of a bundle; fails with "code object is not signed at all" where there is none, and names a file
/// that is a link, no regular file or too large. `base` is the folder that holds `_CodeSignature`.
[[nodiscard]] platform::Result<QByteArray> readSealFile(const QString &base);

} // namespace toolchain::seal
