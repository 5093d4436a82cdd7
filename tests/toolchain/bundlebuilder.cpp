#include "toolchain/bundlebuilder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace bundlebuilder {

namespace {

QByteArray number(std::uint32_t value, ByteOrder order)
{
    const std::uint32_t ordered = order == ByteOrder::Little ? qToLittleEndian(value) : qToBigEndian(value);
    return {reinterpret_cast<const char *>(&ordered), sizeof ordered};
}

/// A slice's header in a universal file.
QByteArray sliceHeader(Architecture architecture, std::uint32_t offset, std::uint32_t length, bool isWide)
{
    const auto big = ByteOrder::Big;
    if (!isWide)
        return number(architecture.cpu, big) + number(0, big) + number(offset, big) + number(length, big)
            + number(0, big);
    return number(architecture.cpu, big) + number(0, big) + number(0, big) + number(offset, big)
        + number(0, big) + number(length, big) + number(0, big) + number(0, big);
}

void makeExecutable(const QString &path)
{
    QFile::setPermissions(path,
                          QFile::permissions(path) | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther);
}

void makeFramework(const QString &path, const QString &name)
{
    const QString version = path + u"/Versions/A/"_s;
    writeFile(version + name, thinMachO(arm64));
    makeExecutable(version + name);
    writeFile(version + u"Resources/Info.plist"_s, infoPropertyList(name, u"com.example."_s + name));
    QFile::link(u"A"_s, path + u"/Versions/Current"_s);
    QFile::link(u"Versions/Current/"_s + name, path + u'/' + name);
}

} // namespace

QByteArray thinMachO(Architecture architecture, ByteOrder order)
{
    constexpr std::uint32_t executable = 2;
    QByteArray bytes = number(architecture.is64Bit ? 0xfeedfacf : 0xfeedface, order)
        + number(architecture.cpu, order) + number(0, order) + number(executable, order) + number(0, order)
        + number(0, order) + number(0, order);
    if (architecture.is64Bit)
        bytes += number(0, order);
    return bytes + "code";
}

QByteArray universalMachO(bool hasWideHeader)
{
    const QByteArray first = thinMachO(x86_64);
    const QByteArray second = thinMachO(arm64);
    const auto firstLength = static_cast<std::uint32_t>(first.size());
    const auto secondLength = static_cast<std::uint32_t>(second.size());
    constexpr std::uint32_t start = 256;
    QByteArray bytes = number(hasWideHeader ? 0xcafebabf : 0xcafebabe, ByteOrder::Big)
        + number(2, ByteOrder::Big) + sliceHeader(x86_64, start, firstLength, hasWideHeader)
        + sliceHeader(arm64, start + firstLength, secondLength, hasWideHeader);
    bytes.append(start - bytes.size(), '\0');
    return bytes + first + second;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray infoPropertyList(const QString &executable, const QString &identifier)
{
    return u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
           "<key>CFBundleExecutable</key><string>%1</string>"
           "<key>CFBundleIdentifier</key><string>%2</string></dict></plist>\n"_s.arg(executable, identifier)
               .toUtf8();
}

void makeApp(const QString &path, const QString &identifier)
{
    const QString contents = path + u"/Contents/"_s;
    const QString name = QFileInfo(path).completeBaseName();
    writeFile(contents + u"Info.plist"_s, infoPropertyList(name, identifier));
    writeFile(contents + u"MacOS/"_s + name, universalMachO());
    makeExecutable(contents + u"MacOS/"_s + name);
    writeFile(contents + u"Resources/Größe.txt"_s, "resource");
    writeFile(contents + u"Resources/en.lproj/Main.strings"_s, "localized");
    writeFile(contents + u"Resources/.DS_Store"_s, "of the Finder");
    makeFramework(contents + u"Frameworks/Inner.framework"_s, u"Inner"_s);
}

QString frameworkVersionOf(const QString &appPath)
{
    return appPath + u"/Contents/Frameworks/Inner.framework/Versions/A"_s;
}

} // namespace bundlebuilder
