// Submit Again, also of an item that an earlier run has put away.

#include "notarization/submittest.h"

using namespace Qt::StringLiterals;

class SubmitAgain : public Submit { };

TEST_F(SubmitAgain, afterAFinishedRunCopiesTheItemBack)
{
    host.tools.answerRun(infoTool, 1, {.output = FakeTools::infoReport(u"success"_s)});
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    launched();
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    ASSERT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    host.window().answerSheet();
    host.document().suppressDialogs.set(true);
    host.document().perform(Action::doSubmitAgain);
    EXPECT_FALSE(host.document().suppressDialogs());
    host.settle();
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Notarized/Foo - Unmodified Original/Foo.app"_s)),
              original);
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
}

TEST_F(SubmitAgain, withTheItemGoneSaysSoAndForgetsTheAction)
{
    launched();
    host.submit(host.item(u"Foo.app"_s));
    host.document().doCancel();
    host.window().answerSheet();
    ASSERT_TRUE(host.files.removeItem(host.item(u"Foo.app"_s)));
    host.document().perform(Action::doSubmitAgain);
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"File Not Found"_s);
    EXPECT_EQ(host.window().sheet->alert.informativeText,
              u"The file:\n\n‘%1’\n\nhas been moved or deleted."_s.arg(host.item(u"Foo.app"_s)));
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
    host.window().answerSheet();
    EXPECT_EQ(host.document().lastAction(), quint64(nothingToRepeat));
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}

TEST_F(SubmitAgain, withAPutAwayItemThatCannotBeCopiedBackSaysThatItIsGone)
{
    host.tools.answerRun(infoTool, 1, {.output = FakeTools::infoReport(u"success"_s)});
    launched();
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    host.window().answerSheet();
    const QString kept = host.item(u"Foo - Notarized/Foo - Unmodified Original/Foo.app"_s);
    const QByteArray original = items::fingerprint(kept);
    host.files.failure = [this](const QString &operation, const QString &path) {
        return operation == "copyItem"_L1 && path == host.item(u"Foo.app"_s) ? u"disk full"_s : QString();
    };
    host.tools.forgetCalls();
    host.document().perform(Action::doSubmitAgain);
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"File Not Found"_s);
    EXPECT_EQ(host.window().sheet->alert.informativeText,
              u"The file:\n\n‘%1’\n\nhas been moved or deleted."_s.arg(host.item(u"Foo.app"_s)));
    host.window().answerSheet();
    host.settle();
    EXPECT_EQ(host.document().lastAction(), quint64(nothingToRepeat));
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_EQ(items::fingerprint(kept), original);
}
