#pragma once

#include "formats/zip/zipdirectory.h"

namespace toolchain::zip {

/// Which AppleDouble entries of an archive belong to which others, by their names: "._NAME" beside NAME, and
/// the same below
/// "__MACOSX". Both names by the archive's, those of folders with their slash.
class PackedAttributes {
public:
    /// Looks at the names, and at the first bytes of what may be AppleDouble.
    explicit PackedAttributes(ZipDirectory &directory);

    /// Whether an entry is no file of its own: one that holds attributes, or a folder of nothing but those.
    [[nodiscard]] bool isPartOfAnother(const PackedEntry &entry) const;

    /// The entry with another one's attributes; null if it has none.
    [[nodiscard]] const PackedEntry *attributesOf(const PackedEntry &entry) const;

private:
    [[nodiscard]] static QByteArray ownerOf(const QByteArray &name);

    const ZipDirectory &m_directory;
    QHash<QByteArray, QByteArray> m_owners; ///< the owner by the name of what holds its attributes
    QHash<QByteArray, QByteArray> m_holders; ///< the other way round
};

} // namespace toolchain::zip
