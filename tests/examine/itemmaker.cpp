#include "examine/itemmaker.h"

#include "examine/codefiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

#include <archive.h>
#include <archive_entry.h>

#include <sys/stat.h>
#include <unistd.h>

#include <climits>

using namespace Qt::StringLiterals;

namespace {

/// As it stands in the link.
QString targetOf(const QString &link)
{
    QByteArray target(PATH_MAX, Qt::Uninitialized);
    const auto length =
        readlink(QFile::encodeName(link).constData(), target.data(), std::size_t(target.size()));
    EXPECT_GE(length, 0);
    return QFile::decodeName(target.first(qMax(length, ssize_t(0))));
}

} // namespace

ItemMaker::ItemMaker(const QString &architecture)
{
    info(u"Contents"_s, u"Foo"_s, u"com.example.foo"_s);
    code(u"Contents/MacOS/Foo"_s, codefiles::executable(architecture));
    file(u"Contents/PkgInfo"_s, "APPL????");
    file(u"Contents/Resources/en.lproj/InfoPlist.strings"_s, "/* nothing */");
}

void ItemMaker::rename(const QString &name)
{
    EXPECT_TRUE(QFile::rename(item(), m_folder.filePath(name)));
    m_name = name;
}

void ItemMaker::file(const QString &name, const QByteArray &bytes, int mode) const
{
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path(name)).path()));
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    file.write(bytes);
    file.close();
    chmod(QFile::encodeName(path(name)).constData(), mode_t(mode));
}

void ItemMaker::link(const QString &name, const QString &target) const
{
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path(name)).path()));
    EXPECT_EQ(symlink(QFile::encodeName(target).constData(), QFile::encodeName(path(name)).constData()), 0);
}

void ItemMaker::remove(const QString &name) const
{
    EXPECT_TRUE(QFileInfo(path(name)).isDir() ? QDir(path(name)).removeRecursively()
                                              : QFile::remove(path(name)));
}

void ItemMaker::bundle(const QString &name, const QByteArray &executable) const
{
    const QString base = QFileInfo(name).completeBaseName();
    if (QFileInfo(name).suffix() != "framework"_L1) {
        info(name + u"/Contents"_s, base, u"com.example."_s + base.toLower());
        return code(name + u"/Contents/MacOS/"_s + base, executable);
    }
    info(name + u"/Versions/A/Resources"_s, base, u"com.example."_s + base.toLower());
    code(name + u"/Versions/A/"_s + base, executable);
    link(name + u"/Versions/Current"_s, u"A"_s);
    link(name + u'/' + base, u"Versions/Current/"_s + base);
    link(name + u"/Resources"_s, u"Versions/Current/Resources"_s);
}

void ItemMaker::info(const QString &name, const QString &executable, const QString &identifier) const
{
    file(name + u"/Info.plist"_s,
         u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
         u"version=\"1.0\"><dict><key>CFBundleExecutable</key>"
         "<string>%1</string><key>CFBundleIdentifier</key><string>%2</string><key>CFBundlePackageType</key>"
         "<string>APPL</string><key>CFBundleVersion</key><string>1.0</string></dict></plist>\n"_s
             .arg(executable, identifier)
             .toUtf8());
}

QByteArray ItemMaker::archiveBytes(const QString &extension, const QList<Packed> &files) const
{
    const QString place = m_folder.filePath(u"archive"_s);
    ::archive *writer = archive_write_new();
    if (extension.startsWith("tar"_L1) || extension == "tgz"_L1)
        archive_write_set_format_pax_restricted(writer);
    else if (extension == "cpio.gz"_L1)
        archive_write_set_format_cpio(writer);
    else if (extension == "xar"_L1)
        archive_write_set_format_xar(writer);
    else
        archive_write_set_format_zip(writer);
    if (extension == "tgz"_L1 || extension.endsWith(".gz"_L1))
        archive_write_add_filter_gzip(writer);
    EXPECT_EQ(archive_write_open_filename(writer, QFile::encodeName(place).constData()), ARCHIVE_OK);
    for (const Packed &packed : files) {
        archive_entry *entry = archive_entry_new();
        archive_entry_set_pathname(entry, packed.name.toUtf8().constData());
        archive_entry_set_filetype(entry, packed.target.isEmpty() ? AE_IFREG : AE_IFLNK);
        if (!packed.target.isEmpty())
            archive_entry_set_symlink(entry, packed.target.toUtf8().constData());
        archive_entry_set_perm(entry, 0755);
        archive_entry_set_size(entry, packed.bytes.size());
        EXPECT_EQ(archive_write_header(writer, entry), ARCHIVE_OK);
        archive_write_data(writer, packed.bytes.constData(), std::size_t(packed.bytes.size()));
        archive_entry_free(entry);
    }
    archive_write_free(writer);
    QFile written(place);
    EXPECT_TRUE(written.open(QIODevice::ReadOnly));
    const QByteArray bytes = written.readAll();
    written.remove();
    return bytes;
}

void ItemMaker::archive(const QString &name, const QList<Packed> &files) const
{
    file(name, archiveBytes(name.endsWith(".tar.gz"_L1) ? u"tar.gz"_s : QFileInfo(name).suffix(), files));
}

void ItemMaker::gzip(const QString &name, const QByteArray &bytes) const
{
    const QString place = m_folder.filePath(u"packed"_s);
    ::archive *writer = archive_write_new();
    archive_write_set_format_raw(writer);
    archive_write_add_filter_gzip(writer);
    EXPECT_EQ(archive_write_open_filename(writer, QFile::encodeName(place).constData()), ARCHIVE_OK);
    archive_entry *entry = archive_entry_new();
    archive_entry_set_filetype(entry, AE_IFREG);
    EXPECT_EQ(archive_write_header(writer, entry), ARCHIVE_OK);
    archive_write_data(writer, bytes.constData(), std::size_t(bytes.size()));
    archive_entry_free(entry);
    archive_write_free(writer);
    QFile written(place);
    EXPECT_TRUE(written.open(QIODevice::ReadOnly));
    file(name, written.readAll());
    written.remove();
}

QList<ItemMaker::Packed> ItemMaker::contents() const
{
    QList<Packed> files;
    QDirIterator found(item(), QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (found.hasNext()) {
        const QFileInfo info(found.next());
        const QString name = QDir(m_folder.path()).relativeFilePath(info.filePath());
        QFile file(info.filePath());
        if (info.isSymLink())
            files.append({name, {}, targetOf(info.filePath())});
        else if (file.open(QIODevice::ReadOnly))
            files.append({name, file.readAll()});
    }
    return files;
}

void ItemMaker::become(const QString &name, const QByteArray &bytes)
{
    EXPECT_TRUE(QDir(item()).removeRecursively());
    m_name = name;
    QFile file(item());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray ItemMaker::packageBytes(const QList<Packed> &files) const
{
    const QByteArray information = "<pkg-info format-version=\"2\" identifier=\"com.example.foo\" "
                                   "version=\"1.0\" install-location=\"/\"/>";
    return archiveBytes(u"xar"_s,
                        {{u"PackageInfo"_s, information}, {u"Payload"_s, archiveBytes(u"cpio.gz"_s, files)}});
}

QByteArray ItemMaker::imageBytes(const QList<Packed> &files) const
{
    const QTemporaryDir place;
    const QString root = place.filePath(u"root"_s);
    for (const Packed &packed : files) {
        const QString path = root + u'/' + packed.name;
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        if (!packed.target.isEmpty())
            EXPECT_TRUE(QFile::link(packed.target, path));
        else if (file.open(QIODevice::WriteOnly))
            file.write(packed.bytes);
    }
    const QString image = place.filePath(u"made.dmg"_s);
    QProcess::execute(QString::fromUtf8(TOOLCHAIN_ROOT) + u"/usr/bin/hdiutil"_s,
                      {u"create"_s, u"-quiet"_s, image, u"-volname"_s, u"Foo"_s, u"-srcfolder"_s, root});
    QFile written(image);
    EXPECT_TRUE(written.open(QIODevice::ReadOnly));
    return written.readAll();
}
