// The client as a program, against an application on a bus.

#include "ctl/ctl.h"
#include "dbus/hostonbus.h"
#include "dbus/privatebus.h"
#include "support/items.h"

#include <QDBusVirtualObject>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

class Client : public HostOnBus {
protected:
    int run(const QStringList &words)
    {
        Ctl ctl(host, words);
        const int status = ctl.end();
        output = ctl.output;
        error = ctl.error;
        return status;
    }
    QString element() { return bus::pathElement(host.document().uniqueID); }
    qsizetype documentCount() { return host.application().allControllers().size(); }
    /// Fires polls as they are armed, until the client has ended.
    int endWithPolls(Ctl &ctl)
    {
        host.runUntil([&] {
            host.timers.fireNext();
            return !ctl.isRunning();
        });
        return ctl.end();
    }

    QString output;
    QString error;
};

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

TEST_F(Client, titlesStayOnOneLineAndWholeInJson)
{
    host.window().setTitle(u"one\ntwo\tthree"_s);
    EXPECT_EQ(run({u"windows"_s}), 0);
    EXPECT_EQ(output, u"1\tready\tone two three\n"_s);
    EXPECT_EQ(run({u"documents"_s, u"--json"_s}), 0);
    const QJsonObject told = QJsonDocument::fromJson(output.toUtf8()).array().at(0).toObject();
    EXPECT_EQ(told.value(u"id"_s).toString(), element());
    EXPECT_EQ(told.value(u"status"_s).toString(), u"ready"_s);
    EXPECT_EQ(told.value(u"title"_s).toString(), u"one\ntwo\tthree"_s);
}

TEST_F(Client, aNewDocumentThatLacksAPropertyDoesNotStayOpen)
{
    EXPECT_EQ(run({u"new"_s, u"ActiveIdentity=Nobody"_s}), 1);
    EXPECT_EQ(output, QString());
    host.runUntil([this] { return documentCount() == 1; });
}

TEST_F(Client, documentsAndWindowsAreListedFromFrontToBack)
{
    const QString first = element();
    host.window().setTitle(u"Back"_s);
    host.application().newDocument(0);
    host.window().setTitle(u"Front"_s);
    host.document().changeStatus(u"interacting");
    EXPECT_EQ(run({u"documents"_s}), 0);
    EXPECT_EQ(output, element() + u"\tinteracting\tFront\n"_s + first + u"\tready\tBack\n"_s);
    EXPECT_EQ(run({u"windows"_s}), 0);
    EXPECT_EQ(output, u"2\tinteracting\tFront\n1\tready\tBack\n"_s);
}

TEST_F(Client, withoutDocumentsNothingIsListed)
{
    host.window().close();
    EXPECT_EQ(run({u"documents"_s}), 0);
    EXPECT_EQ(output, QString());
}

TEST_F(Client, aLogIsPrintedAsItStands)
{
    EXPECT_EQ(run({u"log"_s, element()}), 0);
    EXPECT_EQ(output, u"\n"_s); // an empty text is an empty line
    host.document().logStringMain(u"one"_s, false);
    host.document().logStringMain(u"zwölf"_s, true);
    EXPECT_EQ(run({u"log"_s, host.document().uniqueID}), 0);
    EXPECT_EQ(output, host.document().statusTextView.string());
}

TEST_F(Client, propertiesArePrintedOneLineAValue)
{
    EXPECT_EQ(run({u"get"_s, u"AppStatus"_s}), 0);
    EXPECT_EQ(output, u"ready\n"_s);
    EXPECT_EQ(run({u"get"_s, u"IsActive"_s}), 0);
    EXPECT_EQ(output, u"false\n"_s);
    EXPECT_EQ(run({u"get"_s, u"LastErrorFrom"_s}), 0);
    EXPECT_EQ(output, QString());
    EXPECT_EQ(run({u"get"_s, u"Caller"_s, u"--document"_s, element()}), 0);
    EXPECT_EQ(output, u"\n"_s);
    EXPECT_EQ(run({u"get"_s, u"Window"_s, u"--document"_s, element()}), 0);
    EXPECT_EQ(output, u"1\n"_s);
    EXPECT_EQ(run({u"get"_s, u"--window"_s, u"1"_s, u"Document"_s}), 0);
    EXPECT_EQ(output, element() + u'\n');
    host.application().newDocument(0);
    EXPECT_EQ(run({u"get"_s, u"OrderedWindows"_s}), 0);
    EXPECT_EQ(output, u"2\n1\n"_s);
    EXPECT_EQ(run({u"get"_s, u"Nothing"_s}), 1);
}

TEST_F(Client, aPropertyOfTheApplicationIsSetByItsType)
{
    EXPECT_EQ(run({u"set"_s, u"PollingDelay"_s, u"45.5"_s}), 0) << error.toStdString();
    EXPECT_EQ(run({u"get"_s, u"PollingDelay"_s}), 0);
    EXPECT_EQ(output, u"45.5\n"_s);
    EXPECT_EQ(run({u"set"_s, u"ErrorRetryLimit"_s, u"-1"_s}), 0) << error.toStdString();
    EXPECT_EQ(run({u"get"_s, u"ErrorRetryLimit"_s}), 0);
    EXPECT_EQ(output, u"3\n"_s);
    EXPECT_EQ(run({u"set"_s, u"CreateDMG"_s, u"true"_s}), 0) << error.toStdString();
    EXPECT_EQ(run({u"get"_s, u"CreateDMG"_s}), 0);
    EXPECT_EQ(output, u"true\n"_s);
}

TEST_F(Client, aPropertyIsSetToNoValue)
{
    EXPECT_EQ(run({u"set"_s, u"AppleID"_s, u"me@example.com"_s}), 0) << error.toStdString();
    EXPECT_EQ(run({u"get"_s, u"AppleID"_s}), 0);
    EXPECT_EQ(output, u"me@example.com\n"_s);
    EXPECT_EQ(run({u"set"_s, u"AppleID"_s, u"--unset"_s}), 0) << error.toStdString();
    EXPECT_EQ(run({u"get"_s, u"AppleID"_s}), 0);
    EXPECT_EQ(output, QString());
}

TEST_F(Client, aPropertyOfADocumentIsSetByItsType)
{
    const QStringList receiver{u"--document"_s, element()};
    EXPECT_EQ(run(QStringList{u"set"_s, u"PathsToSkip"_s, u"[\"a b\", \"c\"]"_s} + receiver), 0)
        << error.toStdString();
    EXPECT_EQ(host.document().skipPaths(), (QStringList{u"a b"_s, u"c"_s}));
    EXPECT_EQ(run(QStringList{u"get"_s, u"PathsToSkip"_s} + receiver), 0);
    EXPECT_EQ(output, u"a b\nc\n"_s);
    EXPECT_EQ(run(QStringList{u"set"_s, u"ExtraEntitlements"_s, u"some.plist"_s} + receiver), 1);
    EXPECT_EQ(error, u"sealwrightctl: error 6: \n"_s); // it is stored all the same
    EXPECT_EQ(run(QStringList{u"get"_s, u"ExtraEntitlements"_s} + receiver), 0);
    EXPECT_EQ(output, QDir::currentPath() + u"/some.plist\n"_s);
}

TEST_F(Client, onlyAFileIsPrintedAsAPath)
{
    host.document().appleIDField.setStringValue(u"file:///a%20b"_s);
    EXPECT_EQ(run({u"get"_s, u"AppleID"_s, u"--document"_s, element()}), 0);
    EXPECT_EQ(output, u"file:///a%20b\n"_s);
}

TEST_F(Client, theBoundsOfAWindowAreOneLine)
{
    EXPECT_EQ(
        run({u"set"_s, u"--window"_s, u"1"_s, u"BoundsAsQDRect"_s, u"20"_s, u"-10"_s, u"720"_s, u"900"_s}), 0)
        << error.toStdString();
    EXPECT_EQ(run({u"get"_s, u"--window"_s, u"1"_s, u"BoundsAsQDRect"_s}), 0);
    EXPECT_EQ(output, u"20 -10 720 900\n"_s);
}

TEST_F(Client, aValueOfAnotherTypeIsWrongUse)
{
    EXPECT_EQ(run({u"set"_s, u"CreateDMG"_s, u"yes"_s}), 2);
    EXPECT_EQ(error, u"sealwrightctl: CreateDMG takes true or false\n"_s);
    EXPECT_EQ(run({u"set"_s, u"AppleID"_s, u"a"_s, u"b"_s}), 2);
    EXPECT_EQ(error, u"sealwrightctl: AppleID takes one value\n"_s);
    EXPECT_EQ(run({u"set"_s, u"AppleID"_s, u"a"_s, u"--unset"_s}), 2);
    EXPECT_EQ(run({u"new"_s, u"AllowJITCode=1"_s}), 2);
    EXPECT_EQ(error, u"sealwrightctl: AllowJITCode takes true or false\n"_s);
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(Client, thatThereIsNoSuchPropertyIsTheApplicationsToSay)
{
    EXPECT_EQ(run({u"set"_s, u"Nothing"_s, u"x"_s}), 1);
    EXPECT_TRUE(error.startsWith(u"sealwrightctl: error: "_s)) << error.toStdString();
    EXPECT_EQ(run({u"set"_s, u"AppStatus"_s, u"ready"_s}), 1);
    EXPECT_EQ(error, u"sealwrightctl: error -10003: \n"_s);
}

TEST_F(Client, aNewDocumentHasThePropertiesThatItIsMadeWith)
{
    EXPECT_EQ(run({u"new"_s, u"AllowJITCode=true"_s, u"AppleID=a=b"_s, u"ProviderName="_s}), 0)
        << error.toStdString();
    ASSERT_EQ(documentCount(), 2);
    EXPECT_EQ(output, element() + u'\n');
    EXPECT_TRUE(host.document().allowJITCheckbox.isOn());
    EXPECT_EQ(host.document().appleIDField.stringValue(), u"a=b"_s);
    EXPECT_EQ(host.document().providerNameField.stringValue(), QString());
}

TEST_F(Client, aDocumentIsClosed)
{
    EXPECT_EQ(run({u"close"_s, element()}), 0);
    host.runUntil([this] { return documentCount() == 0; });
}

TEST_F(Client, aDocumentIsCancelled)
{
    const QDBusPendingCall submission = beginEndlessSubmission();
    EXPECT_EQ(run({u"cancel"_s, element()}), 0);
    EXPECT_EQ(errorOf(client.end(submission)), u"org.sealwright.Error.N1118"_s);
    host.settle();
}

TEST_F(Client, openedItemsWaitForAPerson)
{
    appURL();
    appURL(u"Bar.app"_s);
    Ctl ctl(host, {u"open"_s, u"Foo.app"_s, host.item(u"Bar.app"_s)}, host.item({}));
    EXPECT_EQ(ctl.end(), 0);
    ASSERT_EQ(documentCount(), 3);
    EXPECT_EQ(host.document().originalFileName(), u"Bar.app"_s);
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
}

TEST_F(Client, quittingIsAnsweredAndEndsTheApplication)
{
    EXPECT_EQ(run({u"quit"_s}), 0);
    EXPECT_TRUE(host.applicationHost.isTerminated);
}

/// The client where no application runs.
/// Takes calls and never answers.
class MuteObject : public QDBusVirtualObject {
public:
    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &, const QDBusConnection &) override { return isAsked = true; }

    bool isAsked = false;
};

class LonelyClient : public testing::Test {
protected:
    ~LonelyClient() override { privatebus::setActivation({}); }

    int run(const QStringList &words)
    {
        Ctl ctl(host, words);
        const int status = ctl.end();
        output = ctl.output;
        error = ctl.error;
        return status;
    }
    bool startsTheApplication(const QStringList &words)
    {
        QFile::remove(marker());
        EXPECT_EQ(run(words), 3) << error.toStdString();
        return QFile::exists(marker());
    }
    QString marker() const { return m_folder.filePath(u"started"_s); }

    TestHost host;
    QString output;
    QString error;

private:
    QTemporaryDir m_folder;
};

TEST_F(LonelyClient, saysThatNothingRuns)
{
    for (const QStringList &words :
         {QStringList{u"submit"_s, u"a"_s}, QStringList{u"documents"_s}, QStringList{u"windows"_s},
          QStringList{u"log"_s, u"a"_s}, QStringList{u"cancel"_s, u"a"_s}, QStringList{u"close"_s, u"a"_s},
          QStringList{u"open"_s, u"a"_s}, QStringList{u"get"_s, u"Name"_s}, QStringList{u"quit"_s},
          QStringList{u"staple"_s, u"a"_s}, QStringList{u"sign"_s, u"a"_s}, QStringList{u"prepare"_s, u"a"_s},
          QStringList{u"history"_s}, QStringList{u"clear-log"_s, u"a"_s}, QStringList{u"new"_s},
          QStringList{u"set"_s, u"AppleID"_s, u"a"_s}, QStringList{u"submit"_s, u"a"_s, u"--follow"_s}}) {
        EXPECT_EQ(run(words), 3) << words.join(u' ').toStdString();
        EXPECT_EQ(error, u"sealwrightctl: Sealwright is not running\n"_s);
    }
}

TEST_F(LonelyClient, tellsAnApplicationThatEndsFromOneThatIsSlow)
{
    MuteObject object;
    auto mute = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"mute"_s);
    ASSERT_TRUE(mute.registerVirtualObject(bus::applicationPath, &object));
    ASSERT_TRUE(mute.registerService(bus::service));
    Ctl ctl(host, {u"get"_s, u"Name"_s});
    host.runUntil([&object] { return object.isAsked; });
    mute = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(u"mute"_s);
    EXPECT_EQ(ctl.end(), 3);
    EXPECT_EQ(ctl.error, u"sealwrightctl: Sealwright has ended without an answer\n"_s);
}

TEST_F(LonelyClient, hasTheBusStartTheApplicationOnlyForWhatCanBeginThere)
{
    // A program that leaves a mark and never takes the name.
    privatebus::setActivation(u"/bin/sh -c 'touch %1; exit 1'"_s.arg(marker()));
    EXPECT_TRUE(startsTheApplication({u"submit"_s, u"a"_s}));
    EXPECT_TRUE(startsTheApplication({u"open"_s, u"a"_s}));
    EXPECT_TRUE(startsTheApplication({u"sign"_s, u"a"_s}));
    EXPECT_TRUE(startsTheApplication({u"history"_s}));
    EXPECT_TRUE(startsTheApplication({u"new"_s}));
    EXPECT_FALSE(startsTheApplication({u"set"_s, u"AppleID"_s, u"a"_s}));
    EXPECT_FALSE(startsTheApplication({u"documents"_s}));
    EXPECT_FALSE(startsTheApplication({u"windows"_s}));
    EXPECT_FALSE(startsTheApplication({u"submit"_s, u"a"_s, u"--document"_s, u"b"_s}));
    EXPECT_FALSE(startsTheApplication({u"quit"_s}));
    EXPECT_FALSE(startsTheApplication({u"log"_s, u"a"_s}));
    EXPECT_FALSE(startsTheApplication({u"get"_s, u"AppStatus"_s}));
}

TEST_F(LonelyClient, answersAboutItselfWithoutABus)
{
    EXPECT_EQ(run({u"--version"_s}), 0);
    EXPECT_TRUE(output.startsWith(u"sealwrightctl "_s));
    EXPECT_EQ(run({u"--help"_s}), 0);
    EXPECT_TRUE(output.startsWith(u"usage: sealwrightctl "_s));
    EXPECT_EQ(run({u"fly"_s}), 2);
    EXPECT_TRUE(error.startsWith(u"sealwrightctl: there is no command fly\n"_s));
    EXPECT_EQ(output, QString());
}

TEST_F(LonelyClient, saysThatThereIsNoBus)
{
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    EXPECT_EQ(run({u"documents"_s}), 3);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_EQ(error, u"sealwrightctl: there is no session bus\n"_s);
}

// What waits for a verdict

class ClientOfWaits : public Client {
protected:
    ClientOfWaits() { host.stateFolder = host.item(u"../state"_s); }

    /// A submission that nobody waits for any more.
    void leaveWait(const QString &name, const QString &identifier)
    {
        host.tools.answer(u"altool--notarize-app"_s, {.output = FakeTools::uploadReply(identifier)});
        items::makeBundle(host.item(name + u".app"_s));
        host.application().addedDocument();
        host.submit(host.item(name + u".app"_s));
        host.document().staplingTimer()->invalidate();
        host.document().window().close();
        host.settle();
    }
    QString finished(const QString &name) const
    {
        return host.item(name + u" - Notarized/"_s + name + u".app\n"_s);
    }
};

TEST_F(ClientOfWaits, areToldWithFolderIdentifierAndTime)
{
    EXPECT_EQ(run({u"waiting"_s}), 0);
    EXPECT_EQ(output, QString());
    leaveWait(u"Foo"_s, u"1234-abcd"_s);
    EXPECT_EQ(run({u"waiting"_s}), 0);
    const QStringList columns = output.trimmed().split(u'\t');
    ASSERT_EQ(columns.size(), 3);
    EXPECT_EQ(columns[0], host.item(u"Foo - Submitted"_s));
    EXPECT_EQ(columns[1], u"1234-abcd"_s);
    const QDateTime since = QDateTime::fromString(columns[2], Qt::ISODate);
    EXPECT_EQ(since.timeSpec(), Qt::UTC);
    EXPECT_LE(since, QDateTime::currentDateTimeUtc());
}

TEST_F(ClientOfWaits, oneIsGoneOnWithByItsFolder)
{
    leaveWait(u"Foo"_s, u"1234-abcd"_s);
    Ctl ctl(host, {u"resume"_s, host.item(u"Foo - Submitted/"_s), u"--follow"_s});
    EXPECT_EQ(endWithPolls(ctl), 0);
    EXPECT_EQ(ctl.output, finished(u"Foo"_s));
    EXPECT_TRUE(ctl.error.contains(u"Stapling succeeded."_s));
}

TEST_F(ClientOfWaits, theOnlyOneNeedsNoPath)
{
    EXPECT_EQ(run({u"resume"_s}), 1);
    EXPECT_EQ(error, u"sealwrightctl: nothing waits for a verdict\n"_s);
    leaveWait(u"Foo"_s, u"1234-abcd"_s);
    Ctl ctl(host, {u"resume"_s});
    EXPECT_EQ(endWithPolls(ctl), 0);
    EXPECT_EQ(ctl.output, finished(u"Foo"_s));
}

TEST_F(ClientOfWaits, severalAreGoneOnWithSideBySide)
{
    leaveWait(u"Bar"_s, u"1"_s);
    leaveWait(u"Foo"_s, u"2"_s);
    EXPECT_EQ(run({u"resume"_s}), 1);
    EXPECT_TRUE(error.contains(u"2 submissions wait"_s));
    Ctl ctl(host, {u"resume"_s, u"--all"_s, u"--close"_s});
    host.runUntil([this] { return host.timers.armed().size() == 2; });
    EXPECT_EQ(endWithPolls(ctl), 0);
    EXPECT_EQ(ctl.output, finished(u"Bar"_s) + finished(u"Foo"_s));
    EXPECT_EQ(documentCount(), 1);
    EXPECT_EQ(run({u"resume"_s, u"--all"_s}), 0);
    EXPECT_EQ(output + error, QString());
}

TEST_F(ClientOfWaits, ofSeveralEachThatFailsIsTold)
{
    leaveWait(u"Bar"_s, u"1"_s);
    leaveWait(u"Foo"_s, u"2"_s);
    host.tools.answer(u"altool--notarization-info"_s, {.output = FakeTools::infoReport(u"invalid"_s)});
    Ctl ctl(host, {u"resume"_s, u"--all"_s});
    EXPECT_EQ(endWithPolls(ctl), 1);
    EXPECT_EQ(ctl.output, QString());
    EXPECT_EQ(ctl.error.count(u"sealwrightctl: error 1117: Notarization Failed"_s), 2);
}

TEST_F(ClientOfWaits, whatDoesNotWaitIsRefusedWithTheReason)
{
    EXPECT_EQ(run({u"resume"_s, host.item(u"gone"_s)}), 1);
    EXPECT_EQ(error, u"sealwrightctl: error 6: There is no item at '%1'.\n"_s.arg(host.item(u"gone"_s)));
    EXPECT_EQ(run({u"resume"_s, u"x"_s, u"--all"_s}), 2);
    EXPECT_EQ(run({u"waiting"_s, u"x"_s}), 2);
}
