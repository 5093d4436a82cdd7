#include "platform/memoryahead.h"

#include <sys/mman.h>

#include <chrono>

namespace platform {

namespace {

constexpr qsizetype stepSize = 4LL << 20; // bytes
constexpr qsizetype farthest = 16LL << 20;

/// Of what it is asked for, the host takes whole pages alone. Nothing is written: memory that has another use
/// by now stays as it is.
void touch(char *from, qsizetype length)
{
#ifdef MADV_POPULATE_WRITE
    constexpr quintptr pageSize = 4096;
    char *const first = from + (-quintptr(from) & (pageSize - 1));
    madvise(first, size_t(length) & ~(pageSize - 1), MADV_POPULATE_WRITE);
#else
    Q_UNUSED(from)
    Q_UNUSED(length)
#endif
}

bool isDone(const std::future<void> &work)
{
    return !work.valid() || work.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

} // namespace

void MemoryAhead::follow(char *next, qsizetype room)
{
    const bool isBehind = m_ready < next || m_ready > next + room;
    char *const from = isBehind ? next : m_ready;
    if (from - next > farthest || next + room - from < stepSize || !isDone(m_work))
        return;
    m_ready = from + stepSize;
    m_work = std::async(std::launch::async, touch, from, stepSize);
}

} // namespace platform
