#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>

namespace platform {

/// One question to the desktop's portal, which answers by a signal of an object that it makes for it. Public
/// document: "XDG Desktop Portal", org.freedesktop.portal.Request. Ends with its answer. Main thread.
class PortalRequest : public QObject {
    Q_OBJECT

public:
    /// The codes of an answer. Only the first two are the portal's; a call that fails has the last.
    static constexpr uint success = 0;
    static constexpr uint cancelled = 1;
    static constexpr uint failure = 2;

    /// The token is the call's option `handle_token`; with the sender's name it tells the object's path
    /// before the call has been answered, so that no answer is missed.
    PortalRequest(QDBusConnection bus, const QString &token, QObject *parent);

    void begin(const QDBusMessage &call);
    /// Has the portal take back what it shows. No answer is told.
    void close();

Q_SIGNALS:
    void ended(uint code, const QVariantMap &results);

private:
    void follow(const QString &handle);
    void end(uint code, const QVariantMap &results);
    Q_SLOT void response(uint code, const QVariantMap &results);

    QDBusConnection m_bus;
    QString m_handle; ///< the path of the object
};

} // namespace platform
