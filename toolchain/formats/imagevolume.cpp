#include "formats/imagevolume.h"

#include <QFile>

#include <algorithm>

namespace toolchain {

platform::Result<std::shared_ptr<ScratchFile>> unpackByOther(UdifReader &reader,
                                                             const std::filesystem::path &image)
{
    if (!reader.outcome() || !reader.needsOtherReader())
        return std::shared_ptr<ScratchFile>();
    quint64 size = 0;
    for (const udif::Partition &partition : reader.partitions())
        size += partition.sectorCount * udif::sectorSize;
    auto unpacked = sevenzip::unpackDisk(QFile::decodeName(QByteArray::fromStdString(image.native())), size);
    if (unpacked)
        reader.readFrom((*unpacked)->descriptor());
    return unpacked;
}

ImageVolume::ImageVolume(const std::filesystem::path &image)
    : m_image(image)
{
    const auto disk = unpackByOther(m_image, image);
    if (!disk) {
        m_unpacked = disk.failure();
        return;
    }
    m_disk = *disk;
    findVolume();
}

bool ImageVolume::isHfs(const udif::Partition &partition)
{
    constexpr quint64 fewestSectors = 8; // fewer hold no volume header and no copy of it
    return partition.sectorCount >= fewestSectors && HfsPlusReader::isVolume(sourceOf(partition));
}

void ImageVolume::findVolume()
{
    for (const udif::Partition &partition : m_image.partitions()) {
        if (!isHfs(partition))
            continue;
        m_volume = std::make_unique<HfsPlusReader>(sourceOf(partition));
        return;
    }
}

qsizetype ImageVolume::countVolumes()
{
    return std::count_if(
        m_image.partitions().begin(), m_image.partitions().end(),
        [this](const udif::Partition &partition) { return isHfs(partition) || isApfs(partition); });
}

bool ImageVolume::isApfs(const udif::Partition &partition)
{
    constexpr qsizetype magicOffset = 32;
    constexpr quint64 fewestSectors = 2048; // of 512 bytes
    QByteArray beginning(magicOffset + 4, '\0');
    return partition.sectorCount >= fewestSectors
        && m_image.read(partition, 0, beginning.data(), beginning.size()) && beginning.endsWith("NXSB");
}

std::shared_ptr<ScratchFile> ImageVolume::apfsContainer()
{
    constexpr quint64 pieceSize = 1 << 20;
    constexpr quint64 blockSize = 4096; // the smallest, and the usual one
    for (const udif::Partition &partition : m_image.partitions()) {
        const quint64 size = partition.sectorCount * udif::sectorSize;
        if (!isApfs(partition))
            continue;
        QByteArray piece;
        auto file = std::make_shared<ScratchFile>();
        for (quint64 done = 0; done < size; done += pieceSize) {
            piece.resize(qsizetype(std::min(pieceSize, size - done)));
            if (!m_image.read(partition, done, piece.data(), piece.size()) || !file->append(piece))
                return {};
        }
        // The last block of a volume that was converted may reach beyond its partition.
        const quint64 cut = size % blockSize;
        return cut == 0 || file->append(QByteArray(qsizetype(blockSize - cut), '\0')) ? file : nullptr;
    }
    return {};
}

platform::Outcome ImageVolume::outcome() const
{
    if (!m_image.outcome())
        return m_image.outcome();
    if (!m_unpacked)
        return m_unpacked;
    return m_volume ? m_volume->outcome() : platform::Error{QStringLiteral("no mountable file systems")};
}

std::string ImageVolume::scheme() const
{
    const auto hasPart = [this](const QString &name) {
        return std::any_of(
            m_image.partitions().begin(), m_image.partitions().end(),
            [&name](const udif::Partition &partition) { return partition.name.contains(name); });
    };
    if (hasPart(QStringLiteral("GPT Header")))
        return "GUID_partition_scheme";
    return hasPart(QStringLiteral("Apple_partition_map")) ? "Apple_partition_scheme" : "";
}

ByteSource ImageVolume::sourceOf(const udif::Partition &partition)
{
    return [this, &partition](quint64 offset, char *target, qsizetype size) {
        return m_image.read(partition, offset, target, size);
    };
}

} // namespace toolchain
