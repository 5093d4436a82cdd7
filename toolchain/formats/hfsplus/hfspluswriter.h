#pragma once

#include "formats/bytestreams.h"
#include "formats/hfsplus/hfsplusrecords.h"
#include "platform/result.h"

namespace toolchain {

/// Makes an HFS+ volume that holds a source tree and no free block. Every file lies in one piece. Memory
/// grows with the number of files, not with their sizes. Extended attributes, resource forks and hard links
/// are taken along; owners become the one that macOS calls unknown. Format: Apple Technical Note TN1150.
class HfsPlusWriter {
public:
    /// Lays the volume out. Reads none of the files yet.
    /// `time` is the volume's date of creation in seconds since 1970, the one that the tree was read with.
    HfsPlusWriter(hfsplus::SourceTree tree, qint64 time);

    /// Fails where there can be no such volume, and with what went wrong while it was written.
    [[nodiscard]] const platform::Outcome &outcome() const { return m_outcome; }

    /// Of the volume in bytes, a multiple of 4,096.
    [[nodiscard]] quint64 size() const;

    /// Gives the volume's bytes to the sink in their order. False if the sink stops it or a file cannot be
    /// read as the tree told of it.
    [[nodiscard]] bool write(const ByteSink &sink);

private:
    void layOutFiles();
    [[nodiscard]] bool layOut(hfsplus::Fork &fork, quint64 &nextBlock);
    void layOutSpecialFiles();
    bool writeItem(const hfsplus::SourceItem &item);
    bool writeFile(const hfsplus::SourceItem &item);
    bool writeForks(const hfsplus::SourceItem &item);
    bool writeFork(const hfsplus::SourceItem &item, const hfsplus::Fork &fork, const QByteArray &bytes);
    bool writeBytes(QByteArrayView bytes);
    bool writePadding();
    [[nodiscard]] QByteArray allocationBytes() const;

    std::vector<hfsplus::SourceItem> m_items;
    const qint64 m_time;
    platform::Outcome m_outcome;
    hfsplus::VolumeSummary m_summary;
    QByteArray m_catalog;
    QByteArray m_extents;
    QByteArray m_attributes;
    ByteSink m_sink;
    quint64 m_written = 0;
};

} // namespace toolchain
