#pragma once

#include "formats/hfsplus/hfsplusreader.h"
#include "formats/sevenzip.h"
#include "formats/udif/udifreader.h"

#include <memory>

namespace toolchain {

/// Lets 7z unpack what the reader of an image cannot, into a temporary file that the reader reads from then.
/// Answers what went wrong, or nothing, also where nothing was to be done; keeps the file.
[[nodiscard]] std::string unpackByOther(UdifReader &reader, const std::filesystem::path &image,
                                        std::shared_ptr<ScratchFile> &disk);

/// A disk image and the first HFS+ volume on it.
class ImageVolume {
public:
    explicit ImageVolume(const std::filesystem::path &image);
    ImageVolume(const ImageVolume &) = delete;
    ImageVolume &operator=(const ImageVolume &) = delete;

    /// Why there is no volume to read; empty if there is.
    [[nodiscard]] std::string error() const;

    [[nodiscard]] UdifReader &image() { return m_image; }

    /// Only if there is no error.
    [[nodiscard]] const HfsPlusReader &volume() const { return *m_volume; }

    /// The bytes of the first APFS volume's container in a file of their own, for another program to read;
    /// nothing if there is none.
    [[nodiscard]] std::shared_ptr<ScratchFile> apfsContainer();

    /// What attach calls the disk's division, such as "GUID_partition_scheme"; empty if it has none.
    [[nodiscard]] std::string scheme() const;

private:
    [[nodiscard]] ByteSource sourceOf(const udif::Partition &partition);

    void findVolume();

    std::shared_ptr<ScratchFile> m_disk; ///< what the image is read from if it cannot be read itself
    UdifReader m_image;
    std::string m_problem;
    std::unique_ptr<HfsPlusReader> m_volume;
};

} // namespace toolchain
