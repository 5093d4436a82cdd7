#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace sealwright {

/// Turns the terminal's interrupts (SIGINT) into a signal of the event loop for as long as it lives. One at a
/// time.
class Interrupt : public QObject {
    Q_OBJECT

public:
    Interrupt();
    ~Interrupt() override;

Q_SIGNALS:
    void arrived();

private:
    void read();

    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace sealwright
