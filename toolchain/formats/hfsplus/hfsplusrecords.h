#pragma once

#include "formats/hfsplus/hfsplussource.h"
#include "formats/hfsplus/hfsplustree.h"

namespace toolchain::hfsplus {

/// What the header of a volume tells.
struct VolumeSummary {
    quint32 blockSize = 0;
    quint32 blockCount = 0;
    quint32 fileCount = 0;
    quint32 folderCount = 0; ///< without the root folder
    quint32 nextItem = 0; ///< the number that the next new file would have
    Fork allocation;
    Fork extents;
    Fork catalog;
    Fork attributes;
    quint64 identifier = 0; ///< of the volume, any number
};

/// The number in the catalog of the item at a place of the source tree.
[[nodiscard]] quint32 catalogNumber(std::size_t place);

/// All records of the catalog, in the order of their keys. `volumeCreated` is in seconds since 1970. Fails
/// with the file whose name is as good as another's to HFS+. Format: Apple Technical Note TN1150, "Catalog
/// File".
[[nodiscard]] platform::Result<std::vector<TreeRecord>> catalogRecords(const std::vector<SourceItem> &items,
                                                                       qint64 volumeCreated);

/// All records of the attributes' tree, in the order of their keys. Format: Apple Technical Note TN1150,
/// "Attributes File", and bsd/hfs/hfs_format.h of Apple's published kernel sources for the records of short
/// values.
[[nodiscard]] std::vector<TreeRecord> attributeRecords(const std::vector<SourceItem> &items);

/// The 512 bytes of a volume header, and of its copy at the end. No block is free.
/// Format: Apple Technical Note TN1150, "Volume Header".
[[nodiscard]] QByteArray volumeHeader(const VolumeSummary &summary, qint64 secondsSince1970);

} // namespace toolchain::hfsplus
