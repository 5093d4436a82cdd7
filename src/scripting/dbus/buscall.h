#pragma once

#include "platform/property.h"
#include "platform/scriptcommand.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QHash>

#include <memory>

namespace sealwright {

/// The offending object of the latest error of each connection. A connection that has gone is forgotten, and
/// what comes for it later is not kept. Any thread.
class LastErrors {
public:
    /// Keeps what comes for the connection from now on. False if it did so already.
    bool attend(const QString &connection);
    void forget(const QString &connection);

    /// `offendingObject` is invalid for an error without one.
    void record(const QString &connection, const QVariant &offendingObject);
    /// Invalid if there is none.
    [[nodiscard]] QVariant of(const QString &connection) const;

private:
    Property<QHash<QString, QVariant>> m_offendingObjects;
};

/// One method call and its answer, which may come later and from any thread. A copy is the same call. An
/// answer to a caller that has gone, or that wants none, goes nowhere.
class BusCall {
public:
    BusCall(const QDBusMessage &message, QDBusConnection connection, std::shared_ptr<LastErrors> lastErrors);

    /// The unique name of the calling connection.
    QString caller() const { return m_message.service(); }
    QString path() const { return m_message.path(); }
    /// Empty if the caller did not name one.
    QString interface() const { return m_message.interface(); }
    QString member() const { return m_message.member(); }
    /// The types of all arguments, in one text.
    QString signature() const { return m_message.signature(); }

    QString text(qsizetype argument) const { return m_message.arguments().value(argument).toString(); }
    QStringList texts(qsizetype argument) const;
    QVariantMap dictionary(qsizetype argument) const;
    /// What a variant holds.
    QVariant variant(qsizetype argument) const;

    void reply(const QVariantList &values = {}) const;
    void replyWithError(const QString &name, const QString &text) const;
    /// The error name carries the number.
    void replyWithScriptError(const ScriptReply &failure) const;

private:
    static bool isTooLarge(const QVariantList &values);
    void send(const QDBusMessage &answer) const;
    void sendError(const QString &name, const QString &text, const QVariant &offendingObject) const;

    QDBusMessage m_message;
    QDBusConnection m_connection;
    std::shared_ptr<LastErrors> m_lastErrors;
};

} // namespace sealwright
