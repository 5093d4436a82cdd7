#pragma once

#include "formats/bytestreams.h"
#include "platform/result.h"

#include <QByteArray>
#include <QFile>
#include <QHash>

#include <vector>

namespace toolchain::zip {

/// What an archive's directory tells of a file, folder or link.
struct PackedEntry {
    QByteArray name; ///< byte for byte; a folder's ends in a slash
    quint16 mode = 0; ///< as stat gives it; the kind of file is always set
    qint64 modified = 0; ///< seconds since 1970
    quint16 flags = 0;
    quint16 method = 0;
    quint32 checksum = 0;
    quint64 packedSize = 0;
    quint64 plainSize = 0;
    quint64 offset = 0; ///< of the local header
    quint64 bytesOffset = 0; ///< of the packed bytes

    [[nodiscard]] bool isFolder() const;
    [[nodiscard]] bool isLink() const;
    [[nodiscard]] bool isFile() const;
};

/// Reads a zip archive by its directory. Trusts nothing that it says: entries that share bytes, that claim to
/// hold more than packing can hold, that are there twice or lie outside of the file make the whole archive
/// unusable, by name. Memory grows with the directory's own length. One thread. Format: PKWARE's APPNOTE.TXT.
class ZipDirectory {
public:
    /// Reads the directory.
    explicit ZipDirectory(const QString &path);

    /// Fails where the archive cannot be used.
    [[nodiscard]] const platform::Outcome &outcome() const { return m_outcome; }

    /// In the order of the directory.
    [[nodiscard]] const std::vector<PackedEntry> &entries() const { return m_entries; }

    /// The sum of the plain sizes, in bytes.
    [[nodiscard]] quint64 plainSize() const;

    /// The entry of that name; null if there is none.
    [[nodiscard]] const PackedEntry *find(const QByteArray &name) const;

    /// Gives the bytes of an entry to the sink. Fails where something is wrong with them; a sink that stops
    /// it is no failure.
    [[nodiscard]] platform::Outcome read(const PackedEntry &entry, const ByteSink &sink);

    /// The bytes of an entry of at most `most` bytes.
    [[nodiscard]] platform::Result<QByteArray> bytesOf(const PackedEntry &entry, quint64 most);

private:
    struct Ending {
        quint64 count = 0;
        quint64 offset = 0;
        quint64 size = 0;
    };
    enum class Giving { isDone, isStopped };
    using Given = platform::Result<Giving>;

    [[nodiscard]] bool readEnding(Ending &ending);
    [[nodiscard]] bool readLargeEnding(qint64 endOffset, Ending &ending);
    [[nodiscard]] QByteArray bytesAt(quint64 offset, qsizetype size);
    void readEntries(const Ending &ending);
    [[nodiscard]] qsizetype readEntry(QByteArrayView directory, qsizetype at);
    void locate(PackedEntry &entry, quint64 directoryOffset);
    void refuseSharedBytes();
    [[nodiscard]] Given inflate(const PackedEntry &entry, const ByteSink &sink);
    [[nodiscard]] Given copyStored(const PackedEntry &entry, const ByteSink &sink);
    void fail(const QByteArray &name, const QString &reason);

    QFile m_file;
    platform::Outcome m_outcome;
    std::vector<PackedEntry> m_entries;
    QHash<QByteArray, std::size_t> m_places;
};

} // namespace toolchain::zip
