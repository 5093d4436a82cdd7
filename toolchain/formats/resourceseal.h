#pragma once

#include "formats/bundle.h"
#include "formats/sealedtree.h"

#include <QList>

namespace toolchain {

/// Which digests "files2" carries; "files" carries SHA-1 always.
enum class SealDigests { Sha1AndSha256, Sha256Only };

struct SealResult {
    QByteArray data; ///< the seal as an XML property list; empty on failure
    QString error;
};

/// The seal of a tree: everything but the main executable, what lies outside of all seals and what the
/// rules omit.
/// Public document: Apple's Technical Note TN2206, macOS Code Signing In Depth.
[[nodiscard]] SealResult makeSeal(const SealedTree &tree, const QString &executable, SealDigests digests);

/// One way in which files and seal differ.
struct SealProblem {
    QString path; ///< relative to the folder that the seal starts from; empty if the seal itself is meant
    QString message; ///< "a sealed resource is missing or invalid", "file added", ...
};

/// Compares a seal with a tree; no problems means that they agree. A seal that cannot be read, and one
/// that seals nested code by its code directory's digest, which nothing here can recompute, is a problem.
[[nodiscard]] QList<SealProblem> checkSeal(const QByteArray &seal, const SealedTree &tree,
                                           const QString &executable);

/// Reads a bundle's seal and files and compares them.
[[nodiscard]] QList<SealProblem> checkSealOf(const Bundle &bundle);

/// The SHA-256 of the bundle's seal in lower-case hexadecimal digits, by which a notary knows the bundle;
/// empty if there is no seal to read.
[[nodiscard]] QByteArray sealDigest(const Bundle &bundle);

} // namespace toolchain
