#include "formats/bigendian.h"
#include "formats/fileblocks.h"
#include "formats/xar/archive.h"
#include "support/wholefile.h"

#include <zlib.h>

#include <cerrno>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace toolchain::xar {

namespace {

constexpr quint64 usualCmsRoom = 9'216; // bytes, as Apple's archiver keeps
constexpr quint64 mostCmsRoom = 1 << 20;
constexpr qsizetype trailerSize = 16;
constexpr quint32 longestTicket = 16 << 20; // bytes

/// What stands around a ticket behind the heap: "t8lr", a version, a kind, and the length of what precedes
/// it.
enum class TrailerKind : quint16 { end = 1, ticket = 2 };

QByteArray trailer(TrailerKind kind, quint32 precedingLength)
{
    QByteArray bytes(trailerSize, '\0');
    bytes.replace(0, 4, "t8lr");
    qToLittleEndian<quint16>(1, bytes.data() + 4);
    qToLittleEndian<quint16>(quint16(kind), bytes.data() + 6);
    qToLittleEndian<quint32>(precedingLength, bytes.data() + 8);
    return bytes;
}

QByteArray packedToc(const QByteArray &bytes)
{
    auto length = compressBound(uLong(bytes.size()));
    QByteArray result(qsizetype(length), Qt::Uninitialized);
    compress2(reinterpret_cast<Bytef *>(result.data()), &length,
              reinterpret_cast<const Bytef *>(bytes.constData()), uLong(bytes.size()), Z_BEST_COMPRESSION);
    result.truncate(qsizetype(length));
    return result;
}

platform::Error failureOf(const QString &path, int error)
{
    return {QString::fromStdString(systemError(QFile::encodeName(path).toStdString(), error))};
}

/// Everything of a signed archive that stands before its files.
struct SignedHead {
    QByteArray bytes;
    QList<Move> moves;
};

/// Whether the file is the one that was looked at: what is signed must be what was verified.
class UnchangedFile {
public:
    explicit UnchangedFile(const QFile &file)
        : m_file(file)
    {
        fstat(file.handle(), &m_before);
    }
    [[nodiscard]] bool isUnchanged() const
    {
        struct stat after { };
        return fstat(m_file.handle(), &after) == 0 && after.st_size == m_before.st_size
            && after.st_mtim.tv_sec == m_before.st_mtim.tv_sec
            && after.st_mtim.tv_nsec == m_before.st_mtim.tv_nsec;
    }

private:
    const QFile &m_file;
    struct stat m_before { };
};

class HeadMaker {
public:
    HeadMaker(const QByteArray &header, const QByteArray &xml, const Toc &toc,
              QCryptographicHash::Algorithm algorithm, const ArchiveSigner &signer)
        : m_header(header)
        , m_xml(xml)
        , m_toc(toc)
        , m_algorithm(algorithm)
        , m_signer(signer)
    {
    }

    platform::Result<SignedHead> make()
    {
        quint64 room = usualCmsRoom;
        while (true) {
            const auto signedToc =
                tocWithSignatures(m_xml, m_toc, {m_signer.certificates, m_signer.rsaSize, room});
            if (!signedToc)
                return signedToc.failure();
            const QByteArray packed = packedToc(signedToc->xml);
            const QByteArray checksum = QCryptographicHash::hash(packed, m_algorithm);
            const auto values = m_signer.sign(checksum, m_algorithm);
            if (!values)
                return values.failure();
            if (quint64(values->rsa.size()) != m_signer.rsaSize || quint64(values->cms.size()) > mostCmsRoom)
                return platform::Error{u"the signature does not fit"_s};
            if (quint64(values->cms.size()) <= room)
                return headOf(*signedToc, packed, checksum, *values, room);
            room = quint64(values->cms.size() + 1'023) / 1'024 * 1'024;
        }
    }

private:
    SignedHead headOf(const SignedToc &signedToc, const QByteArray &packed, const QByteArray &checksum,
                      const SignatureValues &values, quint64 room) const
    {
        QByteArray header = m_header;
        header.replace(
            8, 16, BigEndianBytes().u64(quint64(packed.size())).u64(quint64(signedToc.xml.size())).bytes());
        const QByteArray heap = checksum + values.rsa + values.cms.leftJustified(qsizetype(room), '\0');
        return {header + packed + heap, signedToc.moves};
    }

    const QByteArray &m_header;
    const QByteArray &m_xml;
    const Toc &m_toc;
    const QCryptographicHash::Algorithm m_algorithm;
    const ArchiveSigner &m_signer;
};

} // namespace

platform::Outcome Archive::writeSigned(const QString &path, const ArchiveSigner &signer) const
{
    const auto head = HeadMaker(m_header, m_xml, m_toc, m_algorithm, signer).make();
    if (!head)
        return head.failure();
    QFile archive(m_path);
    if (!archive.open(QIODevice::ReadOnly))
        return platform::Error{m_path + u": "_s + archive.errorString()};
    const UnchangedFile unchanged(archive);
    WholeFile file(QFile::encodeName(path).toStdString());
    const auto write = [&file](QByteArrayView bytes) {
        return file.write({bytes.data(), std::size_t(bytes.size())});
    };
    bool isWritten = file.descriptor() >= 0 && write(head->bytes);
    for (const Move &move : head->moves)
        isWritten = isWritten && archive.seek(heapStart() + qint64(move.from.offset))
            && readBlocks(archive, qint64(move.from.size), write);
    if (!isWritten)
        return failureOf(path, errno);
    if (!unchanged.isUnchanged())
        return platform::Error{m_path + u": the file changed while it was read"_s};
    return file.finish() ? platform::Outcome::success() : failureOf(path, errno);
}

QByteArray Archive::ticket() const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < heapEnd() + 2 * trailerSize)
        return {};
    file.seek(file.size() - trailerSize);
    const QByteArray last = file.read(trailerSize);
    const auto length = last.size() == trailerSize ? qFromLittleEndian<quint32>(last.constData() + 8) : 0;
    const qint64 start = file.size() - trailerSize - length;
    const bool isTicket = length > 0 && length <= longestTicket
        && last == trailer(TrailerKind::ticket, length) && start - trailerSize >= heapEnd()
        && file.seek(start - trailerSize) && file.read(trailerSize) == trailer(TrailerKind::end, 0);
    return isTicket ? file.read(length) : QByteArray();
}

platform::Outcome Archive::attachTicket(const QByteArray &ticket) const
{
    QFile archive(m_path);
    if (!archive.open(QIODevice::ReadOnly))
        return platform::Error{m_path + u": "_s + archive.errorString()};
    const QByteArray tail =
        trailer(TrailerKind::end, 0) + ticket + trailer(TrailerKind::ticket, quint32(ticket.size()));
    WholeFile file(QFile::encodeName(m_path).toStdString());
    const bool isWritten = file.descriptor() >= 0 && file.append(archive.handle(), quint64(heapEnd()))
        && file.write({tail.constData(), std::size_t(tail.size())}) && file.takeAfter(archive.handle())
        && file.finish();
    return isWritten ? platform::Outcome::success() : failureOf(m_path, errno);
}

} // namespace toolchain::xar
