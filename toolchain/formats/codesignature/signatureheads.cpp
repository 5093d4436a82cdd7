#include "formats/codesignature/signatureheads.h"

#include "formats/bigendian.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr quint64 headerSize = 8;
constexpr quint64 indexAt = 12;
constexpr quint64 entrySize = 8;
constexpr quint64 mostBlobs = 64;
/// Entitlements and the CMS signature are the longest of what is read whole.
constexpr quint64 mostBytes = 16 << 20;
/// Of a code directory: where its own length, the place of the code's digests and their number stand.
constexpr quint64 lengthAt = 4;
constexpr quint64 digestsAt = 16;
constexpr quint64 digestCountAt = 28;
constexpr quint64 shortestDirectory = 44;

Error cutOff()
{
    return Error{u"the signature is cut off"_s};
}

void putNumber(QByteArray &bytes, quint64 at, quint32 number)
{
    qToBigEndian(number, bytes.data() + at);
}

/// Reads one signature, blob by blob.
class HeadReader {
public:
    HeadReader(QIODevice &file, ByteRange place)
        : m_file(file)
        , m_place(place)
    {
    }

    Result<SuperBlob> read()
    {
        const QByteArray index = bytes(0, indexAt + entrySize * mostBlobs);
        const quint64 count = bigEndianAt<quint32>(index, headerSize);
        const bool isWhole = bigEndianAt<quint32>(index, 0) == magic::embeddedSignature && count <= mostBlobs
            && quint64(index.size()) >= indexAt + entrySize * count;
        if (!isWhole)
            return cutOff();
        SuperBlob blobs;
        for (quint64 entry = indexAt; entry < indexAt + entrySize * count; entry += entrySize) {
            auto blob = blobAt(bigEndianAt<quint32>(index, qsizetype(entry + 4)));
            if (!blob)
                return blob.failure();
            blobs.set(bigEndianAt<quint32>(index, qsizetype(entry)), *std::move(blob));
        }
        return blobs;
    }

private:
    /// What there is of them.
    [[nodiscard]] QByteArray bytes(quint64 offset, quint64 length) const
    {
        const quint64 left = m_place.length - std::min(offset, m_place.length);
        return bytesAt(m_file, m_place.offset + offset, std::min(length, left));
    }

    [[nodiscard]] Result<QByteArray> blobAt(quint64 offset) const
    {
        const QByteArray header = bytes(offset, shortestDirectory);
        const quint64 length = bigEndianAt<quint32>(header, lengthAt);
        const bool isDirectory = bigEndianAt<quint32>(header, 0) == magic::codeDirectory;
        const quint64 wanted = isDirectory ? bigEndianAt<quint32>(header, digestsAt) : length;
        QByteArray blob = wanted <= std::min(length, mostBytes) ? bytes(offset, wanted) : QByteArray();
        if (quint64(blob.size()) != wanted || wanted < (isDirectory ? shortestDirectory : headerSize))
            return cutOff();
        if (isDirectory) {
            putNumber(blob, lengthAt, quint32(wanted));
            putNumber(blob, digestCountAt, 0);
        }
        return blob;
    }

    QIODevice &m_file;
    const ByteRange m_place;
};

} // namespace

Result<SuperBlob> readSignatureHeads(QIODevice &file, ByteRange place)
{
    return HeadReader(file, place).read();
}

} // namespace toolchain::codesignature
