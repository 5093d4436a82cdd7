#include "platform/mac/macdistributednotifications.h"

#import <Foundation/Foundation.h>

#include <memory>
#include <utility>
#include <vector>

namespace platform {

namespace {

/// Calls a handler once for all that has come while it ran. Main thread.
class Merged : public std::enable_shared_from_this<Merged> {
public:
    explicit Merged(std::function<void()> handler)
        : m_handler(std::move(handler))
    {
    }

    void call()
    {
        if (m_isCatchingUp) {
            m_isMissing = true;
            return;
        }
        m_isCatchingUp = true;
        m_handler();
        const auto self = shared_from_this();
        [NSOperationQueue.mainQueue addOperationWithBlock:^{ // behind what waits there
            self->catchUp();
        }];
    }

private:
    void catchUp()
    {
        m_isCatchingUp = false;
        if (std::exchange(m_isMissing, false))
            call();
    }

    const std::function<void()> m_handler;
    bool m_isCatchingUp = false;
    bool m_isMissing = false;
};

} // namespace

class MacDistributedNotifications::Observations {
public:
    ~Observations()
    {
        for (const Observation &observation : m_list)
            stop(observation);
    }

    void add(const QObject *observer, const QString &name, std::function<void()> handler)
    {
        removeIf([&](const Observation &other) { return other.observer == observer && other.name == name; });
        id token =
            [NSDistributedNotificationCenter.defaultCenter addObserverForName:name.toNSString()
                                                                       object:nil
                                                                        queue:NSOperationQueue.mainQueue
                                                                   usingBlock:^(NSNotification *) {
                                                                       handler();
                                                                   }];
        m_list.push_back({observer, name, token});
    }

    void remove(const QObject *observer)
    {
        removeIf([observer](const Observation &other) { return other.observer == observer; });
    }

private:
    struct Observation {
        const QObject *observer;
        QString name;
        id token;
    };

    static void stop(const Observation &observation)
    {
        [NSDistributedNotificationCenter.defaultCenter removeObserver:observation.token];
    }

    template <typename Test>
    void removeIf(Test isMeant)
    {
        std::erase_if(m_list, [&](const Observation &observation) {
            const bool isOut = isMeant(observation);
            if (isOut)
                stop(observation);
            return isOut;
        });
    }

    std::vector<Observation> m_list;
};

MacDistributedNotifications::MacDistributedNotifications()
    : m_observations(std::make_unique<Observations>())
{
}

MacDistributedNotifications::~MacDistributedNotifications() = default;

void MacDistributedNotifications::addObserver(const QObject &observer, const QString &name,
                                              std::function<void()> handler, Repeats repeats)
{
    if (repeats == Repeats::areMerged)
        handler = [merged = std::make_shared<Merged>(std::move(handler))] { merged->call(); };
    m_observations->add(&observer, name, std::move(handler));
}

void MacDistributedNotifications::removeObserver(const QObject &observer)
{
    m_observations->remove(&observer);
}

void MacDistributedNotifications::post(const QString &name)
{
    [NSDistributedNotificationCenter.defaultCenter postNotificationName:name.toNSString()
                                                                 object:nil
                                                               userInfo:nil
                                                     deliverImmediately:YES];
}

} // namespace platform
