#pragma once

#include "toolchain/toolfixture.h"

#include <QMap>

/// A test with disk images, which it makes with the tool and looks into with programs that know nothing of
/// it.
class DiskImageFixture : public ToolFixture {
protected:
    static inline const QString hdiutil = QStringLiteral("/usr/bin/hdiutil");

    /// Makes an image with the arguments that the application uses; the volume is called "My App".
    [[nodiscard]] ToolResult create(const QString &source, const QString &image) const;

    /// The same as an expectation, and the image's path.
    [[nodiscard]] QString imageOf(const QString &source) const;

    /// Attaches an image with the arguments that the application uses.
    [[nodiscard]] ToolResult attach(const QString &image) const;

    /// The last tab-separated field of what attach printed.
    [[nodiscard]] static QString mountPointIn(const ToolResult &attached);

    /// Runs a program of the host in a locale of UTF-8. It is expected to succeed.
    [[nodiscard]] ToolResult runProgram(const QString &program, const QStringList &arguments) const;

    /// The whole disk of an image, or one of its partitions, in a file that dmg2img has written.
    [[nodiscard]] QString diskOf(const QString &image) const;
    [[nodiscard]] QString volumeOf(const QString &image) const;

    /// What 7z tells of each item on the volume, by its path behind the volume's name; the value is a map as
    /// 7z prints it ("Mode", "Size", "Modified").
    [[nodiscard]] QMap<QString, QMap<QString, QString>> listed(const QString &image) const;

    /// The folder into which 7z has unpacked the volume.
    [[nodiscard]] QString unpacked(const QString &image) const;

    /// Every name in a folder, hidden ones too.
    [[nodiscard]] static QStringList namesIn(const QString &folder);
};
