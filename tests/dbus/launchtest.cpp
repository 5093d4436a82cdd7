// The bus name, calls that come while launch is going on, and what a desktop asks.

#include "dbus/hostonbus.h"

#include <QDBusConnectionInterface>
#include <QThread>

using namespace Qt::StringLiterals;

class Desktop : public HostOnBus {
protected:
    QDBusMessage open(const QStringList &uris)
    {
        return client.call(bus::applicationPath, bus::desktopInterface, u"Open"_s, {uris, QVariantMap()});
    }
    QDBusMessage activateAction(const QString &name)
    {
        return client.call(bus::applicationPath, bus::desktopInterface, u"ActivateAction"_s,
                           {name, QVariantList(), QVariantMap()});
    }
    void activate()
    {
        const QDBusMessage answer =
            client.call(bus::applicationPath, bus::desktopInterface, u"Activate"_s, {QVariantMap()});
        EXPECT_EQ(errorOf(answer), u"no error"_s);
    }
    qsizetype documentCount() { return host.application().allControllers().size(); }
};

TEST_F(Desktop, activatingBringsTheFrontWindowUp)
{
    host.application().newDocument(0);
    const int before = host.applicationHost.activations;
    const auto shown = host.window().modesWhenShown.size();
    activate();
    EXPECT_EQ(host.applicationHost.activations, before + 1);
    EXPECT_EQ(host.window().modesWhenShown.size(), shown + 1);
    EXPECT_EQ(documentCount(), 2);
}

TEST_F(Desktop, activatingOpensADocumentWhereThereIsNone)
{
    host.window().close();
    activate();
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(Desktop, openedItemsWaitForAPersonInDocumentsOfTheirOwn)
{
    EXPECT_EQ(errorOf(open({appURL(), url(u"notes.txt"_s), u"https://example.com/Foo.app"_s})),
              u"no error"_s);
    EXPECT_EQ(documentCount(), 2);
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
    EXPECT_EQ(host.document().originalFileName(), u"Foo.app"_s);
}

TEST_F(Desktop, theActionsAreQuitAndNewDocument)
{
    EXPECT_EQ(errorOf(activateAction(u"new-document"_s)), u"no error"_s);
    EXPECT_EQ(documentCount(), 2);
    EXPECT_EQ(errorOf(activateAction(u"print"_s)), buserror::invalidArgs);
    EXPECT_FALSE(host.applicationHost.isTerminated);
    EXPECT_EQ(errorOf(activateAction(u"quit"_s)), u"no error"_s);
    EXPECT_TRUE(host.applicationHost.isTerminated);
}

TEST_F(Desktop, aSecondProcessCannotHaveTheName)
{
    ASSERT_FALSE(client.connection().registerService(bus::service));
}

TEST_F(Desktop, aSecondStartActivatesTheFirst)
{
    const int before = host.applicationHost.activations;
    bool found = false;
    const std::unique_ptr<QThread> second(
        QThread::create([&found] { found = ScriptingBus::activateRunningInstance(); }));
    second->start();
    host.runUntil([&second] { return second->isFinished(); });
    EXPECT_TRUE(found);
    EXPECT_EQ(host.applicationHost.activations, before + 1);
}

class Launch : public testing::Test {
protected:
    Launch()
    {
        host.application().applicationWillFinishLaunching();
        EXPECT_TRUE(bus.registerOnSessionBus());
    }
    qsizetype documentCount() { return host.application().allControllers().size(); }

    TestHost host;
    ScriptingBus bus{host.application()};
    BusClient client{host};
};

TEST_F(Launch, itemsOpenedMeanwhileTakeTheFirstDocumentsPlace)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    const QString uri = QUrl::fromLocalFile(host.item(u"Foo.app"_s)).toString();
    QDBusMessage message =
        QDBusMessage::createMethodCall(bus::service, bus::applicationPath, bus::desktopInterface, u"Open"_s);
    message << QStringList{uri} << QVariantMap();
    const QDBusPendingCall call = client.connection().asyncCall(message);
    ASSERT_TRUE(client.connection().interface()->isServiceRegistered(bus::service)); // the call is on the bus
    bus.takeArrivedCalls();
    EXPECT_EQ(documentCount(), 0);
    host.application().applicationDidFinishLaunching();
    EXPECT_EQ(documentCount(), 1);
    EXPECT_EQ(host.document().originalFileName(), u"Foo.app"_s);
    EXPECT_EQ(errorOf(client.end(call)), u"no error"_s);
}

TEST_F(Launch, aCommandThatComesMeanwhileIsAnsweredAfterwards)
{
    const QDBusPendingCall call =
        client.begin(bus::applicationPath, bus::applicationInterface, u"MakeDocument"_s, {QVariantMap()});
    EXPECT_EQ(client.get(bus::applicationPath, bus::applicationInterface, u"AppStatus"_s),
              QVariant(u"loading"_s)); // reads are answered at once, and this one came later
    EXPECT_FALSE(call.isFinished());
    EXPECT_EQ(documentCount(), 0);
    host.application().applicationDidFinishLaunching();
    EXPECT_EQ(errorOf(client.end(call)), u"no error"_s);
    EXPECT_EQ(documentCount(), 2);
}

TEST(ScriptingBus, documentsFromBeforeTheRegistrationAreThereOnce)
{
    TestHost host;
    ScriptingBus bus(host.application());
    host.launch();
    ASSERT_TRUE(bus.registerOnSessionBus());
    BusClient client(host);
    EXPECT_EQ(client.getPaths(u"OrderedDocuments"_s).size(), 1);
    EXPECT_EQ(client.getPaths(u"OrderedWindows"_s), QStringList{bus::windowsPath + u"/1"_s});
}

TEST(ScriptingBus, withoutTheNameItSaysSo)
{
    TestHost host;
    host.launch();
    BusClient first(host);
    ASSERT_TRUE(first.connection().registerService(bus::service));
    ScriptingBus second(host.application());
    const platform::Outcome registered = second.registerOnSessionBus();
    EXPECT_FALSE(registered);
    EXPECT_TRUE(registered.error().contains(bus::service));
}

TEST(ScriptingBus, withNobodyRunningThereIsNobodyToActivate)
{
    EXPECT_FALSE(ScriptingBus::activateRunningInstance());
}

TEST(ScriptingBus, theNameIsFreeOnceItIsGone)
{
    TestHost host;
    host.launch();
    BusClient client(host);
    {
        ScriptingBus bus(host.application());
        ASSERT_TRUE(bus.registerOnSessionBus());
    }
    EXPECT_FALSE(client.connection().interface()->isServiceRegistered(bus::service));
}
