#pragma once

#include "formats/timestampauthority.h"
#include "toolchain/loopbacksocket.h"

#include <QString>

#include <atomic>
#include <memory>
#include <thread>

/// The time-stamp authority of a keychain folder, on a port of this machine as long as this lives.
class TimestampServer {
public:
    explicit TimestampServer(const QString &keychainFolder);
    ~TimestampServer();
    TimestampServer(const TimestampServer &) = delete;
    TimestampServer &operator=(const TimestampServer &) = delete;

    [[nodiscard]] QString url() const;

private:
    void serve();
    void answer(int connection) const;

    std::unique_ptr<toolchain::TimestampAuthority> m_authority;
    const LoopbackSocket m_socket;
    std::atomic<bool> m_ends = false;
    std::thread m_thread;
};
