// What 7z tells of an APFS volume, whole and in pieces.

#include "formats/apfslisting.h"
#include "fuzz/fuzzing.h"

#include <algorithm>

using namespace toolchain;

namespace {

ApfsListing listingInPieces(QByteArrayView bytes, qsizetype pieceSize)
{
    ApfsListing listing;
    for (qsizetype from = 0; from < bytes.size(); from += pieceSize)
        listing.take(bytes.sliced(from, std::min(pieceSize, bytes.size() - from)));
    listing.finish();
    return listing;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr qsizetype pieceSize = 7;
    const QByteArray bytes = inputBytes(data, size);
    const ApfsListing whole = listingInPieces(bytes, std::max<qsizetype>(bytes.size(), 1));
    const ApfsListing pieces = listingInPieces(bytes, pieceSize);
    require(whole.volumeName() == pieces.volumeName() && whole.problem() == pieces.problem());
    require(whole.attributes() == pieces.attributes());
    require(whole.attributes().size() <= bytes.count('\n') + 1);
    return 0;
}
