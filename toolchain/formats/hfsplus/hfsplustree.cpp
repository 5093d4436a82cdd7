#include "formats/hfsplus/hfsplustree.h"

#include "formats/bigendian.h"
#include "formats/hfsplus/hfsplusformat.h"

namespace toolchain::hfsplus {

namespace {

constexpr qsizetype headerRecordSize = 106;
constexpr qsizetype userRecordSize = 128;
constexpr qsizetype mapRecordOffset = nodeDescriptorSize + headerRecordSize + userRecordSize;
constexpr qsizetype offsetSize = 2;

QByteArray nodeDescriptor(quint32 next, quint32 previous, qint8 kind, quint8 height, quint16 recordCount)
{
    return BigEndianBytes().u32(next).u32(previous).add(kind).u8(height).u16(recordCount).zeros(2).bytes();
}

/// Puts a node's records behind its descriptor, and where they begin at its end, backwards.
QByteArray filledNode(const QByteArray &descriptor, const std::vector<QByteArray> &records,
                      qsizetype nodeSize)
{
    QByteArray node = descriptor;
    QByteArray offsets;
    for (const QByteArray &record : records) {
        offsets.prepend(BigEndianBytes().u16(quint16(node.size())).bytes());
        node += record;
    }
    offsets.prepend(BigEndianBytes().u16(quint16(node.size())).bytes());
    node.append(nodeSize - node.size() - offsets.size(), '\0');
    return node + offsets;
}

class TreeBuilder {
public:
    explicit TreeBuilder(const TreeForm &form)
        : m_form(form)
    {
    }

    QByteArray build(const std::vector<TreeRecord> &records)
    {
        m_leafRecords = quint32(records.size());
        std::vector<TreeRecord> level = records;
        while (!level.empty() && (m_depth == 0 || level.size() > 1))
            level = addLevel(level);
        if (!level.empty())
            m_root = nodeCount();
        if (nodeCount() >= mapSize() * 8)
            return {};
        return headerNodeBytes() + m_nodes;
    }

private:
    [[nodiscard]] qsizetype mapSize() const { return m_form.nodeSize - mapRecordOffset - 4 * offsetSize; }
    [[nodiscard]] quint32 nodeCount() const { return quint32(m_nodes.size() / m_form.nodeSize); }

    /// Adds the nodes of one level, and answers the records by which the level above finds them.
    std::vector<TreeRecord> addLevel(const std::vector<TreeRecord> &records)
    {
        const quint32 firstNode = nodeCount() + 1; // node 0 is the header
        const auto groups = grouped(records);
        std::vector<TreeRecord> above;
        ++m_depth;
        for (std::size_t group = 0; group < groups.size(); ++group) {
            const quint32 number = firstNode + quint32(group);
            const quint32 next = group + 1 < groups.size() ? number + 1 : 0;
            const quint32 previous = group > 0 ? number - 1 : 0;
            const auto &members = groups[group];
            const QByteArray descriptor = nodeDescriptor(next, previous, m_depth == 1 ? leafNode : indexNode,
                                                         m_depth, quint16(members.size()));
            m_nodes += filledNode(descriptor, members, m_form.nodeSize);
            above.push_back({m_firstKeys[group], BigEndianBytes().u32(number).bytes()});
        }
        if (m_depth == 1)
            m_leafNodes = quint32(groups.size());
        return above;
    }

    /// The records node by node, as many in each as it can hold.
    std::vector<std::vector<QByteArray>> grouped(const std::vector<TreeRecord> &records)
    {
        std::vector<std::vector<QByteArray>> groups;
        m_firstKeys.clear();
        qsizetype room = 0;
        for (const TreeRecord &record : records) {
            const qsizetype size = record.key.size() + record.data.size() + offsetSize;
            if (size > room) {
                groups.emplace_back();
                m_firstKeys.push_back(record.key);
                room = m_form.nodeSize - nodeDescriptorSize - offsetSize;
            }
            groups.back().push_back(record.key + record.data);
            room -= size;
        }
        return groups;
    }

    [[nodiscard]] QByteArray headerNodeBytes() const
    {
        BigEndianBytes header;
        header.u16(m_depth).u32(m_root).u32(m_leafRecords).u32(m_leafNodes > 0 ? 1 : 0).u32(m_leafNodes);
        header.u16(m_form.nodeSize).u16(m_form.longestKey).u32(nodeCount() + 1).u32(0).zeros(2);
        header.u32(m_form.nodeSize).zeros(2).u32(m_form.attributes).zeros(64);
        return filledNode(nodeDescriptor(0, 0, headerNode, 0, 3),
                          {header.bytes(), QByteArray(userRecordSize, '\0'), map()}, m_form.nodeSize);
    }

    /// One bit for each node, set for those in use: all there are.
    [[nodiscard]] QByteArray map() const
    {
        const quint32 used = nodeCount() + 1;
        QByteArray bits(qsizetype(used / 8), '\xff');
        if (used % 8 != 0)
            bits.append(char(0xff << (8 - used % 8)));
        return bits.leftJustified(mapSize(), '\0');
    }

    const TreeForm m_form;
    QByteArray m_nodes;
    std::vector<QByteArray> m_firstKeys;
    quint8 m_depth = 0;
    quint32 m_root = 0;
    quint32 m_leafRecords = 0;
    quint32 m_leafNodes = 0;
};

} // namespace

QByteArray treeFile(const std::vector<TreeRecord> &records, const TreeForm &form)
{
    return TreeBuilder(form).build(records);
}

} // namespace toolchain::hfsplus
