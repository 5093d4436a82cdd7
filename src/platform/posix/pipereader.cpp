#include "platform/posix/pipereader.h"

#include <cerrno>

namespace platform {

const QByteArray &PipeReader::readChunk()
{
    m_chunk.resize(capacity);
    ssize_t count = 0;
    do {
        count = m_readEnd ? read(m_readEnd.get(), m_chunk.data(), static_cast<size_t>(capacity)) : 0;
    } while (count < 0 && errno == EINTR);
    m_chunk.resize(qMax<qsizetype>(count, 0));
    if (m_chunk.isEmpty())
        m_readEnd.close();
    return m_chunk;
}

QByteArray PipeReader::readToEnd()
{
    QByteArray all;
    while (!isAtEnd())
        all += readChunk();
    return all;
}

} // namespace platform
