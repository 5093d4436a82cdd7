// Embedded signatures. What is taken apart is put together to the same; each digest lies within its
// directory.

#include "formats/codesignature/signaturereader.h"
#include "fuzz/fuzzing.h"

using namespace toolchain::codesignature;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto part = readSignedPart(inputBytes(data, size));
    if (!part)
        return 0;
    const auto again = SuperBlob::parse(part->blobs.bytes(), magic::embeddedSignature);
    require(again && again->bytes() == part->blobs.bytes());
    for (const CodeDirectory &directory : part->directories) {
        const qsizetype length = hashSize(directory.fields().hashType);
        if (directory.codeSlotCount() > 0)
            require(directory.codeSlot(directory.codeSlotCount() - 1).size() == length);
        if (directory.specialSlotCount() > 0)
            require(directory.specialSlot(directory.specialSlotCount()).size() == length);
        require(directory.cdHash().size() == 20);
    }
    return 0;
}
