// Disk images: trailer, tables, chunks and the place of the signature.

#include "formats/udif/imagesignature.h"
#include "formats/udif/udifreader.h"
#include "fuzz/fuzzing.h"
#include "fuzz/memoryfile.h"

using namespace toolchain;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const MemoryFile file;
    const QString path = file.with(data, size);
    (void)udif::readImageSignature(path);
    UdifReader image(path.toStdString());
    for (const udif::Partition &partition : image.partitions()) {
        QByteArray piece(4096, '\0');
        for (const udif::Chunk &chunk : partition.chunks) {
            if (!image.read(partition, chunk.firstSector * udif::sectorSize, piece.data(), 512)
                || chunk.sectorCount == 0)
                break;
        }
    }
    return 0;
}
