// The client as a program: documents and windows, what they are set to, and the application itself.

#include "ctl/clienttest.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

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
