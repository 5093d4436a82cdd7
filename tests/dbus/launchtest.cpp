// The bus name, calls that come while launch is going on, and what a desktop asks.

#include "dbus/hostonbus.h"
#include "dbus/quittingapplication.h"

#include <QDBusConnectionInterface>

#include <future>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class Desktop : public HostOnBus {
protected:
    QDBusMessage open(const QStringList &uris, const QVariantMap &platformData = {})
    {
        return client.call(bus::applicationPath, bus::desktopInterface, u"Open"_s, {uris, platformData});
    }
    QDBusMessage activateAction(const QString &name, const QVariantMap &platformData = {})
    {
        return client.call(bus::applicationPath, bus::desktopInterface, u"ActivateAction"_s,
                           {name, QVariantList(), platformData});
    }
    void activate(const QVariantMap &platformData = {})
    {
        const QDBusMessage answer =
            client.call(bus::applicationPath, bus::desktopInterface, u"Activate"_s, {platformData});
        EXPECT_EQ(errorOf(answer), u"no error"_s);
    }
    /// The token that the window had which was shown last.
    QString shownWith() { return host.applicationHost.tokenWhenShown; }
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

TEST_F(Desktop, openedBundlesMayHaveASlashAtTheEndOfTheirURL)
{
    EXPECT_EQ(errorOf(open({appURL() + u'/', appURL(u"Bar.plugin"_s) + u"//"_s})), u"no error"_s);
    ASSERT_EQ(documentCount(), 3);
    EXPECT_EQ(host.application().allControllers().at(1)->originalFileName(), u"Foo.app"_s);
    EXPECT_EQ(host.document().originalFileName(), u"Bar.plugin"_s);
}

TEST_F(Desktop, itsTokenIsThereBeforeAWindowComesUp)
{
    activate({{u"activation-token"_s, u"first"_s}});
    EXPECT_EQ(shownWith(), u"first"_s);
    EXPECT_EQ(errorOf(open({appURL()}, {{u"activation-token"_s, u"second"_s}})), u"no error"_s);
    EXPECT_EQ(shownWith(), u"second"_s);
    EXPECT_EQ(errorOf(activateAction(u"new-document"_s, {{u"activation-token"_s, u"third"_s}})),
              u"no error"_s);
    EXPECT_EQ(shownWith(), u"third"_s);
}

TEST_F(Desktop, theIdentifierOfAStartupStandsInForATokenThatIsMissing)
{
    const QString startup = u"shell/Sealwright/1-0-host_TIME123"_s;
    activate({{u"desktop-startup-id"_s, startup}});
    EXPECT_EQ(shownWith(), startup);
    activate({{u"desktop-startup-id"_s, startup}, {u"activation-token"_s, u"token"_s}});
    EXPECT_EQ(shownWith(), u"token"_s);
}

TEST_F(Desktop, whatIsNoTokenIsIgnored)
{
    for (const QVariant &value : QVariantList{7, QStringList{u"token"_s}, u""_s, u"two\nlines"_s,
                                              QString(1025, u'x'), QByteArray("token")}) {
        activate({{u"activation-token"_s, value}});
        EXPECT_EQ(shownWith(), QString()) << value.typeName();
    }
    const QString longest(1024, u'x');
    activate({{u"activation-token"_s, longest}});
    EXPECT_EQ(shownWith(), longest);
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
    auto second = std::async(std::launch::async, &ScriptingBus::activateRunningInstance);
    host.runUntil([&second] { return second.wait_for(0s) == std::future_status::ready; });
    EXPECT_TRUE(second.get());
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
    QString itemURL() const { return QUrl::fromLocalFile(host.item(u"Foo.app"_s)).toString(); }
    QDBusPendingCall begin(const QString &method, const QVariantList &arguments)
    {
        return client.begin(bus::applicationPath, bus::desktopInterface, method, arguments);
    }
    /// Reads are answered at once: what came before this one is with the application.
    void waitForArrivals()
    {
        EXPECT_EQ(client.get(bus::applicationPath, bus::applicationInterface, u"AppStatus"_s),
                  QVariant(u"loading"_s));
    }

    TestHost host;
    ScriptingBus bus{host.application()};
    BusClient client{host};
};

TEST_F(Launch, itemsOpenedMeanwhileTakeTheFirstDocumentsPlace)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    QDBusMessage message =
        QDBusMessage::createMethodCall(bus::service, bus::applicationPath, bus::desktopInterface, u"Open"_s);
    message << QStringList{itemURL()} << QVariantMap();
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
    waitForArrivals();
    EXPECT_FALSE(call.isFinished());
    EXPECT_EQ(documentCount(), 0);
    host.application().applicationDidFinishLaunching();
    EXPECT_EQ(errorOf(client.end(call)), u"no error"_s);
    EXPECT_EQ(documentCount(), 2);
}

TEST_F(Launch, anActivationThatComesMeanwhileBringsUpTheFirstDocument)
{
    const QDBusPendingCall call = begin(u"Activate"_s, {QVariantMap()});
    waitForArrivals();
    EXPECT_FALSE(call.isFinished());
    EXPECT_EQ(documentCount(), 0);
    host.application().applicationDidFinishLaunching();
    EXPECT_EQ(errorOf(client.end(call)), u"no error"_s);
    EXPECT_EQ(documentCount(), 1);
    EXPECT_EQ(host.window().modesWhenShown.size(), 2);
}

/// A launch that finds no notary tool.
class FailedLaunch : public Launch {
protected:
    FailedLaunch() { host.workspace.running.clear(); }

    /// Calls that would open a document if launch had not failed.
    QList<QDBusPendingCall> beginCallsThatOpenDocuments()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        return {begin(u"Activate"_s, {QVariantMap()}),
                begin(u"ActivateAction"_s, {u"new-document"_s, QVariantList(), QVariantMap()}),
                client.begin(bus::applicationPath, bus::applicationInterface, u"MakeDocument"_s,
                             {QVariantMap()})};
    }
    QDBusPendingCall beginOpen() { return begin(u"Open"_s, {QStringList{itemURL()}, QVariantMap()}); }
    void expectRefused(const QDBusPendingCall &call)
    {
        const QDBusMessage answer = client.end(call);
        EXPECT_EQ(errorOf(answer), buserror::failed);
        EXPECT_FALSE(errorTextOf(answer).isEmpty());
    }
};

TEST_F(FailedLaunch, hasAnErrorForTheCallsThatWaitedForIt)
{
    const auto calls = beginCallsThatOpenDocuments();
    const QDBusPendingCall submission = client.beginSubmit({{u"at"_s, itemURL()}});
    waitForArrivals();
    host.application().applicationDidFinishLaunching();
    for (const QDBusPendingCall &call : calls)
        expectRefused(call);
    const QDBusMessage refused = client.end(submission);
    EXPECT_EQ(errorOf(refused), u"org.sealwright.Error.N1199"_s);
    EXPECT_EQ(errorTextOf(refused), u"Application is busy, status: interacting."_s);
    EXPECT_EQ(documentCount(), 0);
}

TEST_F(FailedLaunch, opensNoDocumentBesideItsAlertNorAfterIt)
{
    const auto expectAllRefused = [this] {
        for (const QDBusPendingCall &call : beginCallsThatOpenDocuments())
            expectRefused(call);
        expectRefused(beginOpen());
        EXPECT_EQ(documentCount(), 0);
    };
    host.applicationHost.answerModal = [&] {
        expectAllRefused();
        return platform::alertFirstButton;
    };
    host.application().applicationDidFinishLaunching();
    ASSERT_EQ(host.applicationHost.modalAlerts.size(), 1);
    expectAllRefused();
}

TEST_F(FailedLaunch, takesWhatWasToBeOpenedAndOpensNothing)
{
    const QDBusPendingCall call = beginOpen();
    waitForArrivals();
    EXPECT_EQ(errorOf(client.end(call)), u"no error"_s);
    host.application().applicationDidFinishLaunching();
    EXPECT_EQ(documentCount(), 0);
}

TEST_F(FailedLaunch, canStillBeToldToQuit)
{
    host.applicationHost.answerModal = [this] {
        const QDBusPendingCall call = begin(u"ActivateAction"_s, {u"quit"_s, QVariantList(), QVariantMap()});
        EXPECT_EQ(errorOf(client.end(call)), u"no error"_s);
        EXPECT_TRUE(host.applicationHost.isTerminated);
        return platform::alertFirstButton;
    };
    host.application().applicationDidFinishLaunching();
    EXPECT_TRUE(host.applicationHost.isTerminated);
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

TEST(ScriptingBus, anApplicationThatEndsOverItsActivationDoesNotRun)
{
    TestHost host;
    host.launch();
    BusClient first(host);
    QuittingApplication quitting(first.connection());
    auto second = std::async(std::launch::async, &ScriptingBus::activateRunningInstance);
    host.runUntil([&second] { return second.wait_for(0s) == std::future_status::ready; });
    EXPECT_FALSE(second.get());
}

TEST(ScriptingBus, theNameCanBeTriedForAgain)
{
    TestHost host;
    host.launch();
    BusClient first(host);
    ASSERT_TRUE(first.connection().registerService(bus::service));
    ScriptingBus second(host.application());
    ASSERT_FALSE(second.registerOnSessionBus());
    ASSERT_TRUE(first.connection().unregisterService(bus::service));
    const platform::Outcome registered = second.registerOnSessionBus();
    EXPECT_TRUE(registered) << registered.error().toStdString();
    EXPECT_EQ(first.getPaths(u"OrderedDocuments"_s).size(), 1);
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
