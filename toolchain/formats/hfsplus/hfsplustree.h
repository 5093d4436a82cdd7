#pragma once

#include <QByteArray>

#include <vector>

namespace toolchain::hfsplus {

/// One record of a B-tree's leaves.
struct TreeRecord {
    QByteArray key; ///< with the two bytes of its length in front
    QByteArray data;
};

/// What the header of a B-tree says of its form.
struct TreeForm {
    quint16 nodeSize = 0; ///< in bytes
    quint16 longestKey = 0; ///< in bytes, without the two of the length
    quint32 attributes = 0;
};

inline constexpr TreeForm catalogForm{8192, 516, 6};
inline constexpr TreeForm extentsForm{4096, 10, 2};
inline constexpr TreeForm attributesForm{8192, 266, 6};

/// The bytes of a B-tree file, full nodes with the records in the order given, which is that of their keys.
/// Empty if there are more nodes than the map in its header can tell of, 63,488 in a catalog: some 1.5
/// million files. Format: Apple Technical Note TN1150, "B-Trees".
[[nodiscard]] QByteArray treeFile(const std::vector<TreeRecord> &records, const TreeForm &form);

} // namespace toolchain::hfsplus
