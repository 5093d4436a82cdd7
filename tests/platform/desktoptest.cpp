#include "eventwait.h"
#include "platform/posix/posixfileservice.h"
#include "platform/posix/posixprocesslauncher.h"
#include "platform/qt/busdistributednotifications.h"
#include "platform/qt/desktopappearance.h"
#include "platform/qt/desktopnotificationcenter.h"
#include "platform/qt/desktopworkspace.h"
#include "platform/qt/qtmainqueue.h"
#include "temporaryfolder.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDesktopServices>

#include <future>
#include <thread>

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

/// What a file manager puts on the bus.
class FileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QStringList shown;

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &) { shown += uris; }
};

/// What a desktop's notification service puts on the bus.
class NotificationService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    QStringList messages;

public Q_SLOTS:
    uint Notify(const QString &, uint, const QString &, const QString &summary, const QString &body,
                const QStringList &, const QVariantMap &, int)
    {
        messages += summary + u'|' + body;
        return 1;
    }
};

/// Takes the place of whatever opens URLs here.
class UrlHandler : public QObject {
    Q_OBJECT

public:
    UrlHandler()
    {
        for (const QString &scheme : schemes)
            QDesktopServices::setUrlHandler(scheme, this, "open");
    }
    ~UrlHandler() override
    {
        for (const QString &scheme : schemes)
            QDesktopServices::unsetUrlHandler(scheme);
    }

    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened += url; }

private:
    const QStringList schemes{u"file"_s, u"https"_s, u"mailto"_s};
};

/// A bus of the test's own, with the application and the desktop as two peers on it.
class Desktop : public testing::Test {
protected:
    void SetUp() override
    {
        daemon = launcher.process(u"/usr/bin/dbus-daemon"_s,
                                  {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s});
        ASSERT_TRUE(daemon->launch());
        std::promise<QByteArray> printed;
        auto line = printed.get_future();
        serving = std::thread([this, printed = std::move(printed)]() mutable {
            daemon->waitUntilExit([&](const QByteArray &chunk) { printed.set_value(chunk); },
                                  [](const QByteArray &) {});
        });
        const QString address = QString::fromUtf8(line.get()).trimmed();
        application = QDBusConnection::connectToBus(address, u"application"_s);
        desktop = QDBusConnection::connectToBus(address, u"desktop"_s);
        ASSERT_TRUE(application.isConnected() && desktop.isConnected());
    }

    void TearDown() override
    {
        QDBusConnection::disconnectFromBus(u"application"_s);
        QDBusConnection::disconnectFromBus(u"desktop"_s);
        daemon->terminate();
        if (serving.joinable())
            serving.join();
    }

    void serve(const QString &name, const QString &path, QObject *object)
    {
        ASSERT_TRUE(desktop.registerObject(path, object, QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(desktop.registerService(name));
    }

    /// Returns once the bus has taken all that the application asked of it.
    void settle() { roundTrip(application); }

    static void roundTrip(const QDBusConnection &connection)
    {
        const QDBusMessage reply = connection.call(QDBusMessage::createMethodCall(
            u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"GetId"_s));
        ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage);
    }

    void sendPosted(const QString &name)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(u"/org/sealwright/DistributedNotifications"_s,
                                       u"org.sealwright.DistributedNotifications"_s, u"Posted"_s);
        signal << name;
        ASSERT_TRUE(desktop.send(signal));
    }

    std::shared_ptr<Process> daemon;
    std::thread serving;
    QDBusConnection application{u"none"_s};
    QDBusConnection desktop{u"none"_s};
    TemporaryFolder folder;
    PosixFileService files;
    PosixProcessLauncher launcher;
};

class NotificationCenter : public Desktop {
protected:
    void SetUp() override
    {
        Desktop::SetUp();
        serve(u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s, &service);
    }

    DesktopNotificationCenter center()
    {
        return DesktopNotificationCenter(mainQueue, application, [this] {
            isAskedOnMainThread = mainQueue.isMainThread();
            return isActive;
        });
    }

    /// The messages up to one that is always shown; so what is not among them is not coming.
    QStringList shown(DesktopNotificationCenter &center)
    {
        mainQueue.post([this] { isActive = false; });
        center.deliver({u"last"_s, {}, {}});
        EXPECT_TRUE(waitFor([this] { return service.messages.contains(u"last|"_s); }));
        return service.messages;
    }

    NotificationService service;
    QtMainQueue mainQueue;
    bool isActive = false;
    bool isAskedOnMainThread = false;
};

} // namespace

TEST_F(Desktop, anItemIsShownByTheFileManager)
{
    FileManager manager;
    UrlHandler handler;
    serve(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s, &manager);
    DesktopWorkspace workspace(folder.path(), files, launcher, application);
    workspace.revealItem(u"/some folder/Foo - Notarized"_s);
    ASSERT_TRUE(waitFor([&] { return !manager.shown.isEmpty(); }));
    EXPECT_EQ(manager.shown, QStringList{u"file:///some%20folder/Foo%20-%20Notarized"_s});
    EXPECT_TRUE(handler.opened.isEmpty());
}

TEST_F(Desktop, withoutAFileManagerTheFolderOfTheItemIsOpened)
{
    UrlHandler handler;
    DesktopWorkspace workspace(folder.path(), files, launcher, application);
    workspace.revealItem(u"/some folder/Foo - Notarized"_s);
    ASSERT_TRUE(waitFor([&] { return !handler.opened.isEmpty(); }));
    EXPECT_EQ(handler.opened, QList<QUrl>{QUrl::fromLocalFile(u"/some folder"_s)});
}

TEST_F(Desktop, withoutABusTheFolderOfTheItemIsOpened)
{
    UrlHandler handler;
    DesktopWorkspace workspace(folder.path(), files, launcher, QDBusConnection(u"no such"_s));
    workspace.revealItem(u"/some folder/item"_s);
    EXPECT_TRUE(waitFor([&] { return handler.opened.size() == 1; }));
}

TEST_F(Desktop, aPageAndAMailAreOpened)
{
    UrlHandler handler;
    DesktopWorkspace workspace(folder.path(), files, launcher, application);
    workspace.openUrl(QUrl(u"https://example.com/help"_s));
    workspace.openUrl(QUrl(u"mailto:someone@example.com"_s));
    EXPECT_EQ(handler.opened,
              (QList<QUrl>{QUrl(u"https://example.com/help"_s), QUrl(u"mailto:someone@example.com"_s)}));
}

TEST_F(NotificationCenter, aMessageOfAnyThreadIsShownWhileTheApplicationIsInTheBackground)
{
    DesktopNotificationCenter shownOn = center();
    shownOn.setShouldPresent([](const UserNotification &) { return false; });
    std::thread([&] { shownOn.deliver({u"Foo.app"_s, u"a < b"_s, {}}); }).join();
    EXPECT_EQ(shown(shownOn), (QStringList{u"Foo.app|a &lt; b"_s, u"last|"_s}));
    EXPECT_TRUE(isAskedOnMainThread);
}

TEST_F(NotificationCenter, whileTheApplicationIsActiveTheQuestionDecides)
{
    DesktopNotificationCenter asked = center();
    isActive = true;
    bool isOnMainThread = false;
    asked.setShouldPresent([&](const UserNotification &notification) {
        isOnMainThread = mainQueue.isMainThread();
        return notification.userInfo.value(u"show"_s).toBool();
    });
    std::thread([&] {
        asked.deliver({u"hidden"_s, {}, {{u"show"_s, false}}});
        asked.deliver({u"shown"_s, {}, {{u"show"_s, true}}});
    }).join();
    EXPECT_EQ(shown(asked), (QStringList{u"shown|"_s, u"last|"_s}));
    EXPECT_TRUE(isOnMainThread);
}

TEST_F(NotificationCenter, withNobodyToAskAnActiveApplicationShowsNothing)
{
    DesktopNotificationCenter silent = center();
    isActive = true;
    silent.deliver({u"hidden"_s, {}, {}});
    EXPECT_EQ(shown(silent), QStringList{u"last|"_s});
}

TEST_F(Desktop, aNotificationOfAnySenderCallsItsHandlerAlone)
{
    BusDistributedNotifications notifications(application);
    const QObject observer;
    settle();
    QStringList calls;
    notifications.addObserver(observer, u"com.example.changed"_s, [&] { calls += u"changed"_s; });
    notifications.addObserver(observer, u"last"_s, [&] { calls += u"last"_s; });
    sendPosted(u"com.example.other"_s);
    sendPosted(u"com.example.changed"_s);
    sendPosted(u"com.example.changed"_s);
    sendPosted(u"last"_s);
    ASSERT_TRUE(waitFor([&] { return calls.contains(u"last"_s); }));
    EXPECT_EQ(calls, (QStringList{u"changed"_s, u"changed"_s, u"last"_s}));
}

TEST_F(Desktop, whatHasWaitedForASlowHandlerCallsItOnce)
{
    BusDistributedNotifications notifications(application);
    const QObject observer;
    settle();
    int calls = 0;
    bool isOver = false;
    const auto slow = [&] {
        if (++calls > 1)
            return;
        for (int repeats = 0; repeats < 300; ++repeats)
            sendPosted(u"changed"_s);
        sendPosted(u"over"_s);
        roundTrip(desktop); // the bus has all of them
        settle(); // and so have we
    };
    notifications.addObserver(observer, u"changed"_s, slow, platform::Repeats::areMerged);
    notifications.addObserver(observer, u"over"_s, [&] { isOver = true; });
    sendPosted(u"changed"_s);
    ASSERT_TRUE(waitFor([&] { return isOver && calls > 1; }));
    EXPECT_EQ(calls, 2);
    sendPosted(u"changed"_s);
    EXPECT_TRUE(waitFor([&] { return calls == 3; })) << "the next one is heard at once";
}

TEST_F(Desktop, withoutObserversNoHandlerIsCalled)
{
    BusDistributedNotifications notifications(application);
    const QObject observer;
    settle();
    QStringList calls;
    notifications.addObserver(observer, u"com.example.changed"_s, [&] { calls += u"changed"_s; });
    notifications.removeObserver(observer);
    notifications.addObserver(observer, u"last"_s, [&] { calls += u"last"_s; });
    sendPosted(u"com.example.changed"_s);
    sendPosted(u"last"_s);
    ASSERT_TRUE(waitFor([&] { return !calls.isEmpty(); }));
    EXPECT_EQ(calls, QStringList{u"last"_s});
}

TEST_F(Desktop, aHandlerMayRemoveItself)
{
    BusDistributedNotifications notifications(application);
    const QObject observer;
    settle();
    int calls = 0;
    notifications.addObserver(observer, u"once"_s, [&] {
        notifications.removeObserver(observer);
        ++calls;
    });
    sendPosted(u"once"_s);
    EXPECT_TRUE(waitFor([&] { return calls == 1; }));
}

TEST_F(Desktop, oneObserverMayGoWithoutTheOthers)
{
    BusDistributedNotifications notifications(application);
    const QObject leaves;
    const QObject stays;
    settle();
    QStringList calls;
    notifications.addObserver(leaves, u"changed"_s, [&] { calls += u"leaves"_s; });
    notifications.addObserver(stays, u"changed"_s, [&] { calls += u"stays"_s; });
    sendPosted(u"changed"_s);
    ASSERT_TRUE(waitFor([&] { return calls.size() == 2; }));
    notifications.removeObserver(leaves);
    sendPosted(u"changed"_s);
    ASSERT_TRUE(waitFor([&] { return calls.size() == 3; }));
    EXPECT_EQ(calls, (QStringList{u"leaves"_s, u"stays"_s, u"stays"_s}));
}

TEST_F(Desktop, aHandlerMayRemoveAnotherObserver)
{
    BusDistributedNotifications notifications(application);
    const QObject first;
    const QObject second;
    settle();
    QStringList calls;
    notifications.addObserver(first, u"changed"_s, [&] {
        notifications.removeObserver(second);
        calls += u"first"_s;
    });
    notifications.addObserver(second, u"changed"_s, [&] { calls += u"second"_s; });
    notifications.addObserver(first, u"last"_s, [&] { calls += u"last"_s; });
    sendPosted(u"changed"_s);
    sendPosted(u"last"_s);
    ASSERT_TRUE(waitFor([&] { return calls.contains(u"last"_s); }));
    EXPECT_EQ(calls, (QStringList{u"first"_s, u"last"_s}));
}

TEST_F(Desktop, aNotificationThatIsPostedReachesAllThisApplicationAmongThem)
{
    BusDistributedNotifications here(application);
    BusDistributedNotifications elsewhere(desktop);
    const QObject observer;
    settle();
    QStringList calls;
    here.addObserver(observer, u"changed"_s, [&] { calls += u"here"_s; });
    elsewhere.addObserver(observer, u"changed"_s, [&] { calls += u"elsewhere"_s; });
    here.post(u"changed"_s);
    ASSERT_TRUE(waitFor([&] { return calls.size() == 2; }));
    calls.sort();
    EXPECT_EQ(calls, (QStringList{u"elsewhere"_s, u"here"_s}));
}

TEST_F(Desktop, withoutABusANotificationReachesThisApplicationAllTheSame)
{
    BusDistributedNotifications notifications(QDBusConnection(u"no such bus"_s));
    const QObject observer;
    int calls = 0;
    notifications.addObserver(observer, u"changed"_s, [&] { ++calls; });
    notifications.post(u"changed"_s);
    EXPECT_TRUE(waitFor([&] { return calls == 1; }));
}

// Light and dark

namespace {

/// The desktop's portal for settings, which knows the one setting.
class SettingsPortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    uint scheme = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString &group, const QString &key)
    {
        if (group != "org.freedesktop.appearance"_L1 || key != "color-scheme"_L1)
            return QDBusVariant(u"another setting"_s);
        return QDBusVariant(QVariant::fromValue(QDBusVariant(QVariant(scheme))));
    }
};

class LightAndDark : public Desktop {
protected:
    using Scheme = DesktopAppearance::Scheme;

    void servePortal(uint scheme)
    {
        portal.scheme = scheme;
        serve(u"org.freedesktop.portal.Desktop"_s, portalPath, &portal);
    }
    void sendChange(const QString &key, uint scheme)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(portalPath, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal << u"org.freedesktop.appearance"_s << key
               << QVariant::fromValue(QDBusVariant(QVariant(scheme)));
        ASSERT_TRUE(desktop.send(signal));
    }

    const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
    SettingsPortal portal;
};

} // namespace

TEST_F(LightAndDark, isReadAtTheStart)
{
    servePortal(1);
    const DesktopAppearance appearance(application);
    EXPECT_EQ(appearance.scheme(), Scheme::noPreference) << "nobody waits for the answer";
    EXPECT_TRUE(waitFor([&] { return appearance.scheme() == Scheme::dark; }));
}

TEST_F(LightAndDark, isFollowedAndEachChangeToldOnce)
{
    servePortal(2);
    const DesktopAppearance appearance(application);
    int changes = 0;
    QObject::connect(&appearance, &DesktopAppearance::changed, &appearance, [&] { ++changes; });
    ASSERT_TRUE(waitFor([&] { return appearance.scheme() == Scheme::light; }));
    sendChange(u"color-scheme"_s, 2);
    sendChange(u"contrast"_s, 1);
    sendChange(u"color-scheme"_s, 1);
    ASSERT_TRUE(waitFor([&] { return appearance.scheme() == Scheme::dark; }));
    EXPECT_EQ(changes, 2);
    sendChange(u"color-scheme"_s, 77);
    EXPECT_TRUE(waitFor([&] { return appearance.scheme() == Scheme::noPreference; }));
}

TEST_F(LightAndDark, ofADesktopWithoutAPortalIsNoPreference)
{
    const DesktopAppearance appearance(application);
    settle();
    QCoreApplication::processEvents();
    EXPECT_EQ(appearance.scheme(), Scheme::noPreference);
}

#include "desktoptest.moc"
