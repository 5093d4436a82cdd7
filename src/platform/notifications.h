#pragma once

#include <QString>
#include <QStringView>
#include <QVariantMap>

#include <functional>

class QObject;

namespace platform {

/// What becomes of a notification that comes while another of its name is being handled, or has waited for
/// that.
enum class Repeats {
    areHandled, ///< each calls the handler
    areMerged, ///< all that have waited call it once
};

/// Messages that applications post to each other by a name.
class DistributedNotifications {
public:
    virtual ~DistributedNotifications() = default;

    /// Calls the handler on the main thread for each notification of that name, whoever posts it. One handler
    /// for an observer and a name.
    virtual void addObserver(const QObject &observer, const QString &name, std::function<void()> handler,
                             Repeats repeats = Repeats::areHandled) = 0;
    /// Calls none of the observer's handlers from now on.
    virtual void removeObserver(const QObject &observer) = 0;
    /// Tells all applications, this one among them. Returns at once.
    virtual void post(const QString &name) = 0;
};

/// Posted by the desktop when it becomes light or dark.
inline constexpr QStringView themeChangedNotification = u"AppleInterfaceThemeChangedNotification";

/// In a message's user info: whether it is shown while the application is active (a boolean).
inline constexpr QStringView showWhenActiveKey = u"userInfoShowWhenActiveKey";

struct UserNotification {
    QString title;
    QString informativeText;
    QVariantMap userInfo;
    /// Called on the main thread when a person clicks the message, on a host that tells so. With the token by
    /// which a window may come to the front, null where the host has none.
    std::function<void(const QString &token)> wasClicked = {};
};

/// Short messages on the user's desktop.
class UserNotificationCenter {
public:
    using Presenter = std::function<bool(const UserNotification &)>;

    virtual ~UserNotificationCenter() = default;

    /// The question that is put, on the main thread, before a message is shown while the application is
    /// active.
    virtual void setShouldPresent(Presenter shouldPresent) = 0;

    /// Shows the message. Any thread.
    virtual void deliver(const UserNotification &notification) = 0;
};

} // namespace platform
