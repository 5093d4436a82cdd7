#pragma once

#include "formats/resourceseal/bundlescan.h"
#include "formats/resourceseal/sealformat.h"

#include <QList>

#include <functional>

namespace toolchain::seal {

/// Which digests the entries under "files2" carry; those under "files" are SHA-1 always.
enum class Digests { Sha1, Sha256, Sha1AndSha256 };

/// How a seal names nested code.
struct NestedCode {
    QByteArray cdHash; ///< 20 bytes of the best code directory's digest
    QString requirement; ///< the text of its designated requirement
};

/// Asked for each item of nested code, by its path; an error is a text of codesign's such as "code object is
/// not signed at all".
using DescribeNested = std::function<platform::Result<NestedCode>(const QString &path)>;

/// What the seal of a bundle will name as nested code: paths as the base is given, in the order in which they
/// have to be signed.
[[nodiscard]] platform::Result<QList<QString>> nestedCodeIn(const SealedFolder &folder);

/// The bytes of the bundle's `_CodeSignature/CodeResources`. Nothing is written. An error names the item;
/// that of nested code is its text, a line end and "In subcomponent: PATH", as codesign prints it behind the
/// bundle's path. A link that leads out of the bundle is an error.
[[nodiscard]] platform::Result<QByteArray> makeSeal(const SealedFolder &folder, Digests digests,
                                                    const DescribeNested &describe);

} // namespace toolchain::seal
