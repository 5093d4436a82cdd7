#pragma once

#include <QByteArray>

namespace toolchain {

/// What stands before and behind the one HFS+ volume of a disk with a GUID partition table.
/// Format: UEFI Forum, "GUID Partition Table (GPT) Disk Layout".
struct GuidTable {
    QByteArray protectiveRecord; ///< sector 0
    QByteArray header; ///< sector 1
    QByteArray entries; ///< the 32 sectors from 2 on; their copy is the same and stands behind the volume
    QByteArray gap; ///< free sectors up to the volume, which begins at a multiple of 4,096 bytes
    QByteArray backupHeader; ///< the last sector
};

/// Makes the table for a volume of so many sectors of 512 bytes. The disk and the volume get new identifiers.
[[nodiscard]] GuidTable guidTableFor(quint64 volumeSectors);

} // namespace toolchain
