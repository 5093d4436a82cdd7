#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

namespace platform {

class FileService;

/// A bundle's information dictionary lies in Contents/Info.plist; that of one version of a framework in
/// Resources/Info.plist. Public document: Apple's "Bundle Programming Guide".
enum class BundleLayout { contents, frameworkVersion };

/// The information dictionary of the bundle folder at `path`; nothing for a folder without one, or with one
/// that cannot be read as a dictionary. Any thread.
[[nodiscard]] std::optional<QVariantMap> informationDictionary(const FileService &files, const QString &path,
                                                               BundleLayout layout = BundleLayout::contents);

/// The text under a key of that dictionary; null if there is none.
[[nodiscard]] QString informationText(const FileService &files, const QString &path, const QString &key,
                                      BundleLayout layout = BundleLayout::contents);

/// The bundle's identifier; null if it has none.
[[nodiscard]] QString bundleIdentifier(const FileService &files, const QString &path);

} // namespace platform
