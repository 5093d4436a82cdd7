#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace bundlebuilder {

struct Architecture {
    std::uint32_t cpu = 0;
    bool is64Bit = true;
};

inline constexpr Architecture x86_64{0x01000007, true};
inline constexpr Architecture arm64{0x0100000c, true};
inline constexpr Architecture i386{7, false};
inline constexpr Architecture powerPC{18, false};

enum class ByteOrder { little, big };

/// An executable that can be signed, of a few pages.
QByteArray thinMachO(Architecture architecture, ByteOrder order = ByteOrder::little);

/// A universal file with x86_64 and arm64 slices.
QByteArray universalMachO(bool hasWideHeader = false);

/// Writes a file, with the folders above it.
void writeFile(const QString &path, const QByteArray &bytes);
QByteArray readFile(const QString &path);

/// An Info.plist that names an executable and an identifier.
QByteArray infoPropertyList(const QString &executable, const QString &identifier);

/// An app with an executable, localized and plain resources, a hidden file that seals omit and a framework
/// with a version folder and the usual links. Its executable is called as the app is.
void makeApp(const QString &path, const QString &identifier);

/// The framework's version folder inside such an app.
QString frameworkVersionOf(const QString &appPath);

} // namespace bundlebuilder
