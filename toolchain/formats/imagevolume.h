#pragma once

#include "formats/hfsplus/hfsplusreader.h"
#include "formats/sevenzip.h"
#include "formats/udif/udifreader.h"

#include <memory>

namespace toolchain {

/// Lets 7z unpack what the reader of an image cannot, into a temporary file that the reader reads from then.
/// Answers that file, or null where nothing was to be done; keep it as long as the reader.
[[nodiscard]] platform::Result<std::shared_ptr<ScratchFile>>
unpackByOther(UdifReader &reader, const std::filesystem::path &image);

/// A disk image and the first HFS+ volume on it.
class ImageVolume {
public:
    explicit ImageVolume(const std::filesystem::path &image);
    ImageVolume(const ImageVolume &) = delete;
    ImageVolume &operator=(const ImageVolume &) = delete;

    /// Fails where there is no volume to read.
    [[nodiscard]] platform::Outcome outcome() const;

    [[nodiscard]] UdifReader &image() { return m_image; }

    /// Only after a success.
    [[nodiscard]] const HfsPlusReader &volume() const { return *m_volume; }

    /// How many HFS+ volumes and APFS containers the disk has. Looks at each partition, of which one that
    /// cannot be read makes the outcome of `image()` a failure.
    [[nodiscard]] qsizetype countVolumes();

    /// The bytes of the first APFS volume's container in a file of their own, for another program to read;
    /// nothing if there is none.
    [[nodiscard]] std::shared_ptr<ScratchFile> apfsContainer();

    /// What attach calls the disk's division, such as "GUID_partition_scheme"; empty if it has none.
    [[nodiscard]] std::string scheme() const;

private:
    [[nodiscard]] ByteSource sourceOf(const udif::Partition &partition);

    void findVolume();
    [[nodiscard]] bool isHfs(const udif::Partition &partition);
    [[nodiscard]] bool isApfs(const udif::Partition &partition);

    std::shared_ptr<ScratchFile> m_disk; ///< what the image is read from if it cannot be read itself
    UdifReader m_image;
    platform::Outcome m_unpacked;
    std::unique_ptr<HfsPlusReader> m_volume;
};

} // namespace toolchain
