#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QMap>
#include <QString>

/// The extended attributes of a file as macOS knows them, whatever keeps them here: the file system under
/// names with "user." in front, or, where it has no room or knows no attributes, an AppleDouble file "._NAME"
/// beside NAME, as macOS does on file systems without attributes. Links are never followed. Any thread.
namespace toolchain {

/// Values by macOS's names, such as com.apple.cs.CodeDirectory, com.apple.ResourceFork and
/// com.apple.FinderInfo.
using FileAttributes = QMap<QByteArray, QByteArray>;

/// All attributes of a file, a folder or a link; what lies beside it counts before what the file system has.
/// Empty where a file has none.
[[nodiscard]] platform::Result<FileAttributes> readAttributes(const QString &path);

/// Sets an attribute, in the file beside where the file system refuses it for want of room. An error names
/// the file.
[[nodiscard]] platform::Outcome writeAttribute(const QString &path, const QByteArray &name,
                                               const QByteArray &value);

/// Removes an attribute from wherever it lies; one that is not there is no failure.
[[nodiscard]] platform::Outcome removeAttribute(const QString &path, const QByteArray &name);

/// The path of the AppleDouble file that belongs to a file: FOLDER/._NAME.
[[nodiscard]] QString sidecarOf(const QString &path);

/// Whether a file is the AppleDouble file of a neighbour that is there: it is called ._NAME and begins as
/// such files do. Seals, archives, images and packages take it for NAME's attributes and not for a file of
/// its own.
[[nodiscard]] bool isSidecar(const QString &path);

} // namespace toolchain
