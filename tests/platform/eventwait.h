#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>

#include <functional>

/// Serves the event loop until the condition holds; false if it does not within ten seconds.
inline bool waitFor(const std::function<bool()> &condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return condition();
}

/// Serves all that is due now.
inline void serveEvents()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents();
}
