#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <functional>

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

/// The longest of several works, each with the events that it causes. Main thread.
class LongestWork {
public:
    void measure(const std::function<void()> &work)
    {
        QElapsedTimer clock;
        clock.start();
        work();
        QCoreApplication::processEvents();
        m_longest = qMax(m_longest, clock.elapsed());
    }
    [[nodiscard]] qint64 milliseconds() const { return m_longest; }

private:
    qint64 m_longest = 0;
};
