// The heads of Mach-O files. Whatever could be read lies within the file, and can be laid out anew or is
// refused.

#include "formats/codesignature/slicelayout.h"
#include "fuzz/fuzzing.h"

#include <QBuffer>

using namespace toolchain::codesignature;

namespace {

void requireWithin(const MachOSlice &slice, quint64 size)
{
    require(slice.place.offset <= size && slice.place.length <= size - slice.place.offset);
    for (const MachOSegment &segment : slice.segments)
        require(segment.file.end() <= slice.place.length);
    require(slice.codeLength() <= slice.place.length);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes = inputBytes(data, size);
    QBuffer file(&bytes);
    require(file.open(QIODevice::ReadOnly));
    const auto image = readMachOImage(file);
    if (!image)
        return 0;
    for (const MachOSlice &slice : image->slices) {
        requireWithin(slice, size);
        constexpr quint64 room = 4096;
        const auto layout = layoutWithSignature(slice, room, 0x4000);
        require(!layout || layout->copiedLength <= slice.place.length);
        const auto stripped = layoutWithoutSignature(slice);
        require(!stripped || stripped->length() <= slice.place.length);
    }
    return 0;
}
