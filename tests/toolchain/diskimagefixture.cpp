#include "toolchain/diskimagefixture.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

ToolResult DiskImageFixture::create(const QString &source, const QString &image) const
{
    return run(hdiutil,
               {u"create"_s, image, u"-format"_s, u"UDZO"_s, u"-ov"_s, u"-volName"_s, u"My App"_s, u"-fs"_s,
                u"HFS+"_s, u"-srcfolder"_s, source, u"-plist"_s, u"-verbose"_s});
}

QString DiskImageFixture::imageOf(const QString &source) const
{
    QDir().mkpath(path(u"images"_s));
    const QString image = path(u"images/"_s) + QFileInfo(source).completeBaseName() + u".dmg"_s;
    const ToolResult result = create(source, image);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    return image;
}

ToolResult DiskImageFixture::attach(const QString &image) const
{
    return run(hdiutil, {u"attach"_s, u"-noverify"_s, u"-noidmereveal"_s, u"-noautoopen"_s, image});
}

QString DiskImageFixture::mountPointIn(const ToolResult &attached)
{
    return attached.output.mid(attached.output.lastIndexOf(u'\t') + 1).trimmed();
}

ToolResult DiskImageFixture::runProgram(const QString &program, const QStringList &arguments) const
{
    const ToolResult result = run(u"env"_s, QStringList{u"LC_ALL=C.UTF-8"_s, program} + arguments);
    EXPECT_EQ(result.status, 0) << program.toStdString() << ": " << result.error.toStdString()
                                << result.output.toStdString();
    return result;
}

QString DiskImageFixture::diskOf(const QString &image) const
{
    const QString disk = image + u".disk"_s;
    (void)runProgram(u"dmg2img"_s, {u"-s"_s, image, disk});
    return disk;
}

QString DiskImageFixture::volumeOf(const QString &image) const
{
    const QString volume = image + u".volume"_s;
    (void)runProgram(u"dmg2img"_s, {u"-s"_s, u"-p"_s, u"4"_s, image, volume});
    return volume;
}

QMap<QString, QMap<QString, QString>> DiskImageFixture::listed(const QString &image) const
{
    QMap<QString, QMap<QString, QString>> items;
    QString item;
    const ToolResult list = runProgram(u"7z"_s, {u"-thfs"_s, u"l"_s, u"-slt"_s, volumeOf(image)});
    const QString behindArchive = list.output.section(u"\n----------\n"_s, 1);
    for (const QString &line : behindArchive.split(u'\n')) {
        const QString value = line.section(u" = "_s, 1);
        if (line.startsWith(u"Path = "_s))
            item = value.section(u'/', 1);
        else if (!line.isEmpty())
            items[item][line.section(u" = "_s, 0, 0)] = value;
    }
    return items;
}

QString DiskImageFixture::unpacked(const QString &image) const
{
    const QString folder = image + u".unpacked"_s;
    (void)runProgram(u"7z"_s, {u"-thfs"_s, u"x"_s, u"-o"_s + folder, volumeOf(image)});
    return folder + u"/My App"_s;
}

QStringList DiskImageFixture::namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}
