// The client as a program: submissions that wait for their verdict.

#include "ctl/clienttest.h"

using namespace Qt::StringLiterals;

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
