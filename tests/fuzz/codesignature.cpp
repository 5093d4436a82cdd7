// Embedded signatures. What is taken apart is put together to the same; each digest lies within its
// directory.

#include "formats/codesignature/signatureheads.h"
#include "formats/codesignature/signaturereader.h"
#include "fuzz/fuzzing.h"

#include <QBuffer>

using namespace toolchain::codesignature;

namespace {

/// What is read of a signature that is to be replaced: never more than there is, and each directory a whole
/// one without code.
void readHeads(const QByteArray &bytes)
{
    QBuffer file;
    file.setData(bytes);
    (void)file.open(QIODevice::ReadOnly);
    const auto heads = readSignatureHeads(file, {0, quint64(bytes.size())});
    if (!heads)
        return;
    for (const IndexedBlob &blob : heads->blobs()) {
        require(blob.bytes.size() <= bytes.size());
        const auto directory = CodeDirectory::parse(blob.bytes);
        require(!directory || directory->codeSlotCount() == 0 || blob.type == slot::cms
                || directory->bytes().size() == blob.bytes.size());
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    readHeads(inputBytes(data, size));
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
