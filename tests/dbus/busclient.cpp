#include "dbus/busclient.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString nextConnectionName()
{
    static int number = 0;
    return u"client-%1"_s.arg(++number);
}

QString described(const QVariant &argument)
{
    if (argument.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return argument.value<QDBusObjectPath>().path();
    if (argument.metaType() == QMetaType::fromType<QStringList>())
        return argument.toStringList().join(u' ');
    return argument.toString();
}

} // namespace

BusClient::BusClient(TestHost &host)
    : m_host(host)
    , m_connectionName(nextConnectionName())
    , m_connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_connectionName))
{
    EXPECT_TRUE(m_connection.isConnected()) << m_connection.lastError().message().toStdString();
}

BusClient::~BusClient()
{
    QDBusConnection::disconnectFromBus(m_connectionName);
}

QDBusPendingCall BusClient::begin(const QString &path, const QString &interface, const QString &method,
                                  const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(bus::service, path, interface, method);
    message.setArguments(arguments);
    return m_connection.asyncCall(message);
}

QDBusMessage BusClient::end(const QDBusPendingCall &call)
{
    m_host.runUntil([&call] { return call.isFinished(); });
    return call.reply();
}

QDBusMessage BusClient::call(const QString &path, const QString &interface, const QString &method,
                             const QVariantList &arguments)
{
    return end(begin(path, interface, method, arguments));
}

QDBusMessage BusClient::tryToGet(const QString &path, const QString &interface, const QString &property)
{
    return call(path, bus::propertiesInterface, u"Get"_s, {interface, property});
}

QVariant BusClient::get(const QString &path, const QString &interface, const QString &property)
{
    return variantOf(tryToGet(path, interface, property));
}

QDBusMessage BusClient::set(const QString &path, const QString &interface, const QString &property,
                            const QVariant &value)
{
    return call(path, bus::propertiesInterface, u"Set"_s,
                {interface, property, QVariant::fromValue(QDBusVariant(value))});
}

QStringList BusClient::getPaths(const QString &listProperty)
{
    QStringList paths;
    const QVariant value = get(bus::applicationPath, bus::applicationInterface, listProperty);
    for (const QDBusObjectPath &path : qdbus_cast<QList<QDBusObjectPath>>(value))
        paths.append(path.path());
    return paths;
}

QDBusPendingCall BusClient::beginSubmit(const QVariantMap &arguments, const QString &document)
{
    return document.isEmpty()
        ? begin(bus::applicationPath, bus::applicationInterface, u"SubmitForNotarizing"_s, {arguments})
        : begin(document, bus::documentInterface, u"SubmitForNotarizing"_s, {arguments});
}

void BusClient::listen()
{
    for (const QString &interface : {bus::documentInterface, bus::objectManagerInterface})
        m_connection.connect(bus::service, {}, interface, {}, this, SLOT(hear(QDBusMessage)));
}

QStringList BusClient::heard(const QString &interface)
{
    // What was sent before the answer has come before it.
    static_cast<void>(tryToGet(bus::applicationPath, bus::applicationInterface, u"Name"_s));
    QCoreApplication::sendPostedEvents(this);
    QStringList texts;
    for (const QDBusMessage &signal : m_heard) {
        if (signal.interface() != interface)
            continue;
        QStringList arguments;
        for (const QVariant &argument : signal.arguments())
            arguments.append(described(argument));
        texts.append(signal.member() + u'(' + arguments.join(u", "_s) + u')');
    }
    return texts;
}

QVariant variantOf(const QDBusMessage &answer)
{
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage)
        << answer.errorName().toStdString() << ": " << answer.errorMessage().toStdString();
    return answer.arguments().value(0).value<QDBusVariant>().variant();
}

bool isNoValue(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<QDBusArgument>()
        && value.value<QDBusArgument>().currentSignature() == "av"_L1
        && qdbus_cast<QVariantList>(value).isEmpty();
}

QString errorOf(const QDBusMessage &answer)
{
    return answer.type() == QDBusMessage::ErrorMessage ? answer.errorName() : u"no error"_s;
}

QString failureOf(const QDBusMessage &answer)
{
    const QString error = errorOf(answer);
    return answer.type() == QDBusMessage::ErrorMessage ? error.section(u'.', -1) + u' ' + errorTextOf(answer)
                                                       : error;
}

QString errorTextOf(const QDBusMessage &answer)
{
    EXPECT_EQ(answer.signature(), u"s"_s);
    return answer.arguments().value(0).toString();
}
