#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <functional>
#include <memory>

namespace platform {

/// Tells the event loop of the signals by which a host ends a process, SIGINT and SIGTERM, for as long as it
/// lives. Of each kind the first is told; a second one ends the process, should the event loop be stuck. One
/// that was ignored when the process began, as a shell has it for what runs in the background, stays ignored.
/// One object at a time. Main thread.
class EndSignals : public QObject {
public:
    /// Gets the signal's number.
    using Handler = std::function<void(int signal)>;

    explicit EndSignals(Handler handler);
    ~EndSignals() override;

    /// The signal that has been told last; 0 if none has.
    static int arrived();
    /// Ends the process as the signal does by itself, so that whoever waits for it sees why it ended.
    [[noreturn]] static void endBy(int signal);

private:
    void read();

    const Handler m_handler;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

/// "SIGTERM" and the like.
[[nodiscard]] QString nameOfEndSignal(int signal);

} // namespace platform
