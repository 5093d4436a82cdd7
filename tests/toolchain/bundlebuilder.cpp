#include "toolchain/bundlebuilder.h"

#include "toolchain/machobuilder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace bundlebuilder {

namespace {

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
    MachORecipe recipe;
    recipe.architecture = architecture;
    recipe.order = order;
    return machO(recipe);
}

QByteArray universalMachO(bool hasWideHeader)
{
    return universalOf({thinMachO(x86_64), thinMachO(arm64)}, hasWideHeader);
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
