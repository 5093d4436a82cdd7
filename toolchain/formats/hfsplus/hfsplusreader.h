#pragma once

#include "formats/bytestreams.h"
#include "formats/hfsplus/hfsplusnames.h"
#include "platform/result.h"

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>
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

/// An extended attribute as a volume has it.
struct StoredAttribute {
    QString name;
    QByteArray value; ///< of a short one
    StoredFork fork; ///< of a long one
};

/// A file, folder or symbolic link as a volume's catalog has it.
struct VolumeEntry {
    quint32 number = 0; ///< the catalog's; entriesOf() takes that of a folder
    QString storedName;
    NameForm nameForm = NameForm::asStored;
    quint16 mode = 0; ///< as stat gives it; the kind of file is always set
    qint64 modified = 0; ///< seconds since 1970
    qint64 accessed = 0;
    quint32 link =
        0; ///< the number of the file that a hard link stands for, whose the rest is then; 0 for others
    bool isBrokenLink = false; ///< a hard link to nothing, or to a folder
    bool isCompressed = false; ///< by the file system
    QByteArray finderInfo; ///< 32 bytes, or none
    StoredFork data; ///< empty for a folder; the target of a link
    StoredFork resource;

    /// The number under which its attributes are found.
    [[nodiscard]] quint32 attributesNumber() const { return link != 0 ? link : number; }
};

} // namespace hfsplus

/// Reads an HFS+ volume, also one that other programs have made, with or without a journal, in one piece or
/// in many. Memory grows with the number of files, of which there may be two million, and with their
/// attributes. Trusts nothing that the volume says of itself. Format: Apple Technical Note TN1150.
class HfsPlusReader {
public:
    /// Whether a volume of this kind begins where the source does.
    [[nodiscard]] static bool isVolume(const ByteSource &source);

    /// Reads the catalog and the attributes.
    explicit HfsPlusReader(ByteSource source);

    /// Fails with what makes the volume unreadable. A source that gives no bytes is not told of
    /// here.
    [[nodiscard]] const platform::Outcome &outcome() const { return m_outcome; }

    [[nodiscard]] const QString &volumeName() const { return m_volumeName; }

    /// What lies in a folder, in the volume's order, without what the volume keeps for itself.
    [[nodiscard]] const std::vector<hfsplus::VolumeEntry> &entriesOf(quint32 folder) const;

    /// The mode of the root folder and its dates.
    [[nodiscard]] const hfsplus::VolumeEntry &rootFolder() const { return m_root; }

    /// Gives the bytes of a fork or the target of a link to the sink. False if the sink stops it or the
    /// source does not give them.
    [[nodiscard]] bool read(const hfsplus::StoredFork &fork, const ByteSink &sink) const;

    /// Whether the bytes of a file can be given: not those of one that its file system has compressed in a
    /// way that is not known here.
    [[nodiscard]] bool canReadFile(const hfsplus::VolumeEntry &entry) const;

    /// Gives the bytes of a file to the sink, unpacked if the file system has compressed them.
    [[nodiscard]] bool readFile(const hfsplus::VolumeEntry &entry, const ByteSink &sink) const;

    /// The extended attributes, in the volume's order, without resource fork and Finder information and
    /// without those that belong to compression.
    [[nodiscard]] std::vector<hfsplus::StoredAttribute> attributesOf(const hfsplus::VolumeEntry &entry) const;

    /// The value of an attribute; nothing if it is too long for memory or the source does not give it.
    [[nodiscard]] std::optional<QByteArray> valueOf(const hfsplus::StoredAttribute &attribute) const;

    /// The bytes of a resource fork, likewise.
    [[nodiscard]] std::optional<QByteArray> bytesOf(const hfsplus::StoredFork &fork) const;

private:
    using RecordHandler = bool (HfsPlusReader::*)(QByteArrayView key, QByteArrayView data);

    enum class ForkKind : quint8 { data = 0, resource = 0xff };
    using ForkName = std::pair<quint32, ForkKind>; ///< a file's number, and which of its forks

    [[nodiscard]] hfsplus::StoredFork forkAt(QByteArrayView bytes, qsizetype offset, ForkName name) const;
    bool readFork(const hfsplus::StoredFork &fork, quint64 offset, char *target, qsizetype size) const;
    bool readTree(const hfsplus::StoredFork &tree, RecordHandler handler);
    bool readNode(QByteArrayView node, RecordHandler handler);
    bool takeExtents(QByteArrayView key, QByteArrayView data);
    bool takeCatalogRecord(QByteArrayView key, QByteArrayView data);
    bool takeAttribute(QByteArrayView key, QByteArrayView data);
    void followHardLinks();
    void follow(hfsplus::VolumeEntry &entry, const std::map<quint32, const hfsplus::VolumeEntry *> &files);
    [[nodiscard]] QByteArray compressionOf(const hfsplus::VolumeEntry &entry) const;

    const ByteSource m_source;
    platform::Outcome m_outcome;
    quint32 m_blockSize = 0;
    QString m_volumeName;
    hfsplus::VolumeEntry m_root;
    std::map<ForkName, std::vector<hfsplus::StoredFork::Run>> m_moreRuns; ///< beyond the first eight
    std::map<quint32, std::vector<hfsplus::StoredAttribute>> m_attributes; ///< by the number of their file
    quint64 m_entryCount = 0;
    quint64 m_attributeBytes = 0;
    quint32 m_linksFolder = 0;
    std::map<quint32, std::vector<hfsplus::VolumeEntry>> m_folders;
};

} // namespace toolchain
