#pragma once

#include <QtGlobal>

#include <future>

namespace platform {

/// Has memory ready by the time that it is written to. The first touch of fresh memory takes longer than what
/// comes through a pipe meanwhile, but another processor can do it beforehand. One thread; does nothing where
/// the host cannot, and nothing for less than some MiB.
class MemoryAhead {
public:
    /// `next` is written to next, and after it what follows, `room` bytes in all. Does not wait.
    void follow(char *next, qsizetype room);

    /// Returns once nothing is being made ready, so that the memory may be moved.
    void pause() { m_work = {}; }

private:
    std::future<void> m_work;
    char *m_ready = nullptr; // up to here all is ready, or will be
};

} // namespace platform
