#include "formats/xar/archive.h"

#include "formats/bigendian.h"
#include "formats/fileblocks.h"
#include "formats/xar/unpacking.h"
#include "support/wholefile.h"

#include <openssl/evp.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace toolchain::xar {

namespace {

constexpr qsizetype smallestHeader = 28; // bytes
constexpr qsizetype largestHeader = 4'096;
constexpr qsizetype headerHasVersion = 6;
constexpr qsizetype headerHasLengths = 8; // of the table packed and unpacked
constexpr qsizetype headerHasAlgorithm = 24;
constexpr quint64 longestTable = 64 << 20;
constexpr quint64 mostPackedAtOnce = 16 << 20;
constexpr quint64 bestRatio = 1'032; // of deflate
const QString damaged = u"not a xar archive, or a damaged one"_s;

/// XAR_CKSUM_… of <xar/xar.h>. What the numbers behind SHA-1 mean has changed with the library's versions.
bool isNumberOf(QCryptographicHash::Algorithm algorithm, quint32 number)
{
    constexpr quint32 sha1 = 1;
    constexpr quint32 largest = 4;
    return algorithm == QCryptographicHash::Sha1 ? number == sha1 : number >= sha1 && number <= largest;
}

/// Empty if the bytes are not a zlib stream of just that length.
QByteArray unpackedToc(const QByteArray &bytes, quint64 size)
{
    if (size > quint64(bytes.size()) * bestRatio + 1'024)
        return {};
    QByteArray result(qsizetype(size), Qt::Uninitialized);
    auto length = uLongf(result.size());
    const int outcome = uncompress(reinterpret_cast<Bytef *>(result.data()), &length,
                                   reinterpret_cast<const Bytef *>(bytes.constData()), uLong(bytes.size()));
    return outcome == Z_OK && length == size ? result : QByteArray();
}

/// libcrypto's digests, which are several times as fast as Qt's.
class FastDigest {
public:
    explicit FastDigest(QCryptographicHash::Algorithm algorithm)
    {
        const EVP_MD *kind = algorithm == QCryptographicHash::Sha1 ? EVP_sha1()
            : algorithm == QCryptographicHash::Sha256              ? EVP_sha256()
            : algorithm == QCryptographicHash::Sha512              ? EVP_sha512()
                                                                   : EVP_md5();
        EVP_DigestInit_ex(m_context.get(), kind, nullptr);
    }
    void add(QByteArrayView bytes)
    {
        EVP_DigestUpdate(m_context.get(), bytes.data(), std::size_t(bytes.size()));
    }
    QByteArray result()
    {
        QByteArray digest(EVP_MAX_MD_SIZE, '\0');
        unsigned length = 0;
        EVP_DigestFinal_ex(m_context.get(), reinterpret_cast<unsigned char *>(digest.data()), &length);
        return digest.first(qsizetype(length));
    }

private:
    struct Free {
        void operator()(EVP_MD_CTX *context) const { EVP_MD_CTX_free(context); }
    };
    const std::unique_ptr<EVP_MD_CTX, Free> m_context{EVP_MD_CTX_new()};
};

bool agrees(QFile &file, qint64 heapStart, const HeapPiece &piece)
{
    const auto algorithm = digestNamed(piece.archived.style);
    if (!algorithm || !file.seek(heapStart + qint64(piece.place.offset)))
        return false;
    FastDigest digest(*algorithm);
    const auto add = [&digest](QByteArrayView block) {
        digest.add(block);
        return true;
    };
    return readBlocks(file, qint64(piece.place.size), add) && digest.result() == piece.archived.value;
}

} // namespace

bool Archive::looksLikeOne(const QString &path)
{
    struct stat information { };
    if (stat(QFile::encodeName(path).constData(), &information) != 0 || !S_ISREG(information.st_mode))
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(4) == "xar!";
}

platform::Result<Archive> Archive::open(const QString &path)
{
    struct stat information { };
    if (stat(QFile::encodeName(path).constData(), &information) == 0 && !S_ISREG(information.st_mode))
        return platform::Error{u"not a file"_s};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return platform::Error{file.errorString()};
    Archive archive;
    archive.m_path = path;
    const platform::Outcome read = archive.readHead(file);
    if (!read)
        return read.failure();
    return archive;
}

platform::Outcome Archive::readHead(QFile &file)
{
    m_header = file.read(smallestHeader);
    const auto headerSize = bigEndianAt<quint16>(m_header, 4);
    const auto packedSize = bigEndianAt<quint64>(m_header, headerHasLengths);
    const auto size = bigEndianAt<quint64>(m_header, headerHasLengths + 8);
    const bool isHeader = m_header.startsWith("xar!") && m_header.size() == smallestHeader
        && headerSize >= smallestHeader && headerSize <= largestHeader && packedSize <= longestTable
        && size <= longestTable && packedSize <= quint64(file.size());
    if (!isHeader)
        return platform::Error{damaged};
    m_header += file.read(headerSize - smallestHeader);
    m_packedToc = file.read(qint64(packedSize));
    m_xml = unpackedToc(m_packedToc, size);
    const auto toc = readToc(m_xml);
    if (!toc)
        return platform::Error{damaged + u": "_s + toc.error()};
    m_toc = *toc;
    if (m_toc.heapEnd() > quint64(std::max(file.size() - heapStart(), qint64(0))))
        return platform::Error{damaged + u": it is cut short"_s};
    const auto algorithm = digestNamed(m_toc.checksumStyle);
    if (!algorithm || *algorithm == QCryptographicHash::Md5)
        return platform::Error{
            damaged + u": the table's checksum is of the kind \"%1\""_s.arg(m_toc.checksumStyle.left(20))};
    m_algorithm = *algorithm;
    // The header is in front of all that is digested; it has to say what the table says.
    if (bigEndianAt<quint16>(m_header, headerHasVersion) != 1
        || !isNumberOf(m_algorithm, bigEndianAt<quint32>(m_header, headerHasAlgorithm)))
        return platform::Error{damaged + u": its header does not agree with its table"_s};
    m_checksum = heapBytes(m_toc.checksum);
    const bool isTrue =
        m_toc.checksum.offset == 0 && m_checksum == QCryptographicHash::hash(m_packedToc, m_algorithm);
    if (!isTrue)
        return platform::Error{damaged + u": the table does not agree with its checksum"_s};
    return {};
}

bool Archive::isPackage() const
{
    return m_toc.file(u"Distribution") != nullptr || m_toc.file(u"PackageInfo") != nullptr;
}

QByteArray Archive::heapBytes(const HeapRange &place) const
{
    QFile file(m_path);
    if (place.size > mostPackedAtOnce || !file.open(QIODevice::ReadOnly)
        || !file.seek(heapStart() + qint64(place.offset)))
        return {};
    return file.read(qint64(place.size));
}

QString Archive::damagedFile() const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return m_path;
    for (const TocFile &entry : m_toc.files) {
        const bool isDamaged =
            (entry.data && entry.data->place.size > 0 && !agrees(file, heapStart(), *entry.data))
            || std::any_of(entry.attributes.begin(), entry.attributes.end(), [&](const HeapPiece &piece) {
                   return piece.place.size > 0 && !agrees(file, heapStart(), piece);
               });
        if (isDamaged)
            return entry.path;
    }
    return {};
}

platform::Outcome Archive::unpack(const TocFile &entry, const ByteSink &sink) const
{
    if (!entry.data || entry.data->place.size == 0)
        return platform::Outcome::success();
    const HeapPiece &piece = *entry.data;
    const auto unpacker = unpackerFor(piece.encoding);
    if (!unpacker)
        return platform::Error{
            u"%1: packed as \"%2\", which is not known here"_s.arg(entry.path, piece.encoding)};
    const auto algorithm = digestNamed(piece.extracted.style);
    FastDigest digest(algorithm.value_or(QCryptographicHash::Sha1));
    quint64 size = 0;
    bool isStopped = false;
    const auto take = [&](QByteArrayView bytes) {
        size += quint64(bytes.size());
        if (algorithm)
            digest.add(bytes);
        isStopped = size <= piece.size && !sink(bytes);
        return size <= piece.size && !isStopped;
    };
    QFile file(m_path);
    const bool isRead = file.open(QIODevice::ReadOnly) && file.seek(heapStart() + qint64(piece.place.offset))
        && readBlocks(file, qint64(piece.place.size),
                      [&](QByteArrayView block) { return unpacker->add(block, take); });
    if (isStopped)
        return platform::Error{entry.path + u": cannot be taken"_s};
    const bool isWhole = isRead && unpacker->isFinished() && size == piece.size
        && (!algorithm || digest.result() == piece.extracted.value);
    return isWhole ? platform::Outcome::success() : platform::Error{entry.path + u": damaged"_s};
}

platform::Result<QByteArray> Archive::contentOf(const TocFile &entry, qint64 most) const
{
    if (entry.data && entry.data->size > quint64(most))
        return platform::Error{entry.path + u": too large"_s};
    QByteArray content;
    const auto outcome = unpack(entry, [&content](QByteArrayView bytes) {
        content.append(bytes);
        return true;
    });
    if (!outcome)
        return outcome.failure();
    return content;
}

} // namespace toolchain::xar
