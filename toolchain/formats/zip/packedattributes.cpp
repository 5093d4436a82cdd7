#include "formats/zip/packedattributes.h"

#include "formats/appledouble.h"

namespace toolchain::zip {

namespace {

constexpr QByteArrayView sequester = "__MACOSX/";

bool beginsAsAppleDouble(ZipDirectory &directory, const PackedEntry &entry)
{
    QByteArray start;
    const auto takeStart = [&start](QByteArrayView piece) {
        start = piece.first(std::min<qsizetype>(piece.size(), 8)).toByteArray();
        return false; // no more is needed
    };
    return entry.isFile() && directory.read(entry, takeStart) && appledouble::isAppleDouble(start);
}

} // namespace

PackedAttributes::PackedAttributes(ZipDirectory &directory)
    : m_directory(directory)
{
    for (const PackedEntry &entry : directory.entries()) {
        QByteArray owner = ownerOf(entry.name);
        if (owner.isEmpty())
            continue;
        if (directory.find(owner) == nullptr)
            owner += '/';
        if (directory.find(owner) == nullptr || m_holders.contains(owner)
            || !beginsAsAppleDouble(directory, entry))
            continue;
        m_owners.insert(entry.name, owner);
        m_holders.insert(owner, entry.name);
    }
}

/// The name of what a file called so would hold the attributes of; empty if it is not called as such files
/// are.
QByteArray PackedAttributes::ownerOf(const QByteArray &name)
{
    const qsizetype start = name.lastIndexOf('/') + 1;
    if (!name.sliced(start).startsWith("._") || name.size() - start < 3)
        return {};
    const QByteArray owner = name.first(start) + name.sliced(start + 2);
    return owner.startsWith(sequester) ? owner.sliced(sequester.size()) : owner;
}

bool PackedAttributes::isPartOfAnother(const PackedEntry &entry) const
{
    return m_owners.contains(entry.name)
        || (entry.isFolder() && entry.name.startsWith(sequester) && !m_owners.isEmpty());
}

const PackedEntry *PackedAttributes::attributesOf(const PackedEntry &entry) const
{
    const auto holder = m_holders.find(entry.name);
    return holder == m_holders.end() ? nullptr : m_directory.find(*holder);
}

} // namespace toolchain::zip
