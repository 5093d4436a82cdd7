// The wait for the verdict: what each reply leads to.

#include "notarization/pollingtest.h"

#include "app/preferencekeys.h"

using namespace Qt::StringLiterals;

Polling::Polling()
{
    items::makeBundle(host.item(u"Foo.app"_s));
    original = items::fingerprint(host.item(u"Foo.app"_s));
    host.tools.answer(infoTool, inProgress());
}

void Polling::wait()
{
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    ASSERT_EQ(host.timers.armed().size(), 1);
}

double Polling::poll()
{
    host.timers.fireNext();
    host.settle();
    const auto armed = host.timers.armed();
    if (armed.isEmpty())
        return -1;
    EXPECT_EQ(armed.size(), 1);
    EXPECT_EQ(armed.first().tolerance, 10.0);
    return armed.first().interval;
}

void Polling::pollUpTo(const QString &tool, int run)
{
    host.timers.fireNext();
    host.runUntil([&] { return host.tools.callsOf(tool).size() == run && host.mainQueue.isEmpty(); });
}

QStringList Polling::fileLines(const QString &folder, const QString &part)
{
    return host.text(folder + u"/Submission Log.txt"_s).split(u'\n').filter(part);
}

void Polling::expectFinalAlert(const QString &title)
{
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, title);
    EXPECT_EQ(host.window().sheet->alert.informativeText, u"See the log for details."_s);
    EXPECT_FALSE(host.document().isBusy());
}

TEST_F(Polling, anUploadIsFollowedByATimerOfThePollingDelay)
{
    wait();
    EXPECT_EQ(host.timers.armed().first().interval, 30.0);
    EXPECT_EQ(host.timers.armed().first().tolerance, 10.0);
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
    EXPECT_TRUE(host.document().isPolling());
    EXPECT_TRUE(host.document().canCancel());
    EXPECT_FALSE(host.document().isSubmitting());
}

TEST_F(Polling, theQueryNamesTheRequestAndTheCredentials)
{
    wait();
    poll();
    EXPECT_EQ(host.tools.callsOf(infoTool).first(),
              (QStringList{u"altool"_s, u"--notarization-info"_s, u"1234-abcd"_s, u"-u"_s,
                           u"dev@example.com"_s, u"-p"_s, u"@keychain:notary"_s}));
}

TEST_F(Polling, theQueryNamesTheProviderIfThereIsOne)
{
    host.preferences.setValue(key::providerNameValue, u"ExampleTeam"_s);
    wait();
    poll();
    EXPECT_EQ(host.tools.callsOf(infoTool).first().mid(7),
              (QStringList{u"--asc-provider"_s, u"ExampleTeam"_s}));
}

TEST_F(Polling, aVerdictIsLoggedBeforeTheWordChangesAndTheWordBeforeThePersonIsTold)
{
    host.tools.answer(infoTool, success());
    wait();
    int changes = 0;
    const QObject watcher;
    QObject::connect(
        &host.document().statusString, &Observable::changed, &watcher,
        [&] {
            if (host.document().statusString() != status::stapling)
                return;
            ++changes;
            EXPECT_EQ(fileLines(u"Foo - Submitted"_s, u"notarized and will now be stapled"_s).size(), 1);
            EXPECT_TRUE(host.userNotifications.delivered.isEmpty());
        },
        Qt::DirectConnection); // on the thread of the run
    poll();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(host.userNotifications.delivered.size(), 1);
}

TEST_F(Polling, inProgressAsksAgainAfterTheNormalDelay)
{
    host.preferences.setValue(key::pollingDelay, 45.0);
    wait();
    EXPECT_EQ(poll(), 45.0);
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Awaiting result from Apple..."_s);
    EXPECT_EQ(host.document().infoFailureCount(), 0u);
}

TEST_F(Polling, aVerdictCountsInAnyLetterCaseAndWithBlanksAroundIt)
{
    host.tools.answerRun(infoTool, 1, reply("   Status:  In Progress \r\n"));
    host.tools.answerRun(infoTool, 2, reply("Status: SUCCESS  \n"));
    wait();
    EXPECT_EQ(poll(), 30.0);
    EXPECT_EQ(poll(), -1);
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
}

TEST_F(Polling, aReportWithoutAStatusLineIsFinalAndNotRetried)
{
    host.tools.answer(infoTool, reply("everything fine\n"));
    wait();
    EXPECT_EQ(poll(), -1);
    expectFinalAlert(u"Notarization Failed"_s);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"everything fine\n"_s});
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Failed"_s),
              (QStringList{u"Entitlements.plist"_s, u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
}

TEST_F(Polling, anotherVerdictDeletesTheItemAndShowsTheServicesLog)
{
    const QString url = u"https://example.com/log.json"_s;
    host.urls.contents.insert(QUrl(url), "{\"issues\": []}");
    const QByteArray report = FakeTools::infoReport(u"invalid"_s, url);
    host.tools.answer(infoTool, reply(report));
    wait();
    EXPECT_EQ(poll(), -1);
    expectFinalAlert(u"Notarization Failed"_s);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{QString::fromUtf8(report) + u"\n{\"issues\": []}"_s});
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_FALSE(host.listing(u"Foo - Failed"_s).contains(u"Foo.app"_s));
}

TEST_F(Polling, anotherVerdictDeletesAnArchiveThatWasLeftAfterTheUpload)
{
    host.tools.answer(infoTool, reply(FakeTools::infoReport(u"invalid"_s)));
    host.files.failure = [](const QString &operation, const QString &path) {
        return operation == "removeItem"_L1 && path.endsWith(u"Foo.zip"_s) ? u"busy"_s : QString();
    };
    wait();
    ASSERT_TRUE(host.listing(u"Foo - Submitted"_s).contains(u"Foo.zip"_s));
    host.files.failure = nullptr;
    EXPECT_EQ(poll(), -1);
    EXPECT_EQ(host.listing(u"Foo - Failed"_s),
              (QStringList{u"Entitlements.plist"_s, u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
}

TEST_F(Polling, anotherVerdictWithoutAReadableLogShowsTheReportAlone)
{
    const QByteArray report = FakeTools::infoReport(u"invalid"_s, u"https://example.com/gone.json"_s);
    host.tools.answer(infoTool, reply(report));
    wait();
    EXPECT_EQ(poll(), -1);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{QString::fromUtf8(report)});
}

TEST_F(Polling, silenceOnBothStreamsPollsOnWithNoCounterMoving)
{
    host.preferences.setValue(key::preferXcodeAltool,
                              false); // a tool of its own is not asked twice when it is silent
    host.workspace.installed.insert(u"com.apple.TransporterApp"_s, host.item(u"Transporter"_s));
    const QString tool = host.item(
        u"Transporter/Contents/Frameworks/ITunesServices.framework/Frameworks/ITunesSoftwareService.framework/Support/altool"_s);
    items::makeLink(tool, host.tools.root() + u"/usr/bin/xcrun"_s);
    host.tools.answer(infoTool, {});
    wait();
    for (int round = 0; round < 5; ++round)
        EXPECT_EQ(poll(), 30.0);
    EXPECT_EQ(host.document().infoFailureCount(), 0u);
    EXPECT_EQ(host.document().info239FailureCount(), 0u);
}

TEST_F(Polling, aReportOnStandardErrorOnlyIsRead)
{
    host.tools.answer(infoTool, {.error = FakeTools::infoReport(u"success"_s)});
    wait();
    EXPECT_EQ(poll(), -1);
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
}

TEST_F(Polling, theStatusAndTheFlagsFollowTheVerdict)
{
    host.tools.answerRun(infoTool, 1, success());
    host.tools.answer(u"stapler"_s, {.hangs = true});
    wait();
    pollUpTo(u"stapler"_s);
    EXPECT_EQ(host.document().staplingTimer(), nullptr);
    EXPECT_EQ(host.document().statusString(), u"stapling"_s);
    EXPECT_FALSE(host.document().isPolling());
    EXPECT_TRUE(host.document().isBusy());
    EXPECT_TRUE(host.document().canCancel());
    host.document().doCancel();
    host.settle();
}

TEST_F(Polling, theOneNotificationGoesOutWhenStaplingBegins)
{
    host.preferences.setValue(key::userInfoShowWhenActive, false);
    host.tools.answer(infoTool, success());
    wait();
    poll();
    ASSERT_EQ(host.userNotifications.delivered.size(), 1);
    const auto &notification = host.userNotifications.delivered.first();
    EXPECT_EQ(notification.title, u"Notarization Successful"_s);
    EXPECT_EQ(notification.informativeText, u"Now stapling the submission"_s);
    EXPECT_EQ(notification.userInfo, (QVariantMap{{u"userInfoShowWhenActiveKey"_s, false}}));
    EXPECT_FALSE(host.userNotifications.shouldPresent(notification));
}

TEST_F(Polling, theNotificationGoesOutWhereDialogsAreSuppressed)
{
    host.tools.answer(infoTool, success());
    wait();
    host.document().suppressDialogs.set(true);
    poll();
    EXPECT_EQ(host.userNotifications.delivered.size(), 1);
    EXPECT_TRUE(host.window().sheets.isEmpty());
}
