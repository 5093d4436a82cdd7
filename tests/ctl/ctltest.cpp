// The client as a program, against an application on a bus: items that are worked on.

#include "ctl/clienttest.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

TEST_F(Client, aSubmissionPrintsThePathOfItsItem)
{
    appURL(u"My App.app"_s);
    Ctl ctl(host, {u"submit"_s, host.item(u"My App.app"_s)});
    EXPECT_EQ(endWithPolls(ctl), 0);
    EXPECT_EQ(ctl.output, host.item(u"My App - Notarized/My App.app"_s) + u'\n');
    EXPECT_EQ(ctl.error, QString());
    EXPECT_EQ(documentCount(), 2);
}

TEST_F(Client, thePathMayBeRelative)
{
    appURL();
    Ctl ctl(host, {u"submit"_s, u"./Foo.app/"_s, u"--skip-stapling"_s}, host.item({}));
    EXPECT_EQ(ctl.end(), 0);
    EXPECT_EQ(ctl.output, host.item(u"Foo - Submitted/Foo.app"_s) + u'\n');
    EXPECT_TRUE(host.timers.armed().isEmpty());
}

TEST_F(Client, aSubmissionCanBeGivenToADocument)
{
    appURL();
    for (const QString &identifier : {element(), host.document().uniqueID}) {
        EXPECT_EQ(
            run({u"submit"_s, host.item(u"Foo.app"_s), u"--skip-stapling"_s, u"--document"_s, identifier}), 0)
            << error.toStdString();
        host.settle();
    }
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(Client, anItemIsSignedAndThePathOfItsCopyPrinted)
{
    appURL();
    EXPECT_EQ(run({u"sign"_s, host.item(u"Foo.app"_s), u"--document"_s, element()}), 0);
    EXPECT_EQ(output, host.item(u"Foo - Signed/Foo.app"_s) + u'\n');
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(Client, anItemIsStapledAndItsPathPrinted)
{
    appURL();
    host.tools.answer(u"spctl"_s, {.error = "Foo.app: accepted\n"});
    EXPECT_EQ(run({u"staple"_s, host.item(u"Foo.app"_s), u"--follow"_s}), 0);
    EXPECT_EQ(output, host.item(u"Foo.app"_s) + u'\n');
    EXPECT_TRUE(error.contains(u"Stapling succeeded."_s)) << error.toStdString();
    EXPECT_EQ(documentCount(), 2);
}

TEST_F(Client, whatOnlySubmittingTakesIsNotSigned)
{
    items::makeFile(host.item(u"Foo.pkg"_s), "xar!");
    EXPECT_EQ(run({u"sign"_s, host.item(u"Foo.pkg"_s)}), 1);
    EXPECT_EQ(
        error,
        u"sealwrightctl: error 6: \nsealwrightctl: '%1' is of a kind that this command does not take\n"_s.arg(
            host.item(u"Foo.pkg"_s)));
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(Client, aPageOfTheHistoryIsPrintedAsItStands)
{
    host.tools.answer(u"altool--notarization-history"_s, {.output = "a page\nof two lines"});
    EXPECT_EQ(run({u"history"_s, u"--page"_s, u"3"_s, u"--xml"_s, u"--document"_s, element()}), 0);
    EXPECT_EQ(output, u"a page\nof two lines\n"_s);
    const QStringList arguments = host.tools.callsOf(u"altool--notarization-history"_s).first();
    EXPECT_EQ(arguments.value(2), u"3"_s);
    EXPECT_TRUE(arguments.contains(u"xml"_s));
}

TEST_F(Client, aPageOfTheHistoryWithoutAnyTextIsNothing)
{
    host.tools.answer(u"altool--notarization-history"_s, {});
    EXPECT_EQ(run({u"history"_s}), 0);
    EXPECT_EQ(output, QString());
}

TEST_F(Client, anItemIsPreparedForAPerson)
{
    appURL();
    EXPECT_EQ(run({u"prepare"_s, host.item(u"Foo.app"_s), u"--identity"_s, u"Nobody"_s}), 0);
    EXPECT_EQ(output, QString());
    EXPECT_EQ(documentCount(), 2);
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
}

TEST_F(Client, aLogIsEmptied)
{
    host.document().logString(u"a line"_s);
    host.settle();
    EXPECT_EQ(run({u"clear-log"_s, element()}), 0);
    EXPECT_EQ(output, QString());
    EXPECT_TRUE(host.log().isEmpty());
}

TEST_F(Client, withDialogsTheDocumentShowsItsSheet)
{
    appURL();
    host.tools.answer(u"codesign"_s, {.status = 1});
    EXPECT_EQ(run({u"submit"_s, host.item(u"Foo.app"_s), u"--show-dialogs"_s, u"--document"_s, element()}),
              1);
    host.settle();
    EXPECT_TRUE(host.window().sheet);
}

TEST_F(Client, aScriptErrorIsPrintedWithItsNumberAndText)
{
    EXPECT_EQ(run({u"submit"_s, u"/nowhere/Foo.app"_s}), 1);
    EXPECT_EQ(error, u"sealwrightctl: error 6: \nsealwrightctl: there is no item at '/nowhere/Foo.app'\n"_s);
    EXPECT_EQ(output, QString());
    const QDBusPendingCall submission = beginEndlessSubmission();
    EXPECT_EQ(run({u"submit"_s, host.item(u"Foo.app"_s), u"--document"_s, element()}), 1);
    EXPECT_EQ(error, u"sealwrightctl: error 1199: Document is busy, status: submitting.\n"_s);
    cancel();
    client.end(submission);
    host.settle();
}

TEST_F(Client, anAddressInPlaceOfAPathIsToldToBeOne)
{
    EXPECT_EQ(run({u"submit"_s, u"file:///nowhere/Foo.app"_s}), 1);
    EXPECT_EQ(
        error,
        u"sealwrightctl: error 6: \nsealwrightctl: 'file:///nowhere/Foo.app' is an address; a path is wanted\n"_s);
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(Client, aTextThatIsTooLongForAnErrorFollowsIt)
{
    host.tools.answer(u"codesign"_s, {.status = 1, .error = QByteArray(2000, 'x')});
    appURL();
    EXPECT_EQ(run({u"sign"_s, host.item(u"Foo.app"_s), u"--document"_s, element()}), 1);
    EXPECT_TRUE(
        error.startsWith(u"sealwrightctl: error 1110: Error Signing Code: See the 'from' parameter for "
                         "detailed error message.\n"_s))
        << error.toStdString();
    EXPECT_TRUE(error.contains(QString(2000, u'x')));
    host.settle();
}

TEST_F(Client, anotherErrorIsPrintedWithoutANumber)
{
    for (const QStringList &words :
         {QStringList{u"log"_s, u"nobody"_s}, QStringList{u"cancel"_s, u"nobody"_s},
          QStringList{u"close"_s, u"nobody"_s},
          QStringList{u"submit"_s, u"a"_s, u"--document"_s, u"nobody"_s},
          QStringList{u"submit"_s, u"a"_s, u"--follow"_s, u"--document"_s, u"nobody"_s}}) {
        EXPECT_EQ(run(words), 1) << words.join(u' ').toStdString();
        EXPECT_EQ(error, u"sealwrightctl: error: There is no object %1/nobody.\n"_s.arg(bus::documentsPath));
    }
}

TEST_F(Client, aFollowedSubmissionThatIsRefusedPrintsItsErrorAlone)
{
    host.document().logString(u"not this"_s);
    for (const QStringList &receiver : {QStringList{}, QStringList{u"--document"_s, element()}}) {
        EXPECT_EQ(run(QStringList{u"submit"_s, u"/nowhere/Foo.app"_s, u"--follow"_s} + receiver), 1);
        EXPECT_EQ(error,
                  u"sealwrightctl: error 6: \nsealwrightctl: there is no item at '/nowhere/Foo.app'\n"_s);
        EXPECT_EQ(output, QString());
    }
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(Client, aFollowedSubmissionPrintsItsWholeLogAndNobodyElses)
{
    appURL();
    MainWinController &other = host.document();
    Ctl ctl(host, {u"submit"_s, host.item(u"Foo.app"_s), u"--follow"_s});
    host.runUntil([this] { return documentCount() == 2; });
    other.logString(u"not this"_s);
    EXPECT_EQ(endWithPolls(ctl), 0);
    EXPECT_EQ(ctl.error, host.document().statusTextView.string());
    EXPECT_FALSE(ctl.error.isEmpty());
    EXPECT_EQ(ctl.output, host.item(u"Foo - Notarized/Foo.app"_s) + u'\n');
}

TEST_F(Client, entriesThatLandAfterTheAnswerArePrintedToo)
{
    appURL();
    Ctl ctl(host,
            {u"submit"_s, host.item(u"Foo.app"_s), u"--follow"_s, u"--skip-stapling"_s, u"--document"_s,
             element()});
    EXPECT_EQ(ctl.end(), 0);
    host.settle();
    EXPECT_EQ(ctl.error, host.document().statusTextView.string());
}

TEST_F(Client, anInterruptOfAFollowedSubmissionCancelsItOnceAndWaitsForTheAnswer)
{
    host.tools.answer(u"altool--notarization-history"_s, {.hangs = true});
    appURL();
    Ctl ctl(host, {u"submit"_s, host.item(u"Foo.app"_s), u"--follow"_s});
    waitForCredentialCheck();
    ctl.interrupt();
    ctl.interrupt();
    EXPECT_EQ(ctl.end(), 1);
    EXPECT_TRUE(ctl.error.endsWith(u"sealwrightctl: error 1118: Process Cancelled: Uploading of the app may "
                                   "not have been completed.\n"_s))
        << ctl.error.toStdString();
    host.settle();
    EXPECT_EQ(host.log().count(u"Process cancelled..."_s), 1);
}

TEST_F(Client, aLaterInterruptDoesNotEndTheWaiting)
{
    host.tools.answer(u"altool--notarize-app"_s, {.hangs = true}); // an upload cannot be cancelled
    appURL();
    Ctl ctl(host, {u"submit"_s, host.item(u"Foo.app"_s), u"--follow"_s, u"--document"_s, element()});
    host.runUntil([this] {
        return !host.tools.callsOf(u"altool--notarize-app"_s).isEmpty() && !host.document().canCancel();
    });
    ctl.interrupt();
    ctl.interrupt();
    host.document().logString(u"still here"_s);
    ctl.waitForError(u"still here"_s);
    EXPECT_TRUE(ctl.isRunning());
    host.document().uploadTaskRunner()->terminateTaskFor(host.document().uniqueID);
    EXPECT_EQ(ctl.end(), 1);
    host.settle();
}

TEST_F(Client, anInterruptOfASubmissionThatIsNotFollowedLeavesItAlone)
{
    host.tools.answer(u"altool--notarization-history"_s, {.hangs = true});
    appURL();
    Ctl ctl(host, {u"submit"_s, host.item(u"Foo.app"_s), u"--document"_s, element()});
    waitForCredentialCheck();
    ctl.interrupt();
    EXPECT_EQ(ctl.end(), -1); // the signal ended it
    EXPECT_EQ(host.document().statusString(), u"submitting"_s);
    cancel();
    host.settle();
}

TEST_F(Client, anAnswerThatDoesNotComeInTimeIsAStatusOfItsOwn)
{
    host.tools.answer(u"altool--notarization-history"_s, {.hangs = true});
    appURL();
    EXPECT_EQ(
        run({u"submit"_s, host.item(u"Foo.app"_s), u"--timeout"_s, u"0.3"_s, u"--document"_s, element()}), 3);
    EXPECT_EQ(error, u"sealwrightctl: Sealwright did not answer\n"_s);
    EXPECT_EQ(host.document().statusString(), u"submitting"_s);
    waitForCredentialCheck();
    cancel();
    host.settle();
}

TEST_F(Client, aSubmissionIsToldAsJson)
{
    appURL();
    Ctl ctl(host, {u"submit"_s, host.item(u"Foo.app"_s), u"--json"_s});
    EXPECT_EQ(endWithPolls(ctl), 0);
    const QJsonObject told = QJsonDocument::fromJson(ctl.output.toUtf8()).object();
    EXPECT_EQ(told.value(u"document"_s).toString(), element());
    EXPECT_EQ(told.value(u"status"_s).toString(), u"ready"_s);
    EXPECT_EQ(told.value(u"result"_s).toString(), host.item(u"Foo - Notarized/Foo.app"_s));
    EXPECT_TRUE(told.value(u"error"_s).isNull());
    QStringList log;
    for (const QJsonValue &entry : told.value(u"log"_s).toArray())
        log.append(entry.toString() + u'\n');
    EXPECT_EQ(log.join(QString()), host.document().statusTextView.string());
    EXPECT_EQ(documentCount(), 2);
}

TEST_F(Client, aFailureIsToldAsJsonWithItsNumber)
{
    EXPECT_EQ(run({u"sign"_s, u"/nowhere/Foo.app"_s, u"--json"_s}), 1);
    const QJsonObject told = QJsonDocument::fromJson(output.toUtf8()).object();
    EXPECT_TRUE(told.value(u"document"_s).isNull());
    EXPECT_TRUE(told.value(u"result"_s).isNull());
    EXPECT_EQ(told.value(u"error"_s).toObject().value(u"number"_s).toInt(), 6);
    EXPECT_TRUE(error.startsWith(u"sealwrightctl: error 6: \n"_s));
}

TEST_F(Client, theDocumentOfACommandIsClosedIfThatIsWanted)
{
    appURL();
    EXPECT_EQ(run({u"sign"_s, host.item(u"Foo.app"_s), u"--close"_s}), 0) << error.toStdString();
    EXPECT_EQ(output, host.item(u"Foo - Signed/Foo.app"_s) + u'\n');
    host.runUntil([this] { return documentCount() == 1; });
    host.tools.answer(u"altool--notarization-history"_s, {.output = "a page\n"});
    EXPECT_EQ(run({u"history"_s, u"--close"_s}), 0);
    EXPECT_EQ(output, u"a page\n"_s);
    host.runUntil([this] { return documentCount() == 1; });
}

TEST_F(Client, aDocumentOfACommandHasThePauseThatIsAskedFor)
{
    appURL();
    EXPECT_EQ(run({u"sign"_s, host.item(u"Foo.app"_s), u"--tool-pause"_s, u"0.001"_s}), 0)
        << error.toStdString();
    EXPECT_EQ(output, host.item(u"Foo - Signed/Foo.app"_s) + u'\n');
    ASSERT_EQ(documentCount(), 2) << "one of its own";
    EXPECT_EQ(host.document().ownTaskRunner()->pauseAfterExit(), 0.001);
    host.tools.answer(u"altool--notarization-history"_s, {.output = "a page\n"});
    EXPECT_EQ(run({u"history"_s, u"--tool-pause"_s, u"0.002"_s, u"--document"_s, element()}), 0);
    EXPECT_EQ(host.document().ownTaskRunner()->pauseAfterExit(), 0.002);
}

TEST_F(Client, aPauseThatTheApplicationRefusesLeavesNoDocument)
{
    appURL();
    EXPECT_EQ(run({u"sign"_s, host.item(u"Foo.app"_s), u"--tool-pause"_s, u"61"_s}), 1);
    EXPECT_EQ(error, u"sealwrightctl: error 6: A pause lasts from 0 to 60 seconds.\n"_s);
    host.runUntil([this] { return documentCount() == 1; });
}

TEST_F(Client, anInterruptOfAStaplingSaysThatItCannotBeCancelled)
{
    host.tools.answer(u"spctl"_s, {.hangs = true});
    appURL();
    Ctl ctl(host, {u"staple"_s, host.item(u"Foo.app"_s), u"--follow"_s, u"--document"_s, element()});
    host.runUntil([this] { return !host.tools.callsOf(u"spctl"_s).isEmpty(); });
    ctl.interrupt();
    ctl.waitForError(u"sealwrightctl: this cannot be cancelled; waiting for its end\n"_s);
    host.document().doCancel();
    EXPECT_EQ(ctl.end(), 1);
    host.settle();
}

TEST_F(Client, outputThatCannotBeWrittenIsAFailure)
{
    for (const QString &words :
         {u"documents >/dev/full"_s, u"documents >&-"_s, u"--help >/dev/full"_s, u"--version >/dev/full"_s}) {
        QProcess shell;
        shell.start(u"/bin/sh"_s, {u"-c"_s, u"\"$0\" "_s + words, QString::fromUtf8(SEALWRIGHTCTL)});
        host.runUntil([&] { return shell.state() == QProcess::NotRunning; });
        EXPECT_EQ(shell.exitCode(), 1) << words.toStdString();
        EXPECT_TRUE(shell.readAllStandardError().startsWith("sealwrightctl: cannot write the output: "));
    }
}
