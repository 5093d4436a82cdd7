#pragma once

#include <QByteArray>
#include <QPixmap>
#include <QString>

#include <optional>

namespace platform {
class FileService;
}

namespace sealwright {

/// What stands for an item where its name does.
namespace itemicon {

/// The largest picture of an icon file that is a PNG; nothing if it has none or is no icon file.
/// Format: Apple's Icon Image (.icns): "icns", the file's length, then elements of a type, a length and data,
/// all lengths of 32 bits, big-endian, and counting their own eight bytes.
[[nodiscard]] std::optional<QByteArray> pictureIn(const QByteArray &icns);

/// The picture of the item at the path, so many points wide: a bundle's own icon, else the name of its kind
/// on a coloured square; an empty place for no path. Main thread; reads a file.
[[nodiscard]] QPixmap pictureOf(const platform::FileService &files, const QString &path, int side);

/// The name of a kind, which is its extension, on a coloured square so many points wide; an empty place for
/// no kind. Main thread.
[[nodiscard]] QPixmap pictureOfKind(const QString &kind, int side);

} // namespace itemicon

} // namespace sealwright
