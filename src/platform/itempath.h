#pragma once

#include <QString>
#include <QUrl>

/// The parts of an item's path, as the folder names and tool arguments are made of them. A path has no slash
/// at its end. An extension stands behind the last dot of the last component; a dot at its start or end
/// begins none.
namespace itempath {

/// The path of a file URL, without a slash at its end.
[[nodiscard]] QString fromUrl(const QUrl &url);
[[nodiscard]] QUrl toUrl(const QString &path);

/// The absolute path without steps that are empty, "." or "..". What lies before the last ".." is the real
/// folder then: behind a link ".." is not what its letters say, and a step into the item and back would go
/// with the item.
[[nodiscard]] QString withoutDots(const QString &path);

[[nodiscard]] QString lastComponent(const QString &path);
[[nodiscard]] QString folder(const QString &path);
/// Without the dot; empty if there is none.
[[nodiscard]] QString extension(const QString &path);
[[nodiscard]] QString lowerExtension(const QString &path);
[[nodiscard]] QString withoutExtension(const QString &path);
[[nodiscard]] QString appending(const QString &folder, const QString &component);
/// With "~" in place of the user's home folder.
[[nodiscard]] QString abbreviatedWithTilde(const QString &path);

} // namespace itempath
