#pragma once

#include "platform/scriptcommand.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <memory>

namespace sealwright {

class LastErrors;

/// One method call and its answer, which may come later and from any thread. A copy is the same call. An
/// answer to a caller that has gone, or that wants none, goes nowhere.
class BusCall {
public:
    BusCall(QDBusMessage message, QDBusConnection connection, std::shared_ptr<LastErrors> lastErrors);

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
