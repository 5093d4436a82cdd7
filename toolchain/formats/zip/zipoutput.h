#pragma once

#include "platform/result.h"
#include "support/orderedwork.h"

#include <QByteArray>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace toolchain::zip {

/// A file, folder or symbolic link of an archive, by what the archive tells of it.
struct Member {
    QByteArray name; ///< UTF-8, byte for byte; a folder's ends in a slash
    quint16 mode = 0; ///< as stat gives it
    qint64 modified = 0; ///< seconds since 1970
};

/// Writes a zip archive into a file, packing on all cores: the blocks of a file are packed each with what
/// stands before it as its dictionary, and make up one stream. Has 64-bit sizes where they are needed. Takes
/// no more memory than some blocks for each core, and some hundred bytes for each member. After an error it
/// does nothing more. One thread. Format: APPNOTE.TXT, RFC 1951.
class ZipOutput {
public:
    /// `descriptor` is an empty file open for writing, `path` its name in errors; `level` is zlib's, from 0
    /// to 9.
    ZipOutput(int descriptor, std::filesystem::path path, int level);

    /// Adds a member whose bytes are at hand: a folder's are none, a link's are its target.
    void add(const Member &member, const QByteArray &bytes);

    /// Adds a file with exactly `size` bytes of the one under the path.
    void addFile(const Member &member, const std::filesystem::path &file, quint64 size);

    /// Writes what belongs behind the last member.
    void finish();

    [[nodiscard]] const platform::Outcome &outcome() const { return m_outcome; }

private:
    enum class Place { only, first, middle, last };

    /// A block on its way into the archive.
    struct Block {
        Place place = Place::only;
        quint64 plainSize = 0;
        quint32 checksum = 0; ///< CRC-32 of the plain bytes
        bool isStored = false; ///< the bytes are as they were
        QByteArray bytes;
    };

    /// What the directory tells of a member, and the local header before it.
    struct Entry {
        Member member;
        bool hasLargeSizes = false;
        quint16 method = 0;
        quint32 checksum = 0;
        quint64 packedSize = 0;
        quint64 plainSize = 0;
        quint64 offset = 0; ///< of the local header
    };

    [[nodiscard]] static Block pack(Place place, const QByteArray &bytes, const QByteArray &before,
                                    int level);
    void begin(const Member &member, quint64 size);
    void give(Place place, const QByteArray &bytes, const QByteArray &before);
    void take();
    void store(const Block &block);
    void patch(const Entry &entry);
    void write(QByteArrayView bytes);
    [[nodiscard]] QByteArray readBlock(int file, qsizetype size, const std::filesystem::path &path);
    [[nodiscard]] static QByteArray localHeader(const Entry &entry);
    [[nodiscard]] static QByteArray directoryEntry(const Entry &entry);
    [[nodiscard]] QByteArray directoryEnd(quint64 offset) const;

    const int m_descriptor;
    const std::filesystem::path m_path;
    const int m_level;
    platform::Outcome m_outcome;
    std::vector<Entry> m_entries;
    std::size_t m_stored = 0; ///< entries that are in the file as a whole
    quint64 m_length = 0; ///< of what the file holds
    OrderedWork<Block> m_work;
};

} // namespace toolchain::zip
