#include "support/items.h"

#include "platform/itempath.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace items {

namespace {

void addLittleEndian(QByteArray &bytes, quint32 value)
{
    for (int shift = 0; shift < 32; shift += 8)
        bytes.append(static_cast<char>(value >> shift));
}

void addBigEndian(QByteArray &bytes, quint32 value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(value >> shift));
}

} // namespace

QByteArray universalMachO(const QList<Processor> &processors)
{
    // Public document: <mach-o/fat.h>. Its entries begin as its files do: with processor and variant.
    constexpr qsizetype headerSize = 8;
    constexpr qsizetype entrySize = 20;
    QByteArray entries;
    QByteArray files;
    addBigEndian(entries, 0xcafebabe);
    addBigEndian(entries, static_cast<quint32>(processors.size()));
    for (const Processor processor : processors) {
        const QByteArray file = machO(processor);
        for (const qsizetype field : {4, 8}) {
            for (int byte = 3; byte >= 0; --byte)
                entries.append(file[field + byte]);
        }
        addBigEndian(entries,
                     static_cast<quint32>(headerSize + entrySize * processors.size() + files.size()));
        addBigEndian(entries, static_cast<quint32>(file.size()));
        addBigEndian(entries, 0); // no alignment
        files += file;
    }
    return entries + files;
}

QByteArray machO(Processor processor)
{
    // Public document: <mach-o/loader.h>
    constexpr quint32 magic64 = 0xfeedfacf;
    constexpr quint32 magic32 = 0xfeedface;
    constexpr quint32 executableType = 2;
    const bool is64 = processor != Processor::i386;
    QByteArray bytes;
    addLittleEndian(bytes, is64 ? magic64 : magic32);
    addLittleEndian(bytes, processor == Processor::arm64 ? 0x0100000c : is64 ? 0x01000007 : 7);
    addLittleEndian(bytes, processor == Processor::arm64 ? 0 : 3);
    addLittleEndian(bytes, executableType);
    for (int rest = 0; rest < (is64 ? 4 : 3); ++rest)
        addLittleEndian(bytes, 0);
    return bytes;
}

void makeFolder(const QString &path)
{
    if (!QDir().mkpath(path))
        throw std::runtime_error("cannot make " + path.toStdString());
}

void makeFile(const QString &path, const QByteArray &bytes, bool isExecutable)
{
    makeFolder(itempath::folder(path));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + path.toStdString());
    file.close();
    if (isExecutable)
        file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser | QFile::ExeGroup
                            | QFile::ExeOther);
}

void makeLink(const QString &path, const QString &target)
{
    makeFolder(itempath::folder(path));
    if (!QFile::link(target, path))
        throw std::runtime_error("cannot link " + path.toStdString());
}

void makeInfo(const QString &folder, const QString &executable, const QString &identifier)
{
    QString keys = u"<key>CFBundleExecutable</key><string>%1</string>"_s.arg(executable.toHtmlEscaped());
    if (!identifier.isNull())
        keys += u"<key>CFBundleIdentifier</key><string>%1</string>"_s.arg(identifier);
    makeFile(folder + u"/Info.plist"_s,
             (u"<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"_s + keys
              + u"</dict></plist>"_s)
                 .toUtf8());
}

void makeBundle(const QString &path, const QString &identifier)
{
    const QString name = itempath::withoutExtension(itempath::lastComponent(path));
    makeInfo(path + u"/Contents"_s, name, identifier);
    makeFile(path + u"/Contents/MacOS/"_s + name, machO(), true);
    makeFile(path + u"/Contents/Resources/Read Me.txt"_s, "read me");
}

void makeFramework(const QString &path)
{
    const QString name = itempath::withoutExtension(itempath::lastComponent(path));
    const QString version = path + u"/Versions/A"_s;
    makeInfo(version + u"/Resources"_s, name, u"com.example."_s + name);
    makeFile(version + u'/' + name, machO(), true);
    makeLink(path + u"/Versions/Current"_s, u"A"_s);
    makeLink(path + u'/' + name, u"Versions/Current/"_s + name);
}

QByteArray fingerprint(const QString &path)
{
    const QFileInfo info(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(info.fileName().toUtf8() + '\0');
    if (info.isSymLink()) {
        // as it was written, which Qt makes absolute
        hash.addData(
            QByteArray::fromStdString("link " + std::filesystem::read_symlink(path.toStdString()).string()));
    } else if (info.isDir()) {
        hash.addData("folder " + QByteArray::number(info.permissions().toInt()));
        const auto names = QDir(path).entryList(
            QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
        for (const QString &name : names)
            hash.addData(fingerprint(path + u'/' + name));
    } else {
        QFile file(path);
        const bool isOpen = file.open(QIODevice::ReadOnly);
        hash.addData("file " + QByteArray::number(info.permissions().toInt())
                     + (isOpen ? file.readAll() : "none"));
    }
    return hash.result();
}

} // namespace items
