#pragma once

#include <QByteArray>
#include <QString>

namespace sealwright::examine {

enum class ItemKind;

/// What an installer package or a disk image calls itself; each empty where it says nothing.
struct Product {
    QString identifier; ///< of a package
    QString version; ///< of a package
    QString volume; ///< the name of the first volume that an image has and that can be read

    bool operator==(const Product &) const = default;
};

/// Reads the few facts, none of the contents. Nothing for items of other kinds. The identifier is that of the
/// product, else that of the one component.
[[nodiscard]] Product productOf(const QString &item, ItemKind kind);

/// Of a PackageInfo, or of a Distribution. Texts that are too long for a line, or have control characters,
/// are none. Public document: Apple's "Distribution Definition XML Schema Reference", product and pkg-ref;
/// pkgbuild(1). Pure.
[[nodiscard]] Product productIn(const QByteArray &xml);

} // namespace sealwright::examine
