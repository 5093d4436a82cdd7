#pragma once

#include "formats/resourceseal/bundlescan.h"
#include "formats/resourceseal/madeseal.h"

#include <QList>

#include <functional>

namespace toolchain::seal {

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

/// The bundle's seal, with all digests made, on all cores. Nothing is written. An error names the item;
/// that of nested code is its text, a line end and "In subcomponent: PATH", as codesign prints it behind the
/// bundle's path. A link that leads out of the bundle is an error.
[[nodiscard]] platform::Result<MadeSeal> collectSeal(const SealedFolder &folder, Digests digests,
                                                     const DescribeNested &describe);

/// The same as the bytes of `_CodeSignature/CodeResources`.
[[nodiscard]] platform::Result<QByteArray> makeSeal(const SealedFolder &folder, Digests digests,
                                                    const DescribeNested &describe);

} // namespace toolchain::seal
