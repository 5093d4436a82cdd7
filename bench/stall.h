#pragma once

#include <QElapsedTimer>
#include <QTimer>

/// The longest time that a person would have had to wait for the event loop since this was made. Main thread.
class Stall {
public:
    Stall()
    {
        QObject::connect(&m_timer, &QTimer::timeout,
                         [this] { m_longest = qMax(m_longest, m_clock.restart()); });
        m_clock.start();
        m_timer.start(0);
    }
    [[nodiscard]] qint64 milliseconds() const { return m_longest; }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_longest = 0;
};
