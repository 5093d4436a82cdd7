#include "formats/xar/xarfile.h"

#include "formats/bigendian.h"
#include "formats/digestsignature.h"
#include "formats/fileblocks.h"
#include "support/wholefile.h"

#include <QCryptographicHash>
#include <QFile>

#include <zlib.h>

#include <algorithm>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr qsizetype smallestHeader = 28; // bytes
constexpr qsizetype headerHasLengths = 8; // of the table packed and unpacked
constexpr quint64 longestTable = 64 << 20;
constexpr quint64 longestReserved = 1 << 20; // checksums and signatures take some kilobytes
constexpr qint64 longestTail = 16 << 20;

std::optional<QCryptographicHash::Algorithm> algorithmOf(const QString &style)
{
    const QString name = style.toLower();
    if (name == u"sha1"_s)
        return QCryptographicHash::Sha1;
    if (name == u"sha256"_s)
        return QCryptographicHash::Sha256;
    return name == u"md5"_s ? std::optional(QCryptographicHash::Md5) : std::nullopt;
}

/// Empty if the bytes are not a zlib stream of just that length.
QByteArray unpacked(const QByteArray &bytes, quint64 size)
{
    QByteArray result(qsizetype(size), Qt::Uninitialized);
    auto length = uLongf(result.size());
    const int outcome = uncompress(reinterpret_cast<Bytef *>(result.data()), &length,
                                   reinterpret_cast<const Bytef *>(bytes.constData()), uLong(bytes.size()));
    return outcome == Z_OK && length == size ? result : QByteArray();
}

QByteArray packed(const QByteArray &bytes)
{
    auto length = compressBound(uLong(bytes.size()));
    QByteArray result(qsizetype(length), Qt::Uninitialized);
    compress(reinterpret_cast<Bytef *>(result.data()), &length,
             reinterpret_cast<const Bytef *>(bytes.constData()), uLong(bytes.size()));
    result.truncate(qsizetype(length));
    return result;
}

bool agrees(QFile &file, const xar::Piece &piece)
{
    const auto algorithm = algorithmOf(piece.checksumStyle);
    if (!algorithm)
        return false;
    QCryptographicHash hash(*algorithm);
    const auto add = [&hash](QByteArrayView block) {
        hash.addData(block);
        return true;
    };
    return readBlocks(file, qint64(piece.place.size), add) && hash.result() == piece.checksum;
}

} // namespace

bool XarFile::looksLikeOne(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(4) == "xar!";
}

XarFile::XarFile(QString path)
    : m_path(std::move(path))
{
    if (!readTable() && m_error.isEmpty())
        m_error = u"not a xar archive, or a damaged one"_s;
}

bool XarFile::readTable()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_error = file.errorString();
        return false;
    }
    m_header = file.read(smallestHeader);
    m_headerSize = bigEndianAt<quint16>(m_header, 4);
    const auto packedSize = bigEndianAt<quint64>(m_header, headerHasLengths);
    const auto size = bigEndianAt<quint64>(m_header, headerHasLengths + 8);
    const bool isHeader = m_header.startsWith("xar!") && m_header.size() == smallestHeader
        && m_headerSize >= smallestHeader && packedSize <= longestTable && size <= longestTable;
    if (!isHeader)
        return false;
    m_header += file.read(m_headerSize - smallestHeader);
    m_packedTable = file.read(qint64(packedSize));
    m_xml = unpacked(m_packedTable, size);
    const auto table = xar::readTable(m_xml);
    if (!table || table->reserved > longestReserved
        || table->heapEnd() > quint64(std::max(file.size() - heapStart(), qint64(0))))
        return false;
    m_table = *table;
    m_checksum = heapBytes(m_table.checksum);
    const auto algorithm = algorithmOf(m_table.checksumStyle);
    return algorithm && *algorithm != QCryptographicHash::Md5 && m_table.checksum.offset == 0
        && m_checksum == QCryptographicHash::hash(m_packedTable, *algorithm);
}

bool XarFile::isPackage() const
{
    return m_table.topNames.contains(u"Distribution"_s) || m_table.topNames.contains(u"PackageInfo"_s);
}

QString XarFile::damagedFile() const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return m_path;
    const auto damaged =
        std::find_if(m_table.pieces.begin(), m_table.pieces.end(), [&](const xar::Piece &piece) {
            return !file.seek(heapStart() + qint64(piece.place.offset)) || !agrees(file, piece);
        });
    return damaged == m_table.pieces.end() ? QString() : damaged->path;
}

QByteArray XarFile::heapBytes(const xar::Place &place) const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(heapStart() + qint64(place.offset)))
        return {};
    return file.read(qint64(place.size));
}

bool XarFile::signatureFits() const
{
    const DigestSignature signature{m_table.certificate, heapBytes(m_table.signature)};
    return m_table.signatureStyle == u"RSA"_s
        && signature.fits(m_checksum, *algorithmOf(m_table.checksumStyle));
}

QByteArray XarFile::sealDigest() const
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(m_packedTable);
    hash.addData(heapBytes(m_table.signature));
    return hash.result().toHex();
}

QByteArray XarFile::tail() const
{
    QFile file(m_path);
    const qint64 end = heapStart() + qint64(m_table.heapEnd());
    return file.open(QIODevice::ReadOnly) && file.seek(end) ? file.read(longestTail) : QByteArray();
}

QString XarFile::writeTail(const QByteArray &tail) const
{
    QFile archive(m_path);
    if (!archive.open(QIODevice::ReadOnly))
        return m_path + u": "_s + archive.errorString();
    WholeFile file(m_path.toStdString());
    const auto write = [&file](QByteArrayView bytes) {
        return file.write({bytes.data(), std::size_t(bytes.size())});
    };
    const bool isWritten = file.descriptor() >= 0
        && readBlocks(archive, heapStart() + qint64(m_table.heapEnd()), write) && write(tail)
        && file.finish();
    return isWritten ? QString() : QString::fromStdString(systemError(m_path.toStdString(), errno));
}

QString XarFile::writeSigned(const DigestSigner &signer, const QString &path) const
{
    const QByteArray xml =
        tableWithSignature(m_xml, m_table, signer.certificate(), quint64(signer.signatureSize()));
    const QByteArray table = packed(xml);
    const auto algorithm = *algorithmOf(m_table.checksumStyle);
    const QByteArray checksum = QCryptographicHash::hash(table, algorithm);
    const QByteArray signature = signer.sign(checksum, algorithm).bytes;
    QFile archive(m_path);
    if (signature.isEmpty() || !archive.open(QIODevice::ReadOnly)
        || !archive.seek(heapStart() + qint64(m_table.reserved)))
        return u"the archive cannot be signed"_s;
    QByteArray header = m_header;
    header.replace(headerHasLengths, 16,
                   BigEndianBytes().u64(quint64(table.size())).u64(quint64(xml.size())).bytes());
    WholeFile file(path.toStdString());
    const auto write = [&file](QByteArrayView bytes) {
        return file.write({bytes.data(), std::size_t(bytes.size())});
    };
    const bool isWritten = file.descriptor() >= 0 && write(header) && write(table) && write(checksum)
        && write(signature) && readBlocks(archive, qint64(m_table.heapEnd() - m_table.reserved), write)
        && file.finish();
    return isWritten ? QString() : QString::fromStdString(systemError(path.toStdString(), errno));
}

} // namespace toolchain
