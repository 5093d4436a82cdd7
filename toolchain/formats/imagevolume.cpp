#include "formats/imagevolume.h"

#include <algorithm>

namespace toolchain {

ImageVolume::ImageVolume(const std::filesystem::path &image)
    : m_image(image)
{
    for (const udif::Partition &partition : m_image.partitions()) {
        const ByteSource source = sourceOf(partition);
        constexpr quint64 fewestSectors = 8; // fewer hold no volume header and no copy of it
        if (partition.sectorCount < fewestSectors || !HfsPlusReader::isVolume(source))
            continue;
        m_volume = std::make_unique<HfsPlusReader>(source);
        return;
    }
}

std::string ImageVolume::error() const
{
    if (!m_image.error().empty())
        return m_image.error();
    return m_volume ? m_volume->error() : "no mountable file systems";
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
