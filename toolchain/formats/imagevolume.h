#pragma once

#include "formats/hfsplus/hfsplusreader.h"
#include "formats/udif/udifreader.h"

#include <memory>

namespace toolchain {

/// A disk image and the first HFS+ volume on it.
class ImageVolume {
public:
    explicit ImageVolume(const std::filesystem::path &image);

    /// Why there is no volume to read; empty if there is.
    [[nodiscard]] std::string error() const;

    [[nodiscard]] UdifReader &image() { return m_image; }

    /// Only if there is no error.
    [[nodiscard]] const HfsPlusReader &volume() const { return *m_volume; }

    /// What attach calls the disk's division, such as "GUID_partition_scheme"; empty if it has none.
    [[nodiscard]] std::string scheme() const;

private:
    [[nodiscard]] ByteSource sourceOf(const udif::Partition &partition);

    UdifReader m_image;
    std::unique_ptr<HfsPlusReader> m_volume;
};

} // namespace toolchain
