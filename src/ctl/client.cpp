#include "ctl/client.h"

#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QEventLoop>

#include <limits>
#include <memory>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString connectionName = u"sealwrightctl"_s;
constexpr int noTimeout = std::numeric_limits<int>::max();

/// The digits of a script error's number, with its sign; nothing for any other error.
std::optional<QString> scriptErrorNumber(const QString &errorName)
{
    if (errorName.startsWith(buserror::negativeScriptErrorPrefix))
        return u'-' + errorName.mid(buserror::negativeScriptErrorPrefix.size());
    if (errorName.startsWith(buserror::scriptErrorPrefix))
        return errorName.mid(buserror::scriptErrorPrefix.size());
    return std::nullopt;
}

bool isMissing(const QDBusError &error)
{
    switch (error.type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::NoServer:
        return true;
    default:
        return error.name() == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1
            || error.name().startsWith("org.freedesktop.DBus.Error.Spawn."_L1);
    }
}

bool isLate(const QDBusError &error)
{
    switch (error.type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return true;
    default:
        return false;
    }
}

/// The bus gives the end of whoever should have answered the same name as the end of patience has.
bool hasEnded(const QDBusError &error)
{
    return error.message().contains("disconnected"_L1);
}

Answer failure(const QDBusError &error)
{
    if (error.type() == QDBusError::Disconnected)
        return {ExitStatus::noAnswer, {}, u"the session bus has gone"_s};
    if (isMissing(error))
        return {ExitStatus::noAnswer, {}, u"Sealwright is not running"_s};
    if (isLate(error) && hasEnded(error))
        return {ExitStatus::noAnswer, {}, u"Sealwright has ended without an answer"_s};
    if (isLate(error))
        return {ExitStatus::noAnswer, {}, u"Sealwright did not answer"_s};
    const auto number = scriptErrorNumber(error.name());
    Answer answer{ExitStatus::error, {}, u"error: %1"_s.arg(error.message())};
    if (number)
        answer = {ExitStatus::error, {}, u"error %1: %2"_s.arg(*number, error.message())};
    answer.scriptError = number;
    answer.errorText = error.message();
    return answer;
}

Answer answerIn(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ReplyMessage)
        return {ExitStatus::done, reply.arguments(), {}};
    return failure(QDBusError(reply));
}

} // namespace

Client::Client()
    : m_connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName))
{
    qDBusRegisterMetaType<platform::QDRect>();
}

QDBusMessage Client::send(const QDBusMessage &method, int timeout) const
{
    // The library's own waiting with events misses an answer that comes before it listens.
    const QDBusPendingCallWatcher watcher(m_connection.asyncCall(method, timeout));
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    loop.exec(); // told in any case, also of an answer that is here by now
    return watcher.reply();
}

QList<Answer> Client::callAll(const QList<QDBusMessage> &methods, int timeout) const
{
    std::vector<std::unique_ptr<QDBusPendingCallWatcher>> watchers;
    for (const QDBusMessage &method : methods)
        watchers.push_back(
            std::make_unique<QDBusPendingCallWatcher>(m_connection.asyncCall(method, timeout)));
    QList<Answer> answers;
    for (const auto &watcher : watchers) {
        QEventLoop loop;
        QObject::connect(watcher.get(), &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
        if (!watcher->isFinished())
            loop.exec();
        answers.append(answerIn(watcher->reply()));
    }
    return answers;
}

Answer Client::call(const QDBusMessage &method, int timeout) const
{
    Answer answer = answerIn(send(method, timeout));
    if (answer.status == ExitStatus::error)
        answer.error += longErrorText();
    return answer;
}

QString Client::longErrorText() const
{
    const QDBusMessage reply =
        send(getProperty(bus::applicationPath, bus::applicationInterface, u"LastErrorFrom"_s), noTimeout);
    const QVariant from = reply.arguments().value(0).value<QDBusVariant>().variant();
    const QString text = from.value<QDBusVariant>().variant().toString();
    return text.isEmpty() || bus::isFileUrl(text) ? QString() : u'\n' + text;
}

Answer Client::call(const QDBusMessage &method) const
{
    return call(method, noTimeout);
}

QDBusMessage Client::method(const QString &path, const QString &interface, const QString &name,
                            const QVariantList &arguments, Start start)
{
    QDBusMessage message = QDBusMessage::createMethodCall(bus::service, path, interface, name);
    message.setArguments(arguments);
    message.setAutoStartService(start == Start::onDemand);
    return message;
}

QDBusMessage Client::getProperty(const QString &path, const QString &interface, const QString &name)
{
    return method(path, bus::propertiesInterface, u"Get"_s, {interface, name});
}

QDBusMessage Client::setProperty(const QString &path, const QString &interface, const QString &name,
                                 const QVariant &value)
{
    return method(path, bus::propertiesInterface, u"Set"_s,
                  {interface, name, QVariant::fromValue(QDBusVariant(value))});
}

QString Client::documentPath(const QString &identifier)
{
    return bus::documentsPath + u'/' + bus::pathElement(identifier);
}

} // namespace sealwright
