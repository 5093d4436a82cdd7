#pragma once

#include "formats/bytestreams.h"

#include <QByteArray>
#include <QString>

#include <map>
#include <string>
#include <vector>

namespace toolchain {

namespace hfsplus {

/// Where the bytes of a file lie on a volume.
struct StoredFork {
    struct Run {
        quint32 firstBlock = 0;
        quint32 blockCount = 0;
    };
    quint64 size = 0; ///< in bytes
    std::vector<Run> runs;
};

/// A file, folder or symbolic link as a volume's catalog has it.
struct VolumeEntry {
    quint32 number = 0; ///< the catalog's; entriesOf() takes that of a folder
    QString storedName;
    quint16 mode = 0; ///< as stat gives it; the kind of file is always set
    qint64 modified = 0; ///< seconds since 1970
    qint64 accessed = 0;
    bool isHardLink = false; ///< the bytes belong to another entry, which is not looked up
    bool isCompressed = false; ///< the bytes are not those of the file
    StoredFork data; ///< empty for a folder; the target of a link
};

} // namespace hfsplus

/// Reads an HFS+ volume, also one that other programs have made, with or without a journal, in one piece or
/// in many. Memory grows with the number of files. Trusts nothing that the volume says of itself. Format:
/// Apple Technical Note TN1150.
class HfsPlusReader {
public:
    /// Whether a volume of this kind begins where the source does.
    [[nodiscard]] static bool isVolume(const ByteSource &source);

    /// Reads the catalog.
    explicit HfsPlusReader(ByteSource source);

    /// What makes the volume unreadable; empty if nothing does. A source that gives no bytes is not told of
    /// here.
    [[nodiscard]] const std::string &error() const { return m_error; }

    [[nodiscard]] const QString &volumeName() const { return m_volumeName; }

    /// What lies in a folder, in the volume's order, without what the volume keeps for itself.
    [[nodiscard]] const std::vector<hfsplus::VolumeEntry> &entriesOf(quint32 folder) const;

    /// The mode of the root folder and its dates.
    [[nodiscard]] const hfsplus::VolumeEntry &rootFolder() const { return m_root; }

    /// Gives the bytes of a file or the target of a link to the sink. False if the sink stops it or the
    /// source does not give them.
    [[nodiscard]] bool read(const hfsplus::StoredFork &fork, const ByteSink &sink) const;

private:
    using RecordHandler = void (HfsPlusReader::*)(QByteArrayView key, QByteArrayView data);

    [[nodiscard]] hfsplus::StoredFork forkAt(QByteArrayView bytes, qsizetype offset, quint32 number) const;
    bool readFork(const hfsplus::StoredFork &fork, quint64 offset, char *target, qsizetype size) const;
    bool readTree(const hfsplus::StoredFork &tree, RecordHandler handler);
    bool readNode(QByteArrayView node, RecordHandler handler);
    void takeExtents(QByteArrayView key, QByteArrayView data);
    void takeCatalogRecord(QByteArrayView key, QByteArrayView data);

    const ByteSource m_source;
    std::string m_error;
    quint32 m_blockSize = 0;
    QString m_volumeName;
    hfsplus::VolumeEntry m_root;
    std::map<quint32, std::vector<hfsplus::StoredFork::Run>> m_moreRuns; ///< beyond the first eight, by file
    std::map<quint32, std::vector<hfsplus::VolumeEntry>> m_folders;
};

} // namespace toolchain
