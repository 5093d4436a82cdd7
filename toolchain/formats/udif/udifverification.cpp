// The checksums of a disk image, computed on all cores.

#include "formats/crc.h"
#include "formats/udif/chunkpacking.h"
#include "formats/udif/udifreader.h"
#include "support/openfile.h"

#include <zlib.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain {

using namespace udif;

/// What some bytes of the image or of a partition are.
struct UdifReader::Checked {
    bool isGood = false;
    quint32 checksum = 0;
    quint64 size = 0;
};

namespace {

const QString corrupt = u"corrupt image"_s;
constexpr qsizetype pieceSize = 1 << 20;

/// The checksum of zeros, in as many steps as their count has bits.
quint32 crcOfZeros(quint64 count)
{
    const char zero = 0;
    quint32 result = 0;
    quint32 power = crcOf(QByteArrayView(&zero, 1));
    for (quint64 length = 1; count > 0; length *= 2, count /= 2) {
        if (count % 2 != 0)
            result = joinedCrc(result, power, length);
        power = joinedCrc(power, power, length);
    }
    return result;
}

/// Adds results to a checksum as they come; remembers whether all were good.
template <typename Checked>
class Sum {
public:
    void add(const Checked &piece)
    {
        m_isGood = m_isGood && piece.isGood;
        m_checksum = joinedCrc(m_checksum, piece.checksum, piece.size);
    }
    [[nodiscard]] bool is(quint32 checksum) const { return m_isGood && m_checksum == checksum; }

private:
    bool m_isGood = true;
    quint32 m_checksum = 0;
};

} // namespace

bool UdifReader::verify()
{
    if (!m_outcome)
        return false;
    if (m_trailer.masterChecksum.kind == crc32Kind
        && m_trailer.masterChecksum.value != masterChecksum(m_partitions))
        return fail(corrupt);
    return verifyStored()
        && std::all_of(m_partitions.begin(), m_partitions.end(),
                       [this](const Partition &partition) { return verifyPartition(partition); });
}

bool UdifReader::verifyStored()
{
    if (m_trailer.dataChecksum.kind != crc32Kind)
        return true;
    if (m_trailer.dataOffset > m_fileSize || m_trailer.dataLength > m_fileSize - m_trailer.dataOffset)
        return fail(corrupt);
    OrderedWork<Checked> work;
    Sum<Checked> sum;
    for (quint64 done = 0; done < m_trailer.dataLength; done += quint64(pieceSize)) {
        if (work.isFull())
            sum.add(work.take());
        const quint64 offset = m_trailer.dataOffset + done;
        const auto length = qsizetype(std::min(m_trailer.dataLength - done, quint64(pieceSize)));
        work.give([file = m_file.descriptor(), offset, length] {
            QByteArray piece(length, Qt::Uninitialized);
            const bool isGood = readFully(file, offset, piece.data(), length);
            return Checked{isGood, crcOf(piece), quint64(length)};
        });
    }
    while (!work.isEmpty())
        sum.add(work.take());
    return sum.is(m_trailer.dataChecksum.value) || fail(corrupt);
}

bool UdifReader::verifyPartition(const Partition &partition)
{
    if (partition.checksum.kind != crc32Kind)
        return true;
    const bool isPacked =
        std::all_of(partition.chunks.begin(), partition.chunks.end(), [](const Chunk &chunk) {
            return chunk.kind == zeroChunk || chunk.kind == ignoredChunk
                || ((chunk.kind == rawChunk || canUnpack(chunk.kind))
                    && chunk.sectorCount <= longestChunk / sectorSize && chunk.length <= 2 * longestChunk);
        });
    if (m_disk >= 0 || !isPacked)
        return verifyOtherwise(partition);
    OrderedWork<Checked> work(6);
    Sum<Checked> sum;
    for (const Chunk &chunk : partition.chunks) {
        if (work.isFull())
            sum.add(work.take());
        work.give([file = m_file.descriptor(), dataOffset = m_trailer.dataOffset, chunk] {
            const quint64 size = chunk.sectorCount * sectorSize;
            if (chunk.kind == zeroChunk || chunk.kind == ignoredChunk)
                return Checked{.isGood = true, .checksum = crcOfZeros(size), .size = size};
            const Unpacked bytes = unpackedFrom(file, dataOffset, chunk);
            return Checked{bytes.has_value(), crcOf(bytes.value_or(QByteArray())), size};
        });
    }
    while (!work.isEmpty())
        sum.add(work.take());
    return sum.is(partition.checksum.value) || fail(corrupt);
}

/// Reads what does not come in chunks of bounded size as any reader would.
bool UdifReader::verifyOtherwise(const Partition &partition)
{
    QByteArray piece(pieceSize, Qt::Uninitialized);
    const quint64 size = partition.sectorCount * sectorSize;
    quint32 value = 0;
    for (quint64 done = 0; done < size;) {
        const auto length = qsizetype(std::min(size - done, quint64(pieceSize)));
        if (!read(partition, done, piece.data(), length))
            return false;
        value = crcOf(QByteArrayView(piece).first(length), value);
        done += quint64(length);
    }
    return value == partition.checksum.value || fail(corrupt);
}

} // namespace toolchain
