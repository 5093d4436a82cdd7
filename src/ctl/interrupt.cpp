#include "ctl/interrupt.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace sealwright {

namespace {

// A handler can reach nothing but what is global.
int pipeEnds[2] = {-1, -1};

void handle(int)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(pipeEnds[1], &byte, 1);
}

} // namespace

Interrupt::Interrupt()
{
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return; // interrupts then end the process, as without us
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &Interrupt::read);
    std::signal(SIGINT, handle);
}

Interrupt::~Interrupt()
{
    if (!m_notifier)
        return;
    std::signal(SIGINT, SIG_DFL);
    m_notifier.reset();
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
}

void Interrupt::read()
{
    char bytes[16];
    while (::read(pipeEnds[0], bytes, sizeof bytes) > 0) { }
    Q_EMIT arrived();
}

} // namespace sealwright
