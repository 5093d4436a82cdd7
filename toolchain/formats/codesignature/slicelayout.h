#pragma once

#include "formats/codesignature/machoimage.h"

namespace toolchain::codesignature {

/// How a slice is to be written: its new head, then its old bytes from the end of the head on, then zeros up
/// to the length of the code, then the place of the signature. All numbers count from the beginning of the
/// slice.
struct SliceLayout {
    ByteRange source; ///< where the old slice lies in its file
    QByteArray head;
    quint64 copiedLength = 0; ///< up to here the old bytes stay
    quint64 codeLength = 0; ///< where the signature begins
    quint64 signatureRoom = 0; ///< 0: none

    [[nodiscard]] quint64 length() const { return codeLength + signatureRoom; }
};

/// Where the code of a slice ends and its signature is to begin; an old signature's place is kept.
[[nodiscard]] quint64 codeLengthFor(const MachOSlice &slice);

/// Makes room for a signature, and rounds the size in memory of __LINKEDIT up to a multiple of the alignment.
/// The error says why the slice cannot hold one: no room for its command in the head, or a
/// __LINKEDIT that does not end the slice.
[[nodiscard]] platform::Result<SliceLayout> layoutWithSignature(const MachOSlice &slice, quint64 room,
                                                                quint64 segmentAlignment);

/// Takes the signature and its command out.
[[nodiscard]] platform::Result<SliceLayout> layoutWithoutSignature(const MachOSlice &slice);

/// Where the slices of a universal file begin, one after the other; and its header.
[[nodiscard]] QList<quint64> sliceOffsets(const QList<SliceLayout> &layouts);
[[nodiscard]] QByteArray universalHeader(const MachOImage &image, const QList<SliceLayout> &layouts);

} // namespace toolchain::codesignature
