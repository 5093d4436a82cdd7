#pragma once

#include "platform/posix/uniquedescriptor.h"

#include <QByteArray>

namespace platform {

/// Reads one stream of a child. One thread.
class PipeReader {
public:
    /// How much a pipe is to hold, in bytes: a tool that prints much waits less often for its reader than
    /// with the usual 64 KiB, and fifty tools at once stay below what a user's pipes may hold together.
    static constexpr qsizetype capacity = 256LL * 1024;

    PipeReader() = default;
    explicit PipeReader(UniqueDescriptor readEnd)
        : m_readEnd(std::move(readEnd))
    {
    }

    /// For poll(); -1 once the end of file has been read.
    int descriptor() const { return m_readEnd.get(); }
    bool isAtEnd() const { return !m_readEnd; }

    /// What there is now, up to all that a pipe holds; blocks while there is nothing. Empty at the end of
    /// file.
    const QByteArray &readChunk();

    /// All that comes until the end of file.
    QByteArray readToEnd();

private:
    UniqueDescriptor m_readEnd;
    QByteArray m_chunk;
};

} // namespace platform
