#pragma once

#include "scripting/dbus/busnames.h"
#include "support/testhost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QObject>

#include <ostream>

/// Lets a failed comparison show the value.
inline void PrintTo(const QVariant &value, std::ostream *stream)
{
    *stream << value.typeName() << " \"" << value.toString().toStdString() << '"';
}

/// Another connection to the bus, which asks what a script would. While it waits, the application's event
/// loop runs.
class BusClient : public QObject {
    Q_OBJECT

public:
    explicit BusClient(TestHost &host);
    ~BusClient() override;

    /// The unique name of the connection.
    QString name() const { return m_connection.baseService(); }
    QDBusConnection &connection() { return m_connection; }

    QDBusPendingCall begin(const QString &path, const QString &interface, const QString &method,
                           const QVariantList &arguments = {});
    /// Waits for the answer.
    QDBusMessage end(const QDBusPendingCall &call);
    QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                      const QVariantList &arguments = {});

    QDBusMessage tryToGet(const QString &path, const QString &interface, const QString &property);
    /// What the variant of the answer holds; a failed test and an invalid value for an error.
    QVariant get(const QString &path, const QString &interface, const QString &property);
    QDBusMessage set(const QString &path, const QString &interface, const QString &property,
                     const QVariant &value);
    QStringList getPaths(const QString &listProperty);

    /// Submits through the application, or through a document.
    QDBusPendingCall beginSubmit(const QVariantMap &arguments, const QString &document = {});

    /// Keeps all signals of the application from now on.
    void listen();
    /// The signals up to now, as "Member(argument, argument)", of documents or of the object manager.
    QStringList heard(const QString &interface);
    const QList<QDBusMessage> &messagesHeard() const { return m_heard; }

private:
    Q_SLOT void hear(const QDBusMessage &signal) { m_heard.append(signal); }

    TestHost &m_host;
    QString m_connectionName;
    QDBusConnection m_connection;
    QList<QDBusMessage> m_heard;
};

/// What the variant in the answer holds; a failed test for an error.
[[nodiscard]] QVariant variantOf(const QDBusMessage &answer);
[[nodiscard]] bool isNoValue(const QVariant &value);
/// The error's name, or a text that says that it is none.
[[nodiscard]] QString errorOf(const QDBusMessage &answer);
/// The number of a script error and its text, such as "N6 "; "no error" if it is none.
[[nodiscard]] QString failureOf(const QDBusMessage &answer);
/// The error's one string; a failed test if the body is of another shape.
[[nodiscard]] QString errorTextOf(const QDBusMessage &answer);
