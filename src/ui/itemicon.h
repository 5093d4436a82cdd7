#pragma once

#include <QByteArray>
#include <QIcon>
#include <QString>

#include <optional>

namespace platform {
class FileService;
}

/// What stands for an item where its name does.
namespace itemicon {

/// The largest picture of an icon file that is a PNG; nothing if it has none or is no icon file.
/// Format: Apple's Icon Image (.icns): "icns", the file's length, then elements of a type, a length and data,
/// all lengths of 32 bits, big-endian, and counting their own eight bytes.
[[nodiscard]] std::optional<QByteArray> pictureIn(const QByteArray &icns);

/// The icon of the item at the path: a bundle's own, else that of its kind. Main thread; reads a file.
[[nodiscard]] QIcon iconOf(const platform::FileService &files, const QString &path);

} // namespace itemicon
