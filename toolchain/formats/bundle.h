#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace toolchain {

/// A bundle folder as code signing sees it. All paths are absolute or relative as the bundle's own path
/// was given, with no slash at the end.
/// Public document: Apple's Bundle Programming Guide, "Bundle Structures".
struct Bundle {
    QString base; ///< the folder that a seal's paths start from: Contents, or a framework's version folder
    QString identifier; ///< CFBundleIdentifier, else the folder's name without its extension
    QString executable; ///< the main executable relative to base; empty if the bundle names none

    [[nodiscard]] QString sealFolder() const;
    [[nodiscard]] QString sealPath() const;
    [[nodiscard]] QString executablePath() const;

    /// Where a stapled ticket lies.
    [[nodiscard]] QString ticketPath() const;
};

/// Recognises a bundle with a Contents folder, a framework's version folder, or a framework by its
/// current version. Answers nothing for anything else, and for a bundle whose Info.plist cannot be read,
/// whose main executable is missing, or which is no framework and names no main executable.
[[nodiscard]] std::optional<Bundle> readBundle(const QString &path);

/// CFBundleExecutable of an Info.plist's bytes; empty if there is none or it is not a plain file name.
[[nodiscard]] QString executableName(const QByteArray &infoPropertyList);

} // namespace toolchain
