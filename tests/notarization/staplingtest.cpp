// The last step: the ticket, the tidy folder and the end of the workflow.

#include "scripting/MainWinController+Scripting.h"
#include "support/items.h"
#include "support/singlesteps.h"
#include "support/testhost.h"

#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

class Stapling : public testing::Test {
protected:
    Stapling()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        original = items::fingerprint(host.item(u"Foo.app"_s));
    }

    void submit()
    {
        host.launch();
        host.submitToTheEnd(host.item(u"Foo.app"_s));
    }

    /// Submits by a script; its reply is in `reply`.
    void submitByScript(const QVariantMap &further = {})
    {
        host.launch();
        QVariantMap arguments{{argument::at, itempath::toUrl(host.item(u"Foo.app"_s))}};
        arguments.insert(further);
        const auto command =
            std::make_shared<ScriptCommand>(arguments, [this](const ScriptReply &answer) { reply = answer; });
        command->execute([this](const ScriptCommandPtr &executing) {
            MainWinControllerScripting(host.document()).AESubmitForNotarizing(executing);
        });
        host.settle();
        host.firePolls();
    }

    /// Staples an item where it lies, as the step does whatever brought it there.
    void stapleWhereItLies(const QString &path)
    {
        host.launch();
        MainWinController &document = host.document();
        document.appletURL.set(itempath::toUrl(path));
        document.originalFileName.set(itempath::lastComponent(path));
        onWorker(document, [&document] { SingleSteps(document).stapling.runStaplerAndFinish(); });
        host.settle();
    }

    TestHost host;
    QByteArray original;
    std::optional<ScriptReply> reply;
};

TEST_F(Stapling, runsTheStaplerThroughXcrunOnTheSubmittedItem)
{
    submit();
    EXPECT_EQ(
        host.tools.callsOf(u"stapler"_s),
        QList<QStringList>({{u"stapler"_s, u"staple"_s, u"-v"_s, host.item(u"Foo - Submitted/Foo.app"_s)}}));
}

TEST_F(Stapling, runsXcrunEvenWhereTheNotaryToolLiesElsewhere)
{
    const QString tool = u"/Applications/Transporter.app/Contents/itms/bin/altool"_s;
    host.tools.add(tool);
    host.launch();
    host.document().altoolPath.set(tool);
    host.submit(host.item(u"Foo.app"_s));
    QStringList paths;
    host.launcher.beforeRun = [&paths](const QString &path) { paths.append(path); };
    host.firePolls();
    EXPECT_EQ(paths, (QStringList{tool, u"/usr/bin/xcrun"_s}));
    EXPECT_EQ(host.tools.order().last(), u"stapler"_s);
}

TEST_F(Stapling, ofASubmissionPutsTheUntouchedItemAway)
{
    submit();
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Notarized/Foo - Unmodified Original/Foo.app"_s)),
              original);
    EXPECT_EQ(host.document().appletURL(), itempath::toUrl(host.item(u"Foo - Notarized/Foo.app"_s)));
    EXPECT_EQ(host.document().originalAppletURL(), itempath::toUrl(host.item(u"Foo.app"_s)));
}

TEST_F(Stapling, ofASubmissionLeavesSubmitAgainOpen)
{
    submit();
    EXPECT_EQ(host.document().lastAction(), quint64(submitAction));
}

TEST_F(Stapling, inAFolderOfAnotherNameTouchesNoFolder)
{
    items::makeBundle(host.item(u"Elsewhere/Foo.app"_s));
    stapleWhereItLies(host.item(u"Elsewhere/Foo.app"_s));
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo.app"_s}));
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Successful"_s);
    EXPECT_EQ(host.window().sheet->alert.informativeText,
              u"The file 'Foo.app' is now ready for distribution."_s);
    EXPECT_EQ(host.window().sheet->alert.buttons, (QStringList{u"OK"_s, u"Show File"_s}));
}

TEST_F(Stapling, inAFolderNamedLikeASubmissionIsTreatedAsOne)
{
    items::makeBundle(host.item(u"Foo - Submitted/Foo.app"_s));
    stapleWhereItLies(host.item(u"Foo - Submitted/Foo.app"_s));
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    EXPECT_EQ(host.listing(u"Foo - Notarized"_s),
              (QStringList{u"Foo - Unmodified Original"_s, u"Foo.app"_s}));
}

TEST_F(Stapling, withoutAnOriginalBesideTheFolderMakesNoFolderForItAndRenames)
{
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    ASSERT_TRUE(host.files.removeItem(host.item(u"Foo.app"_s)));
    host.firePolls();
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    EXPECT_FALSE(host.listing(u"Foo - Notarized"_s).contains(u"Foo - Unmodified Original"_s));
}

TEST_F(Stapling, namesThePlaceOfTheOriginalWhetherItLiesThereOrNot)
{
    ASSERT_TRUE(host.files.removeItem(host.item(u"Foo.app"_s)));
    items::makeBundle(host.item(u"Foo - Submitted/Foo.app"_s));
    stapleWhereItLies(host.item(u"Foo - Submitted/Foo.app"_s));
    EXPECT_EQ(host.document().originalAppletURL(), itempath::toUrl(host.item(u"Foo.app"_s)));
}

TEST_F(Stapling, thatCannotMoveTheOriginalLeavesItAndRemovesTheEmptyFolder)
{
    host.files.failure = [](const QString &operation, const QString &path) {
        return operation == "moveItem"_L1 && path.contains("Unmodified Original"_L1) ? u"disk on fire"_s
                                                                                     : QString();
    };
    submit();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Notarized"_s, u"Foo.app"_s}));
    EXPECT_FALSE(host.listing(u"Foo - Notarized"_s).contains(u"Foo - Unmodified Original"_s));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Successful"_s);
}

TEST_F(Stapling, thatCannotMakeTheOriginalsFolderStillSaysSuccess)
{
    host.files.failure = [](const QString &operation, const QString &path) {
        return operation == "createDirectory"_L1 && path.contains("Unmodified Original"_L1) ? u"full"_s
                                                                                            : QString();
    };
    submit();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Notarized"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Successful"_s);
}

TEST_F(Stapling, thatCannotRenameTheFolderStillSaysSuccess)
{
    host.files.failure = [this](const QString &operation, const QString &path) {
        return operation == "moveItem"_L1 && path == host.item(u"Foo - Notarized"_s) ? u"locked"_s
                                                                                     : QString();
    };
    submit();
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Submitted"_s});
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Submitted/Foo - Unmodified Original/Foo.app"_s)),
              original);
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Stapling Successful"_s);
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
}

class StaplingEnd : public Stapling, public testing::WithParamInterface<bool> { };

TEST_P(StaplingEnd, clearsAllFlagsAndStopsTheSpinner)
{
    host.tools.answer(u"stapler"_s, {.hangs = true});
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    host.timers.fireNext();
    host.runUntil([this] { return !host.tools.callsOf(u"stapler"_s).isEmpty() && host.mainQueue.isEmpty(); });
    MainWinController &document = host.document();
    const std::initializer_list<Property<bool> *> flags{&document.isBusy, &document.isSubmitting,
                                                        &document.isPolling, &document.isScripted};
    for (Property<bool> *flag : flags)
        flag->set(true);
    document.canCancel.set(true);
    document.suppressDialogs.set(GetParam());
    EXPECT_TRUE(document.progressIndicator.isAnimating());
    host.tools.release(u"stapler"_s);
    host.settle();
    EXPECT_EQ(host.window().sheet.has_value(), !GetParam());
    EXPECT_EQ(document.statusString(), GetParam() ? u"ready"_s : u"interacting"_s);
    for (const Property<bool> *flag : flags)
        EXPECT_FALSE((*flag)());
    EXPECT_FALSE(document.canCancel());
    EXPECT_FALSE(document.suppressDialogs());
    EXPECT_FALSE(document.progressIndicator.isAnimating());
}

INSTANTIATE_TEST_SUITE_P(Ends, StaplingEnd, testing::Bool(),
                         [](const auto &row) { return std::string(row.param ? "silently" : "withADialog"); });

TEST_F(Stapling, byAScriptAnswersWithTheItem)
{
    submitByScript();
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    EXPECT_EQ(reply->result.toUrl(), itempath::toUrl(host.item(u"Foo - Notarized/Foo.app"_s)));
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}

TEST_F(Stapling, byAScriptOfADiskImageAnswersWithTheImage)
{
    host.preferences.setValue(key::createDiskImage, true);
    host.tools.answer(u"hdiutil"_s, {.content = "image", .target = host.item(u"Foo - Working/Foo.dmg"_s)});
    submitByScript();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->result.toUrl(), itempath::toUrl(host.item(u"Foo - Notarized/Foo.dmg"_s)));
}

TEST_F(Stapling, byAScriptWithDialogsAnswersBeforeTheSheetIsDismissed)
{
    submitByScript({{argument::showingDialogs, true}});
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
    host.window().answerSheet();
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}

TEST_F(Stapling, showFileSelectsTheItemAtItsFinalPlace)
{
    submit();
    host.window().answerSheet(platform::alertSecondButton);
    EXPECT_EQ(host.workspace.revealed, QStringList{host.item(u"Foo - Notarized/Foo.app"_s)});
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}

TEST_F(Stapling, okSelectsNothing)
{
    submit();
    host.window().answerSheet(platform::alertFirstButton);
    EXPECT_TRUE(host.workspace.revealed.isEmpty());
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}

TEST_F(Stapling, closesTheLogFileBeforeTheRenameAndASecondRunOpensANewOne)
{
    std::optional<bool> isOpenAtTheRename;
    host.files.failure = [&](const QString &operation, const QString &path) {
        if (operation == "moveItem"_L1 && path == host.item(u"Foo - Notarized"_s))
            isOpenAtTheRename = host.document().logHandle() != nullptr;
        return QString();
    };
    submit();
    EXPECT_EQ(isOpenAtTheRename, false);
    EXPECT_EQ(host.document().logHandle(), nullptr);
    EXPECT_FALSE(host.text(u"Foo - Notarized/Submission Log.txt"_s).isEmpty());
    host.window().answerSheet();
    host.document().perform(Action::doSubmitAgain);
    host.settle();
    EXPECT_NE(host.document().logHandle(), nullptr);
    EXPECT_FALSE(host.text(u"Foo - Submitted/Submission Log.txt"_s).isEmpty());
}

TEST_F(Stapling, writesTheStaplersReportToTheOpenLogFile)
{
    host.tools.answer(u"stapler"_s, {.output = "The staple and validate action worked!"});
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    host.document().loggingToFile.set(false); // the file stays open, and that is what counts
    host.firePolls();
    EXPECT_TRUE(
        host.text(u"Foo - Notarized/Submission Log.txt"_s)
            .contains(u"Termination status: 0\nStandardOut: The staple and validate action worked!"_s));
}

TEST_F(Stapling, thatFailsRenamesASubmissionToFailedAndKeepsTheItem)
{
    host.tools.answer(u"stapler"_s, {.status = 65, .output = "out", .error = "err"});
    submit();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_TRUE(host.listing(u"Foo - Failed"_s).contains(u"Foo.app"_s));
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Failed"_s);
    const QStringList errors = host.log(LogStyle::error);
    ASSERT_EQ(errors.size(), 1);
    EXPECT_TRUE(
        QRegularExpression(u"^Error \\d+ running stapler: err\nout$"_s).match(errors.first()).hasMatch())
        << errors.first().toStdString();
    EXPECT_FALSE(
        errors.first().contains(u"Error 65 "_s)); // the number is the record's reference, not the status
    EXPECT_EQ(host.tools.callsOf(u"stapler"_s).size(), 1);
}

TEST_F(Stapling, thatFailsSilentlyHasALineOfItsOwn)
{
    host.tools.answer(u"stapler"_s, {.status = 65});
    submit();
    EXPECT_TRUE(QRegularExpression(u"^Error \\d+ running stapler\\.$"_s)
                    .match(host.log(LogStyle::error).value(0))
                    .hasMatch());
}

TEST_F(Stapling, thatFailsWithOutputOnlyShowsItBelowThatLine)
{
    host.tools.answer(u"stapler"_s, {.status = 65, .output = "out"});
    submit();
    EXPECT_TRUE(QRegularExpression(u"^Error \\d+ running stapler\\.\nout$"_s)
                    .match(host.log(LogStyle::error).value(0))
                    .hasMatch());
}

TEST_F(Stapling, thatFailsElsewhereRenamesNothing)
{
    items::makeBundle(host.item(u"Elsewhere/Foo.app"_s));
    host.tools.answer(u"stapler"_s, {.status = 65});
    stapleWhereItLies(host.item(u"Elsewhere/Foo.app"_s));
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo.app"_s}));
}

TEST_F(Stapling, thatIsCancelledSwallowsItsReportAndStillRenames)
{
    host.tools.answer(u"stapler"_s, {.hangs = true});
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    host.timers.fireNext();
    host.runUntil([this] { return !host.tools.callsOf(u"stapler"_s).isEmpty() && host.mainQueue.isEmpty(); });
    host.document().doCancel();
    host.settle();
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_EQ(host.window().sheets.first().informativeText,
              u"Uploading of the app may not have been completed."_s); // the wait was over by then
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
}
