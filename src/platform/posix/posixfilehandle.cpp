#include "platform/posix/posixfilehandle.h"

#include "platform/posix/portablecalls.h"

namespace platform {

PosixFileHandle::PosixFileHandle(UniqueDescriptor file)
    : m_file(std::move(file))
{
}

void PosixFileHandle::write(const QByteArray &bytes)
{
    const std::lock_guard lock(m_mutex);
    // With no file open this fails, as it should.
    static_cast<void>(writeFully(m_file.get(), bytes.constData(), static_cast<size_t>(bytes.size())));
}

void PosixFileHandle::close()
{
    const std::lock_guard lock(m_mutex);
    m_file.close();
}

} // namespace platform
