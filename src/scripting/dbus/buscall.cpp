#include "scripting/dbus/buscall.h"

#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QThreadPool>

namespace sealwright {

namespace {

/// The length of the one text that an answer may have at any length, in the variant of a result or in an
/// error; 0 if it has none.
qsizetype charactersIn(const QVariantList &values)
{
    const QVariant first = values.value(0);
    const QVariant value = first.metaType() == QMetaType::fromType<QDBusVariant>()
        ? first.value<QDBusVariant>().variant()
        : first;
    return value.metaType() == QMetaType::fromType<QString>() ? value.toString().size() : 0;
}

QString errorName(qint64 number)
{
    return number < 0 ? buserror::negativeScriptErrorPrefix + QString::number(-number)
                      : buserror::scriptErrorPrefix + QString::number(number);
}

} // namespace

bool LastErrors::attend(const QString &connection)
{
    return m_offendingObjects.update([&connection](auto &objects) {
        if (objects.contains(connection))
            return false;
        objects.insert(connection, {});
        return true;
    });
}

void LastErrors::forget(const QString &connection)
{
    m_offendingObjects.update([&connection](auto &objects) { objects.remove(connection); });
}

void LastErrors::record(const QString &connection, const QVariant &offendingObject)
{
    m_offendingObjects.update([&](auto &objects) {
        if (const auto found = objects.find(connection); found != objects.end())
            *found = offendingObject;
    });
}

QVariant LastErrors::of(const QString &connection) const
{
    return m_offendingObjects().value(connection);
}

BusCall::BusCall(const QDBusMessage &message, QDBusConnection connection,
                 std::shared_ptr<LastErrors> lastErrors)
    : m_message(message)
    , m_connection(std::move(connection))
    , m_lastErrors(std::move(lastErrors))
{
}

QStringList BusCall::texts(qsizetype argument) const
{
    return qdbus_cast<QStringList>(m_message.arguments().value(argument));
}

QVariantMap BusCall::dictionary(qsizetype argument) const
{
    return qdbus_cast<QVariantMap>(m_message.arguments().value(argument));
}

QVariant BusCall::variant(qsizetype argument) const
{
    return qvariant_cast<QDBusVariant>(m_message.arguments().value(argument)).variant();
}

void BusCall::reply(const QVariantList &values) const
{
    if (isTooLarge(values))
        return replyWithError(buserror::limitsExceeded,
                              QStringLiteral("The answer is too large for the bus."));
    send(m_message.createReply(values));
}

void BusCall::replyWithError(const QString &name, const QString &text) const
{
    sendError(name, text, {});
}

void BusCall::replyWithScriptError(const ScriptReply &failure) const
{
    sendError(errorName(failure.errorNumber), failure.errorText, failure.offendingObject);
}

void BusCall::sendError(const QString &name, const QString &text, const QVariant &offendingObject) const
{
    if (!m_message.isReplyRequired())
        return;
    m_lastErrors->record(caller(), offendingObject); // before the caller can ask for it
    QDBusMessage answer = m_message.createErrorReply(name, {});
    answer.setArguments(
        {busvalue::withoutNulls(text)}); // as the message of the error, an empty text would be left out
    send(answer);
}

/// The main thread gives most answers, and putting megabytes into a message would hold it up.
void BusCall::send(const QDBusMessage &answer) const
{
    constexpr qsizetype mostAtOnce = 1024LL * 1024;
    if (!m_message.isReplyRequired())
        return;
    if (charactersIn(answer.arguments()) <= mostAtOnce)
        m_connection.send(answer);
    else
        QThreadPool::globalInstance()->start(
            [answer, connection = m_connection] { connection.send(answer); });
}

/// The bus ends the connection of whoever sends more than it carries.
bool BusCall::isTooLarge(const QVariantList &values)
{
    constexpr qsizetype mostCharacters = 32LL * 1024 * 1024; // of up to three bytes each
    return charactersIn(values) > mostCharacters;
}

} // namespace sealwright
