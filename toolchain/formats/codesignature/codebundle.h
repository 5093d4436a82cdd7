#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

#include "platform/result.h"

namespace toolchain::codesignature {

/// Why something is no code that can be read: the sentences of Apple's codesign.
namespace text {
inline const QString notSigned = QStringLiteral("code object is not signed at all");
inline const QString badBundle = QStringLiteral("bundle format unrecognized, invalid, or unsuitable");
inline const QString badObject = QStringLiteral("object file format unrecognized, invalid, or unsuitable");
inline const QString badImage = QStringLiteral("disk image format unrecognized, invalid, or unsuitable");
inline const QString badFormat = QStringLiteral("invalid or unsupported format for signature");
inline const QString invalidSignature =
    QStringLiteral("invalid signature (code or signature have been modified)");
inline const QString badResourceFolder =
    QStringLiteral("invalid resource directory (directory or signature have been modified)");
inline const QString noResources =
    QStringLiteral("code has no resources but signature indicates they must be present");
inline const QString badInfo = QStringLiteral("invalid Info.plist (plist or signature have been modified)");
inline const QString requirementFailed =
    QStringLiteral("code failed to satisfy specified code requirement(s)");
inline const QString nestedModified = QStringLiteral("nested code is modified or invalid");
inline const QString tooLarge =
    QStringLiteral("signature too large to embed (size limitation of on-disk representation)");
inline const QString unsealedRoot = QStringLiteral("unsealed contents present in the bundle root");
inline const QString unsealedFrameworkRoot =
    QStringLiteral("unsealed contents present in the root directory of an embedded framework");
inline const QString notRegular =
    QStringLiteral("the main executable or Info.plist must be a regular file (no symlinks, etc.)");
inline const QString badFrameworkVersion =
    QStringLiteral("embedded framework contains modified or invalid version");
inline const QString strictExecutable = QStringLiteral("main executable failed strict validation");
inline const QString ambiguousBundle =
    QStringLiteral("bundle format is ambiguous (could be app or framework)");
inline const QString badLink = QStringLiteral("invalid destination for symbolic link in bundle");
inline const QString detritus =
    QStringLiteral("resource fork, Finder information, or similar detritus not allowed");
inline const QString badEntitlements = QStringLiteral("invalid entitlement plist");
} // namespace text

enum class BundleLayout {
    contents, ///< everything is below a folder Contents
    frameworkVersion, ///< a version of a framework, with its Info.plist in Resources
    flat ///< Info.plist and executable lie in the bundle's own folder
};

/// A bundle as code signing sees it. Paths begin as the bundle's own was given and have no slash at the end.
/// Public document: Apple's Bundle Programming Guide, "Bundle Structures".
struct CodeBundle {
    QString root; ///< the folder that was given
    QString base; ///< the folder that the seal's paths start from
    BundleLayout layout = BundleLayout::contents;
    QVariantMap info; ///< the Info.plist
    QString infoPath;
    QString executable; ///< relative to base; empty for a bundle without one

    /// CFBundleIdentifier, else CFBundleName; empty without both.
    [[nodiscard]] QString identifier() const;
    /// The file that the code directory describes: the executable, or the Info.plist where there is none.
    [[nodiscard]] QString mainFile() const;
    [[nodiscard]] QString sealFolder() const;
    [[nodiscard]] QString sealPath() const;
    [[nodiscard]] bool isFramework() const;
    /// "app bundle" or "bundle".
    [[nodiscard]] QString kindText() const;
};

/// Finds out how a folder is laid out, and reads its Info.plist. The error is one of the sentences above,
/// without the folder's name: for one that is no bundle, that could be two kinds of bundle, or whose
/// executable is missing or no plain file.
[[nodiscard]] platform::Result<CodeBundle> readCodeBundle(const QString &path);

/// The bundle that a file is the executable of, which stands for it wherever code is named: Apple's tools
/// sign, show and verify the bundle if they are given its executable. None for any other file.
[[nodiscard]] std::optional<CodeBundle> bundleOfExecutable(const QString &path);

} // namespace toolchain::codesignature
