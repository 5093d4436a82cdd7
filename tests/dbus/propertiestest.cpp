#include "dbus/hostonbus.h"

#include <QCoreApplication>
#include <QDBusArgument>

using namespace Qt::StringLiterals;

class Properties : public HostOnBus { };

TEST_F(Properties, theApplicationTellsWhatItIs)
{
    QCoreApplication::setApplicationVersion(u"1.2.3"_s);
    EXPECT_EQ(client.get(bus::applicationPath, bus::applicationInterface, u"Name"_s),
              QVariant(QCoreApplication::applicationName()));
    EXPECT_EQ(client.get(bus::applicationPath, bus::applicationInterface, u"Version"_s),
              QVariant(u"1.2.3"_s));
    EXPECT_EQ(client.get(bus::applicationPath, bus::applicationInterface, u"IsActive"_s), QVariant(false));
    EXPECT_EQ(client.get(bus::applicationPath, bus::applicationInterface, u"AppStatus"_s),
              QVariant(u"ready"_s));
}

TEST_F(Properties, theStatusOfTheApplicationIsNotThatOfADocument)
{
    const QDBusPendingCall submission = beginEndlessSubmission();
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"DocStatus"_s), QVariant(u"submitting"_s));
    EXPECT_EQ(client.get(bus::applicationPath, bus::applicationInterface, u"AppStatus"_s),
              QVariant(u"ready"_s));
    cancel();
    client.end(submission);
    host.settle();
}

TEST_F(Properties, aDocumentAndItsWindowReferToEachOther)
{
    host.window().setTitle(u"Foo"_s);
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"UniqueID"_s),
              QVariant(host.document().uniqueID));
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"DisplayName"_s), QVariant(u"Foo"_s));
    EXPECT_EQ(client.get(windowPath(), bus::windowInterface, u"Title"_s), QVariant(u"Foo"_s));
    EXPECT_EQ(client.get(windowPath(), bus::windowInterface, u"Document"_s).value<QDBusObjectPath>().path(),
              documentPath());
}

TEST_F(Properties, withoutAnErrorThereIsNoLastObjectEither)
{
    EXPECT_TRUE(isNoValue(client.get(bus::applicationPath, bus::applicationInterface, u"LastErrorFrom"_s)));
    const QDBusMessage all =
        client.call(bus::applicationPath, bus::propertiesInterface, u"GetAll"_s, {bus::applicationInterface});
    const auto values = qdbus_cast<QVariantMap>(all.arguments().value(0));
    EXPECT_TRUE(isNoValue(values.value(u"LastErrorFrom"_s)));
}

TEST_F(Properties, anEmptyInterfaceNameStandsForAnyInterface)
{
    EXPECT_EQ(client.get(documentPath(), {}, u"DocStatus"_s), QVariant(u"ready"_s));
    const QDBusMessage all = client.call(windowPath(), bus::propertiesInterface, u"GetAll"_s, {QString()});
    EXPECT_EQ(qdbus_cast<QVariantMap>(all.arguments().value(0)).size(), 9);
}

TEST_F(Properties, thoseWithoutAWriteAreReadOnly)
{
    for (const QString &name : {u"UniqueID"_s, u"DisplayName"_s, u"Caller"_s}) {
        const QDBusMessage answer = client.set(documentPath(), bus::documentInterface, name, u"x"_s);
        EXPECT_EQ(errorOf(answer), buserror::propertyReadOnly) << name.toStdString();
    }
    EXPECT_EQ(errorOf(client.set(windowPath(), bus::windowInterface, u"Title"_s, 5)),
              buserror::propertyReadOnly);
    EXPECT_EQ(errorOf(client.set(bus::applicationPath, bus::applicationInterface, u"Name"_s, u"x"_s)),
              buserror::propertyReadOnly);
}

TEST_F(Properties, aWriteOfAStatusIsRefusedWithItsNumberAndNoText)
{
    for (const QVariant &value : {QVariant(u"ready"_s), QVariant(7), QVariant(QVariantList())}) {
        const QDBusMessage document =
            client.set(documentPath(), bus::documentInterface, u"DocStatus"_s, value);
        EXPECT_EQ(errorOf(document), u"org.sealwright.Error.Minus10003"_s);
        EXPECT_EQ(errorTextOf(document), QString());
        const QDBusMessage application =
            client.set(bus::applicationPath, bus::applicationInterface, u"AppStatus"_s, value);
        EXPECT_EQ(errorOf(application), u"org.sealwright.Error.Minus10003"_s);
        EXPECT_EQ(errorTextOf(application), QString());
    }
}

TEST_F(Properties, aWriteOfTheOrderedWindowsIsTakenAndDoesNothing)
{
    host.application().newDocument(0);
    const QStringList before = client.getPaths(u"OrderedWindows"_s);
    ASSERT_EQ(before.size(), 2);
    const auto reversed =
        QVariant::fromValue(QList<QDBusObjectPath>{QDBusObjectPath(before[1]), QDBusObjectPath(before[0])});
    for (const QVariant &value : {reversed, QVariant(QVariantList())}) {
        const QDBusMessage answer =
            client.set(bus::applicationPath, bus::applicationInterface, u"OrderedWindows"_s, value);
        EXPECT_EQ(errorOf(answer), u"no error"_s);
    }
    EXPECT_EQ(client.getPaths(u"OrderedWindows"_s), before);
    const QDBusMessage wrong =
        client.set(bus::applicationPath, bus::applicationInterface, u"OrderedWindows"_s, u"x"_s);
    EXPECT_EQ(errorOf(wrong), buserror::invalidArgs);
}

TEST_F(Properties, unknownOnesAndUnknownInterfacesAreToldApart)
{
    EXPECT_EQ(errorOf(client.tryToGet(documentPath(), bus::documentInterface, u"Nothing"_s)),
              buserror::unknownProperty);
    EXPECT_EQ(errorOf(client.tryToGet(documentPath(), bus::windowInterface, u"Title"_s)),
              buserror::unknownInterface);
    EXPECT_EQ(errorOf(client.set(documentPath(), bus::documentInterface, u"Nothing"_s, 1)),
              buserror::unknownProperty);
    EXPECT_EQ(errorOf(client.call(documentPath(), bus::propertiesInterface, u"GetAll"_s, {u"none"_s})),
              buserror::unknownInterface);
}

TEST_F(Properties, callsOfAnotherShapeAreRefused)
{
    EXPECT_EQ(errorOf(client.call(documentPath(), bus::propertiesInterface, u"Get"_s, {u"one"_s})),
              buserror::invalidArgs);
    EXPECT_EQ(errorOf(client.call(documentPath(), bus::propertiesInterface, u"Set"_s,
                                  {bus::documentInterface, u"DocStatus"_s, u"no variant"_s})),
              buserror::invalidArgs);
    EXPECT_EQ(errorOf(client.call(documentPath(), bus::propertiesInterface, u"GetAll"_s)),
              buserror::invalidArgs);
}
