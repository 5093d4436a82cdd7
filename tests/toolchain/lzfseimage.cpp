#include "toolchain/lzfseimage.h"

#include "formats/udif/udiftables.h"
#include "formats/udif/udifwriter.h"
#include "toolchain/bundlebuilder.h"

#include <QtEndian>

#include <zlib.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray littleEndian(qsizetype number)
{
    const quint32 value = qToLittleEndian(quint32(number));
    return QByteArray(reinterpret_cast<const char *>(&value), sizeof value);
}

/// An LZFSE stream of one block, of the kind LZVN, that says of all bytes what they are.
QByteArray inLzfse(const QByteArray &bytes)
{
    constexpr qsizetype fewest = 16; // that the long form of the instruction takes
    constexpr qsizetype most = fewest + 255;
    QByteArray block;
    for (qsizetype done = 0; done < bytes.size(); done += most) {
        const QByteArray run = bytes.mid(done, most);
        block += run.size() >= fewest ? QByteArray("\xe0") + char(run.size() - fewest)
                                      : QByteArray(1, char(0xe0 + run.size()));
        block += run;
    }
    block += QByteArray("\x06") + QByteArray(7, '\0');
    return "bvxn" + littleEndian(bytes.size()) + littleEndian(block.size()) + block + "bvx$";
}

} // namespace

void writeLzfseImage(const QString &volume, const QString &image)
{
    using namespace toolchain::udif;
    constexpr qsizetype chunkSize = 256 << 10;
    const QByteArray bytes = bundlebuilder::readFile(volume);
    const auto crc = [](const QByteArray &data) {
        return quint32(crc32(0, reinterpret_cast<const Bytef *>(data.constData()), uInt(data.size())));
    };
    Partition partition{
        u"disk image (Apple_HFS : 0)"_s, 0, quint64(bytes.size()) / sectorSize, {crc32Kind, crc(bytes)}, {}};
    QByteArray data;
    for (qsizetype done = 0; done < bytes.size(); done += chunkSize) {
        const QByteArray plain = bytes.mid(done, chunkSize);
        const QByteArray packed = inLzfse(plain);
        partition.chunks.push_back({lzfseChunk, quint64(done) / sectorSize,
                                    quint64(plain.size()) / sectorSize, quint64(data.size()),
                                    quint64(packed.size())});
        data += packed;
    }
    Trailer trailer;
    trailer.dataLength = trailer.listOffset = quint64(data.size());
    trailer.dataChecksum = {crc32Kind, crc(data)};
    trailer.masterChecksum = {crc32Kind, masterChecksum({partition})};
    trailer.sectorCount = partition.sectorCount;
    const QByteArray list = partitionList({partition});
    trailer.listLength = quint64(list.size());
    bundlebuilder::writeFile(image, data + list + trailerBytes(trailer));
}
