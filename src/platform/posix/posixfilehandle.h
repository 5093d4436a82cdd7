#pragma once

#include "platform/fileservice.h"
#include "platform/posix/uniquedescriptor.h"

#include <mutex>

namespace platform {

/// A file open for appending; one write is never mixed with another.
class PosixFileHandle : public FileHandle {
public:
    explicit PosixFileHandle(UniqueDescriptor file);

    void write(const QByteArray &bytes) override;
    void close() override;

private:
    std::mutex m_mutex;
    UniqueDescriptor m_file;
};

} // namespace platform
