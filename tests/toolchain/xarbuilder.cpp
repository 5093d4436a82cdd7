#include "toolchain/xarbuilder.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace xarbuilder {

namespace {

/// The files with the places that they get.
QList<XarFile> placed(QList<XarFile> files, const XarOptions &options)
{
    auto next = quint64(QCryptographicHash::hashLength(options.algorithm));
    for (XarFile &file : files) {
        if (file.offset == 0)
            file.offset = next;
        next = file.offset + quint64(file.content.size());
    }
    return files;
}

template <typename Number>
void append(QByteArray &bytes, Number number)
{
    const Number swapped = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char *>(&swapped), sizeof swapped);
}

} // namespace

QByteArray tocOf(const QList<XarFile> &files, const XarOptions &options)
{
    QString xml = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xar>\n <toc>\n"
                  "  <checksum style=\"%1\">\n   <offset>0</offset>\n   <size>%2</size>\n  </checksum>\n"_s
                      .arg(options.style)
                      .arg(QCryptographicHash::hashLength(options.algorithm));
    int number = 0;
    for (const XarFile &file : placed(files, options)) {
        const QString digest =
            QString::fromLatin1(QCryptographicHash::hash(file.content, QCryptographicHash::Sha1).toHex());
        xml += u"  <file id=\"%1\">\n   <data>\n    <length>%2</length>\n    <offset>%3</offset>\n    "
               u"<size>%2</size>\n"
               "    <encoding style=\"application/octet-stream\"/>\n"
               "    <archived-checksum style=\"sha1\">%4</archived-checksum>\n   </data>\n"
               "   <type>file</type>\n   <name>%5</name>\n   <name>%5</name>\n  </file>\n"_s.arg(++number)
                   .arg(file.content.size())
                   .arg(file.offset)
                   .arg(digest, file.name);
    }
    return (xml + u" </toc>\n</xar>\n"_s).toUtf8();
}

QByteArray packed(const QByteArray &bytes)
{
    return qCompress(bytes).mid(4);
}

void writeArchive(const QString &path, const QByteArray &toc, const QList<XarFile> &files,
                  const XarOptions &options)
{
    const QByteArray table = packed(toc);
    QByteArray head("xar!");
    append<quint16>(head, 28);
    append<quint16>(head, 1);
    append<quint64>(head, quint64(table.size()));
    append<quint64>(head, quint64(toc.size()));
    append<quint32>(head, options.algorithmNumber);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(head + table + QCryptographicHash::hash(table, options.algorithm));
    for (const XarFile &entry : placed(files, options)) {
        file.seek(qint64(head.size() + table.size()) + qint64(entry.offset));
        file.write(entry.content);
    }
}

void writeArchive(const QString &path, const QList<XarFile> &files, const XarOptions &options)
{
    writeArchive(path, tocOf(files, options), files, options);
}

} // namespace xarbuilder
