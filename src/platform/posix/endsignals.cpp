#include "platform/posix/endsignals.h"

#include "platform/posix/portablecalls.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <optional>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

constexpr std::array endSignals{SIGINT, SIGTERM};

// A handler can reach nothing but what is global.
int writeEnd = -1;
int lastArrived = 0;
std::array<struct sigaction, endSignals.size()> earlierActions{};
std::optional<Pipe> ends;

void note(int signal)
{
    const auto byte = static_cast<char>(signal);
    [[maybe_unused]] const auto written = write(writeEnd, &byte, 1);
}

void listenTo(int signal, struct sigaction &earlier)
{
    if (sigaction(signal, nullptr, &earlier) != 0 || earlier.sa_handler == SIG_IGN)
        return;
    struct sigaction action { };
    action.sa_handler = note;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    sigaction(signal, &action, nullptr);
}

} // namespace

EndSignals::EndSignals(Handler handler)
    : m_handler(std::move(handler))
{
    ends = makePipe();
    if (!ends)
        return; // the signals then end the process, as without us
    writeEnd = ends->writeEnd.get();
    m_notifier = std::make_unique<QSocketNotifier>(ends->readEnd.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &EndSignals::read);
    for (size_t i = 0; i < endSignals.size(); ++i)
        listenTo(endSignals[i], earlierActions[i]);
}

EndSignals::~EndSignals()
{
    if (!m_notifier)
        return;
    for (size_t i = 0; i < endSignals.size(); ++i)
        sigaction(endSignals[i], &earlierActions[i], nullptr);
    m_notifier.reset();
    writeEnd = -1;
    ends.reset();
}

void EndSignals::read()
{
    char byte = 0;
    if (::read(ends->readEnd.get(), &byte, 1) != 1)
        return;
    lastArrived = static_cast<unsigned char>(byte);
    m_handler(lastArrived);
}

int EndSignals::arrived()
{
    return lastArrived;
}

void EndSignals::endBy(int signal)
{
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    std::_Exit(EXIT_FAILURE); // for one that is blocked
}

QString nameOfEndSignal(int signal)
{
    return signal == SIGINT ? u"SIGINT"_s : signal == SIGTERM ? u"SIGTERM"_s : QString::number(signal);
}

} // namespace platform
