#pragma once

#include "platform/mainqueue.h"

#include <QObject>

namespace platform {

/// The main thread's Qt event loop as a queue. Made on the main thread.
class QtMainQueue : public MainQueue {
public:
    void post(std::function<void()> block) override;
    bool isMainThread() const override;

private:
    QObject m_receiver; // lives on the main thread
};

} // namespace platform
