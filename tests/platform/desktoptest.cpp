#include "desktopbus.h"
#include "eventwait.h"
#include "platform/posix/posixfileservice.h"
#include "platform/qt/busdistributednotifications.h"
#include "platform/qt/desktopnotificationcenter.h"
#include "platform/qt/desktopworkspace.h"
#include "platform/qt/qtmainqueue.h"
#include "temporaryfolder.h"

#include <QDesktopServices>

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
    QList<QStringList> actions; ///< of each message

    void click(uint message, const QString &token = {})
    {
        if (!token.isNull())
            Q_EMIT ActivationToken(message, token);
        Q_EMIT ActionInvoked(message, u"default"_s);
    }

public Q_SLOTS:
    uint Notify(const QString &, uint, const QString &, const QString &summary, const QString &body,
                const QStringList &offered, const QVariantMap &, int)
    {
        messages += summary + u'|' + body;
        actions += offered;
        return uint(messages.size());
    }

Q_SIGNALS:
    void ActivationToken(uint message, const QString &token);
    void ActionInvoked(uint message, const QString &action);
    void NotificationClosed(uint message, uint reason);
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

/// With a folder for the applications that the workspace knows.
class WorkspaceOnBus : public Desktop {
protected:
    TemporaryFolder folder;
    PosixFileService files;
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

TEST_F(WorkspaceOnBus, anItemIsShownByTheFileManager)
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

TEST_F(WorkspaceOnBus, withoutAFileManagerTheFolderOfTheItemIsOpened)
{
    UrlHandler handler;
    DesktopWorkspace workspace(folder.path(), files, launcher, application);
    workspace.revealItem(u"/some folder/Foo - Notarized"_s);
    ASSERT_TRUE(waitFor([&] { return !handler.opened.isEmpty(); }));
    EXPECT_EQ(handler.opened, QList<QUrl>{QUrl::fromLocalFile(u"/some folder"_s)});
}

TEST_F(WorkspaceOnBus, withoutABusTheFolderOfTheItemIsOpened)
{
    UrlHandler handler;
    DesktopWorkspace workspace(folder.path(), files, launcher, QDBusConnection(u"no such"_s));
    workspace.revealItem(u"/some folder/item"_s);
    EXPECT_TRUE(waitFor([&] { return handler.opened.size() == 1; }));
}

TEST_F(WorkspaceOnBus, anItemThatNothingCanShowIsTold)
{
    QStringList unshown;
    const auto note = [&](const QString &path) { unshown.append(path); };
    DesktopWorkspace workspace(folder.path(), files, launcher, application);
    workspace.setUnshown(note);
    workspace.revealItem(u"/some folder/Foo - Notarized"_s);
    ASSERT_TRUE(waitFor([&] { return !unshown.isEmpty(); }));
    DesktopWorkspace withoutBus(folder.path(), files, launcher, QDBusConnection(u"no such"_s));
    withoutBus.setUnshown(note);
    withoutBus.revealItem(u"/some folder/item"_s);
    EXPECT_EQ(unshown, (QStringList{u"/some folder/Foo - Notarized"_s, u"/some folder/item"_s}));
    UrlHandler handler;
    withoutBus.revealItem(u"/some folder/item"_s);
    EXPECT_EQ(handler.opened.size(), 1);
    EXPECT_EQ(unshown.size(), 2);
}

TEST_F(WorkspaceOnBus, aPageAndAMailAreOpened)
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

TEST_F(NotificationCenter, aClickOnAMessageCallsItsHandlerOnceWithTheToken)
{
    DesktopNotificationCenter clicked = center();
    QStringList calls;
    for (const QString &name : {u"first"_s, u"second"_s})
        clicked.deliver(
            {name, {}, {}, [&calls, name](const QString &token) { calls += name + u':' + token; }});
    clicked.deliver({u"plain"_s, {}, {}});
    ASSERT_TRUE(waitFor([this] { return service.messages.size() == 3; }));
    EXPECT_EQ(service.actions,
              (QList<QStringList>{{u"default"_s, QString()}, {u"default"_s, QString()}, {}}));
    service.click(99);
    service.click(3);
    service.click(2, u"token"_s);
    service.click(2, u"late"_s);
    ASSERT_TRUE(waitFor([&] { return !calls.isEmpty(); }));
    service.click(1);
    EXPECT_TRUE(waitFor([&] { return calls.size() == 2; }));
    EXPECT_EQ(calls, (QStringList{u"second:token"_s, u"first:"_s}));
}

TEST_F(NotificationCenter, aMessageThatHasGoneCallsNothing)
{
    DesktopNotificationCenter clicked = center();
    QStringList calls;
    for (const QString &name : {u"gone"_s, u"there"_s})
        clicked.deliver({name, {}, {}, [&calls, name](const QString &) { calls += name; }});
    ASSERT_TRUE(waitFor([this] { return service.messages.size() == 2; }));
    Q_EMIT service.NotificationClosed(1, 2);
    service.click(1);
    service.click(2);
    ASSERT_TRUE(waitFor([&] { return !calls.isEmpty(); }));
    EXPECT_EQ(calls, QStringList{u"there"_s});
}

namespace {

/// Another application posts to all.
class Posting : public Desktop {
protected:
    void sendPosted(const QString &name)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(u"/org/sealwright/DistributedNotifications"_s,
                                       u"org.sealwright.DistributedNotifications"_s, u"Posted"_s);
        signal << name;
        ASSERT_TRUE(desktop.send(signal));
    }
};

} // namespace

TEST_F(Posting, aNotificationOfAnySenderCallsItsHandlerAlone)
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

TEST_F(Posting, whatHasWaitedForASlowHandlerCallsItOnce)
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

TEST_F(Posting, withoutObserversNoHandlerIsCalled)
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

TEST_F(Posting, aHandlerMayRemoveItself)
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

TEST_F(Posting, oneObserverMayGoWithoutTheOthers)
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

TEST_F(Posting, aHandlerMayRemoveAnotherObserver)
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

#include "desktoptest.moc"
