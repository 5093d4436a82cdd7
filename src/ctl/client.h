#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariantList>

#include <optional>

namespace sealwright {

enum class ExitStatus {
    done = 0,
    error = 1, ///< of an examination: something would be refused; of a comparison: there are differences
    wrongUse = 2,
    noAnswer = 3,
    notLookedAt = 4, ///< the item could not be examined or compared
};

/// What the application answered.
struct Answer {
    ExitStatus status = ExitStatus::done;
    QVariantList values;
    QString error; ///< the text of a failure, as a person reads it; null otherwise
    std::optional<QString> scriptError = {}; ///< its number, where it is a script's error
    QString errorText = {}; ///< what the application said of it

    explicit operator bool() const { return status == ExitStatus::done; }
};

/// The application, as it stands on the session bus.
class Client {
public:
    enum class Start { never, onDemand };

    Client();

    bool isConnected() const { return m_connection.isConnected(); }
    const QDBusConnection &connection() const { return m_connection; }

    /// Waits for the answer while events are served. `timeout` in milliseconds; the greatest value is none.
    [[nodiscard]] Answer call(const QDBusMessage &method, int timeout) const;
    [[nodiscard]] Answer call(const QDBusMessage &method) const;

    /// The same of several at once, which wait for each other's end and not for their turn. In their order.
    [[nodiscard]] QList<Answer> callAll(const QList<QDBusMessage> &methods, int timeout) const;

    /// A call of a method; whether it starts an application that does not run yet.
    static QDBusMessage method(const QString &path, const QString &interface, const QString &name,
                               const QVariantList &arguments = {}, Start start = Start::never);
    static QDBusMessage getProperty(const QString &path, const QString &interface, const QString &name);
    /// An empty list stands for no value.
    static QDBusMessage setProperty(const QString &path, const QString &interface, const QString &name,
                                    const QVariant &value);

    /// The path for an identifier, or for the element of a path that stands for one.
    static QString documentPath(const QString &identifier);

private:
    QDBusMessage send(const QDBusMessage &method, int timeout) const;
    /// The text that was too long for the latest error, on a line of its own; empty if there is none. It is
    /// kept for the connection that received the error.
    QString longErrorText() const;

    QDBusConnection m_connection;
};

} // namespace sealwright
