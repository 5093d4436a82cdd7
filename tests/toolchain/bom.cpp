#include "toolchain/bom.h"

#include "formats/bigendian.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace toolchain::package {

namespace {

constexpr qsizetype mostItems = 2'000'000;
constexpr qsizetype deepestFolder = 512;
constexpr qsizetype mostPathBytes = 256 << 20; // of all paths together
constexpr quint32 noBlock = 0;

/// The numbered blocks of the file: an index of places, and names for some of them.
class BlockStore {
public:
    explicit BlockStore(const QByteArray &bytes)
        : m_bytes(bytes)
    {
        m_index = range(bigEndianAt<quint32>(bytes, 16), bigEndianAt<quint32>(bytes, 20));
        m_count = std::min<quint32>(bigEndianAt<quint32>(m_index, 0), quint32(m_index.size() / 8));
    }

    [[nodiscard]] bool isStore() const { return m_bytes.startsWith("BOMStore") && m_count > 0; }

    /// Empty for a number that is none and for a place outside of the file.
    [[nodiscard]] QByteArrayView block(quint32 number) const
    {
        const qsizetype at = 4 + qsizetype(number) * 8;
        if (number >= m_count)
            return {};
        return range(bigEndianAt<quint32>(m_index, at), bigEndianAt<quint32>(m_index, at + 4));
    }

    [[nodiscard]] QByteArrayView blockNamed(QByteArrayView name) const
    {
        const QByteArrayView names =
            range(bigEndianAt<quint32>(m_bytes, 24), bigEndianAt<quint32>(m_bytes, 28));
        qsizetype at = 4;
        while (at + 5 <= names.size()) {
            const auto number = bigEndianAt<quint32>(names, at);
            const qsizetype length = uchar(names[at + 4]);
            if (at + 5 + length <= names.size() && names.sliced(at + 5, length) == name)
                return block(number);
            at += 5 + length;
        }
        return {};
    }

private:
    [[nodiscard]] QByteArrayView range(quint32 offset, quint32 length) const
    {
        if (quint64(offset) + length > quint64(m_bytes.size()))
            return {};
        return QByteArrayView(m_bytes).sliced(offset, length);
    }

    const QByteArray &m_bytes;
    QByteArrayView m_index;
    quint32 m_count = 0;
};

struct Item {
    quint32 number = 0;
    quint32 parent = 0;
    QByteArray name;
    BomEntry entry;
};

QByteArray textAt(QByteArrayView block, qsizetype offset)
{
    if (offset >= block.size())
        return {};
    const QByteArrayView rest = block.sliced(offset);
    const qsizetype end = rest.indexOf('\0');
    return rest.first(end < 0 ? rest.size() : end).toByteArray();
}

/// Walks the leaves of the tree of paths, which hang together as a list.
class PathReader {
public:
    explicit PathReader(const BlockStore &store)
        : m_store(store)
    {
    }

    platform::Result<QList<Item>> read()
    {
        const QByteArrayView tree = m_store.blockNamed("Paths");
        if (!tree.startsWith("tree"))
            return damaged(u"no tree of paths"_s);
        auto number = firstLeaf(bigEndianAt<quint32>(tree, 8));
        QSet<quint32> seen;
        while (number && *number != noBlock) {
            const QByteArrayView leaf = m_store.block(*number);
            if (seen.contains(*number) || !readLeaf(leaf))
                return damaged(u"a tree that is none"_s);
            seen.insert(*number);
            number = bigEndianAt<quint32>(leaf, 4);
        }
        return number ? platform::Result<QList<Item>>(m_items) : damaged(u"a tree without leaves"_s);
    }

private:
    static platform::Error damaged(const QString &reason)
    {
        return {u"no bill of materials, or a damaged one: "_s + reason};
    }

    std::optional<quint32> firstLeaf(quint32 number) const
    {
        for (int level = 0; level < 32; ++level) {
            const QByteArrayView node = m_store.block(number);
            if (node.size() < 12)
                return std::nullopt;
            if (bigEndianAt<quint16>(node, 0) != 0)
                return number;
            number = bigEndianAt<quint32>(node, 12);
        }
        return std::nullopt;
    }

    bool readLeaf(QByteArrayView leaf)
    {
        const qsizetype count = bigEndianAt<quint16>(leaf, 2);
        if (leaf.size() < 12 + count * 8 || m_items.size() + count > mostItems
            || bigEndianAt<quint16>(leaf, 0) == 0)
            return false;
        for (qsizetype pair = 0; pair < count; ++pair) {
            const auto info = bigEndianAt<quint32>(leaf, 12 + pair * 8);
            const auto file = bigEndianAt<quint32>(leaf, 16 + pair * 8);
            if (!readItem(m_store.block(info), m_store.block(file)))
                return false;
        }
        return true;
    }

    bool readItem(QByteArrayView info, QByteArrayView file)
    {
        const QByteArrayView details = m_store.block(bigEndianAt<quint32>(info, 4));
        if (info.size() < 8 || file.size() < 5 || details.size() < 27)
            return false;
        Item item{bigEndianAt<quint32>(info, 0), bigEndianAt<quint32>(file, 0), textAt(file, 4), {}};
        const bool isName = !item.name.isEmpty() && item.name != ".." && !item.name.contains('/');
        item.entry = entryOf(details);
        m_items.append(item);
        return isName;
    }

    static BomEntry entryOf(QByteArrayView details)
    {
        BomEntry entry;
        const auto type = static_cast<unsigned char>(details[0]);
        entry.type = type == 2 ? BomType::folder
            : type == 3        ? BomType::link
            : type == 4        ? BomType::device
                               : BomType::file;
        entry.mode = bigEndianAt<quint16>(details, 4);
        entry.user = bigEndianAt<quint32>(details, 6);
        entry.group = bigEndianAt<quint32>(details, 10);
        entry.size = bigEndianAt<quint32>(details, 18);
        entry.checksum = bigEndianAt<quint32>(details, 23);
        if (entry.type == BomType::link)
            entry.linkTarget = textAt(details, 31);
        return entry;
    }

    const BlockStore &m_store;
    QList<Item> m_items;
};

/// Puts the paths together from names and numbers of folders.
class PathMaker {
public:
    explicit PathMaker(const QList<Item> &items)
        : m_items(items)
    {
        for (qsizetype place = 0; place < items.size(); ++place)
            m_children[items[place].parent].append(place);
    }

    platform::Result<QList<BomEntry>> make()
    {
        addChildren(0, {}, 0);
        if (m_isTooMuch || m_entries.size() != m_items.size())
            return platform::Error{
                u"a damaged bill of materials: its folders go in circles or are too deep"_s};
        return m_entries;
    }

private:
    void addChildren(quint32 folder, const QByteArray &path, qsizetype depth)
    {
        const QList<qsizetype> children =
            m_children.take(folder); // each folder once, so that no circle is endless
        m_isTooMuch = m_isTooMuch || depth > deepestFolder;
        for (const qsizetype place : children) {
            if (m_isTooMuch)
                return;
            const Item &item = m_items[place];
            BomEntry entry = item.entry;
            entry.path = path.isEmpty() ? item.name : path + '/' + item.name;
            m_pathBytes += entry.path.size();
            m_isTooMuch = m_pathBytes > mostPathBytes;
            m_entries.append(entry);
            addChildren(item.number, entry.path, depth + 1);
        }
    }

    const QList<Item> &m_items;
    QHash<quint32, QList<qsizetype>> m_children;
    QList<BomEntry> m_entries;
    qsizetype m_pathBytes = 0;
    bool m_isTooMuch = false;
};

} // namespace

platform::Result<QList<BomEntry>> readBom(const QByteArray &bytes)
{
    const BlockStore store(bytes);
    if (!store.isStore())
        return platform::Error{u"no bill of materials"_s};
    const auto items = PathReader(store).read();
    return items ? PathMaker(*items).make() : items.failure();
}

} // namespace toolchain::package
