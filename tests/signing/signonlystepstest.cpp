// What the list of steps shows of signing by itself.

#include "signing/signonlytest.h"
#include "support/steprows.h"

#include "app/preferencekeys.h"

using namespace Qt::StringLiterals;

class SignOnlySteps : public SignOnly {
protected:
    QStringList rows() { return stepRows(document().stepList); }
};

TEST_F(SignOnlySteps, ofAnAppAreAllDoneAtItsEnd)
{
    sign(u"Foo.app"_s);
    EXPECT_EQ(rows(),
              allDone({u"Make working copy"_s, u"Save entitlements"_s, u"Clear extended attributes"_s,
                       u"Lock main script"_s, u"Sign contents"_s, u"Sign main file"_s}));
}

TEST_F(SignOnlySteps, ofAnAppIncludeTheAssessmentThatThePreferenceAsksFor)
{
    host.preferences.setValue(key::prefDoPostCodesignCheck, true);
    launched().dontSignEnclosuresCheckbox.setState(1);
    sign(u"Foo.app"_s);
    EXPECT_EQ(rows(),
              allDone({u"Make working copy"_s, u"Save entitlements"_s, u"Clear extended attributes"_s,
                       u"Lock main script"_s, u"Sign main file"_s, u"Check code signature"_s}));
}

TEST_F(SignOnlySteps, ofAFolderSignItsContents)
{
    items::makeBundle(host.item(u"Tools/Inner.app"_s));
    sign(u"Tools"_s);
    EXPECT_EQ(rows(),
              allDone({u"Make working copy"_s, u"Save entitlements"_s, u"Clear extended attributes"_s,
                       u"Sign contents"_s}));
}

TEST_F(SignOnlySteps, failWhereAMemberCannotBeSigned)
{
    host.tools.answer(u"codesign"_s, {.status = 1, .error = "no"});
    sign(u"Foo.app"_s);
    EXPECT_EQ(
        rows().mid(3),
        (QStringList{u"Lock main script: done"_s, u"Sign contents: failed"_s, u"Sign main file: skipped"_s}));
}

TEST_F(SignOnlySteps, failWhereTheWorkingCopyCannotBeMade)
{
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "copyItem"_L1 ? u"disk full"_s : QString();
    };
    sign(u"Foo.app"_s);
    EXPECT_EQ(rows().first(), u"Make working copy: failed"_s);
}

TEST_F(SignOnlySteps, areCancelledWhereACancelEndsTheTool)
{
    host.tools.answer(u"codesign"_s, {.hangs = true});
    start(u"Foo.app"_s);
    host.runUntil(
        [this] { return !host.tools.callsOf(u"codesign"_s).isEmpty() && host.mainQueue.isEmpty(); });
    EXPECT_EQ(rows().value(4), u"Sign contents: running"_s);
    document().doCancel();
    host.settle();
    EXPECT_EQ(rows().value(4), u"Sign contents: cancelled"_s);
    EXPECT_EQ(rows().value(5), u"Sign main file: skipped"_s);
}

TEST_F(SignOnlySteps, ofARunThatIsRefusedLeaveTheListOfTheLastOne)
{
    sign(u"Foo.app"_s);
    host.window().answerSheet();
    const QStringList before = rows();
    host.window().refusesToGiveUpFocus = true;
    sign(u"Foo.app"_s);
    EXPECT_EQ(rows(), before);
}
