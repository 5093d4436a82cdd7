#include "platform/qt/qttimerservice.h"

#include <QDeadlineTimer>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <cmath>

namespace platform {

namespace {

/// Qt's coarse timers may be off by this share of the interval, either way.
constexpr double coarseDeviation = 0.05;

constexpr double longestInterval = 1e9; // seconds, some thirty years

/// A block and the Qt timer that runs it. Only the main thread touches either, so a block is dropped where
/// it would have run.
class QtTimer : public Timer, public std::enable_shared_from_this<QtTimer> {
public:
    QtTimer(QObject *context, double interval, double tolerance, std::function<void()> fire)
        : m_context(context)
        , m_deadline(std::chrono::nanoseconds(std::llround(interval * 1e9)), Qt::PreciseTimer)
        , m_type(tolerance > interval * coarseDeviation ? Qt::CoarseTimer : Qt::PreciseTimer)
        , m_fire(std::move(fire))
    {
    }

    void arm()
    {
        onMainThread([self = shared_from_this()] { self->start(); });
    }

    void invalidate() override
    {
        m_isInvalid = true;
        onMainThread([self = shared_from_this()] { self->drop(); });
    }

private:
    template <typename Block>
    void onMainThread(Block block)
    {
        if (QThread::currentThread() == m_context->thread())
            block();
        else
            QMetaObject::invokeMethod(m_context, std::move(block), Qt::QueuedConnection);
    }

    void start()
    {
        if (m_isInvalid)
            return;
        m_timer = new QTimer(m_context);
        m_timer->setSingleShot(true);
        m_timer->setTimerType(m_type);
        QObject::connect(m_timer, &QTimer::timeout, m_context,
                         [self = shared_from_this()] { self->timeout(); });
        startTimer();
    }

    void startTimer()
    {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(
            std::chrono::nanoseconds(qMax<qint64>(m_deadline.remainingTimeNSecs(), 0)));
        constexpr std::chrono::milliseconds longest(std::numeric_limits<int>::max());
        m_timer->start(std::min(rest, longest));
    }

    void timeout()
    {
        if (m_deadline.hasExpired()) {
            const auto fire = std::move(m_fire);
            drop();
            if (!m_isInvalid)
                fire();
        } else {
            m_timer->setTimerType(Qt::PreciseTimer);
            startTimer();
        }
    }

    void drop()
    {
        m_fire = nullptr;
        if (m_timer)
            m_timer->deleteLater();
        m_timer = nullptr;
    }

    QObject *const m_context;
    const QDeadlineTimer m_deadline;
    const Qt::TimerType m_type;
    std::atomic<bool> m_isInvalid = false;
    std::function<void()> m_fire;
    QPointer<QTimer> m_timer;
};

} // namespace

std::shared_ptr<Timer> QtTimerService::schedule(double interval, double tolerance, std::function<void()> fire)
{
    auto timer = std::make_shared<QtTimer>(&m_context, qBound(0.0, interval, longestInterval), tolerance,
                                           std::move(fire));
    timer->arm();
    return timer;
}

} // namespace platform
