// What the list of steps shows of a submission.

#include "document/documentcommands.h"
#include "notarization/submittest.h"
#include "support/steprows.h"

#include "app/preferencekeys.h"
#include "platform/scriptcommand.h"

using namespace Qt::StringLiterals;

class SubmissionSteps : public Submit {
protected:
    QStringList rows() { return stepRows(host.document().stepList); }
    const std::optional<StepList::Wait> &wait() { return host.document().stepList.wait(); }

    void submitToTheEnd(const QString &name)
    {
        host.tools.answer(infoTool, {.output = FakeTools::infoReport(u"success"_s)});
        launched();
        host.submitToTheEnd(host.item(name));
    }

    /// Submits Foo.app and waits until the tool runs, which hangs.
    void submitUpTo(const QString &tool)
    {
        host.tools.answer(tool, {.hangs = true});
        begin();
        host.runUntil([&] { return !host.tools.callsOf(tool).isEmpty() && host.mainQueue.isEmpty(); });
    }

    /// Lets the running tool's step fail.
    void expectFailure(const QString &tool, const QString &name)
    {
        host.tools.answer(tool, {.status = 1, .error = "no"});
        launched();
        host.submit(host.item(u"Foo.app"_s));
        EXPECT_EQ(rows().filter(u": failed"_s), QStringList{name + u": failed"_s});
        EXPECT_TRUE(rows().filter(u": running"_s).isEmpty());
        EXPECT_TRUE(rows().filter(u": waiting"_s).isEmpty());
        EXPECT_EQ(rows().last(), u"Staple: skipped"_s);
    }
};

TEST_F(SubmissionSteps, ofAnAppAreAllDoneAtItsEnd)
{
    submitToTheEnd(u"Foo.app"_s);
    EXPECT_EQ(rows(),
              allDone({u"Check credentials"_s, u"Make working copy"_s, u"Save entitlements"_s,
                       u"Clear extended attributes"_s, u"Lock main script"_s, u"Sign contents"_s,
                       u"Sign main file"_s, u"Make zip archive"_s, u"Upload to Apple"_s,
                       u"Wait for Apple's result"_s, u"Staple"_s}));
}

TEST_F(SubmissionSteps, ofAPluginLockNoScript)
{
    items::makeBundle(host.item(u"Bar.plugin"_s));
    submitToTheEnd(u"Bar.plugin"_s);
    EXPECT_EQ(
        rows(),
        allDone({u"Check credentials"_s, u"Make working copy"_s, u"Save entitlements"_s,
                 u"Clear extended attributes"_s, u"Sign contents"_s, u"Sign main file"_s,
                 u"Make zip archive"_s, u"Upload to Apple"_s, u"Wait for Apple's result"_s, u"Staple"_s}));
}

TEST_F(SubmissionSteps, ofAPackageAreThoseOfAPackage)
{
    items::makeFile(host.item(u"Foo.pkg"_s), "package");
    offerInstallerIdentity();
    host.tools.answer(u"spctl"_s, {.error = "accepted"});
    submitToTheEnd(u"Foo.pkg"_s);
    EXPECT_EQ(rows(),
              allDone({u"Check credentials"_s, u"Make working copy"_s, u"Check and sign package"_s,
                       u"Upload to Apple"_s, u"Wait for Apple's result"_s, u"Staple"_s}));
}

TEST_F(SubmissionSteps, ofADiskImageLookForItsIdentifier)
{
    items::makeFile(host.item(u"Foo.dmg"_s), "image");
    submitToTheEnd(u"Foo.dmg"_s);
    EXPECT_EQ(rows(),
              allDone({u"Check credentials"_s, u"Make working copy"_s, u"Sign main file"_s,
                       u"Find bundle identifier"_s, u"Upload to Apple"_s, u"Wait for Apple's result"_s,
                       u"Staple"_s}));
}

TEST_F(SubmissionSteps, nameTheArchiveThatWasChosen)
{
    launched().useDiskImage.set(true);
    submitToTheEnd(u"Foo.app"_s);
    EXPECT_TRUE(rows().contains(u"Make disk image: done"_s));
    EXPECT_TRUE(rows().filter(u"zip"_s).isEmpty());
}

TEST_F(SubmissionSteps, nameTheArchiveThatDropDMGMakes)
{
    launched().useDiskImage.set(true);
    host.document().useDropDMG.set(true);
    host.application().hasDropDMG.set(true);
    const QString image = host.item(u"Foo - Working/Foo.dmg"_s);
    host.appleScript.result = {.list = {}, .file = image, .error = {}};
    submitToTheEnd(u"Foo.app"_s);
    EXPECT_TRUE(rows().contains(u"Make disk image with DropDMG: done"_s));
}

TEST_F(SubmissionSteps, showTheArchiveThatIsMadeWhereTheSettingChangesMeanwhile)
{
    submitUpTo(u"codesign"_s);
    host.document().useDiskImage.set(true);
    host.tools.release(u"codesign"_s);
    host.settle();
    EXPECT_EQ(rows().filter(u"Make "_s),
              (QStringList{u"Make working copy: done"_s, u"Make disk image: done"_s,
                           u"Make zip archive: skipped"_s}));
}

TEST_F(SubmissionSteps, leaveOutWhatTheSettingsLeaveOut)
{
    launched().dontSignEnclosuresCheckbox.setState(1);
    submitToTheEnd(u"Foo.app"_s);
    EXPECT_TRUE(rows().filter(u"Sign contents"_s).isEmpty());
    EXPECT_TRUE(rows().filter(u"Check code signature"_s).isEmpty());
}

TEST_F(SubmissionSteps, includeTheAssessmentThatThePreferenceAsksFor)
{
    host.preferences.setValue(key::prefDoPostCodesignCheck, true);
    submitToTheEnd(u"Foo.app"_s);
    EXPECT_EQ(rows().value(7), u"Check code signature: done"_s);
}

TEST_F(SubmissionSteps, endWithTheUploadForAScriptThatSkipsStapling)
{
    const auto command = std::make_shared<ScriptCommand>(QVariantMap{{argument::skippingStapling, true}},
                                                         [](const ScriptReply &) {});
    launched().currentCommand.set(command);
    host.document().commands().submit.scriptedSubmit(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.settle();
    EXPECT_EQ(rows().mid(8),
              (QStringList{u"Upload to Apple: done"_s, u"Wait for Apple's result: skipped"_s,
                           u"Staple: skipped"_s}));
}

TEST_F(SubmissionSteps, showTheOneThatRuns)
{
    submitUpTo(u"xattr"_s);
    EXPECT_EQ(rows().mid(2, 3),
              (QStringList{u"Save entitlements: done"_s, u"Clear extended attributes: running"_s,
                           u"Lock main script: waiting"_s}));
    host.tools.release(u"xattr"_s);
    host.settle();
}

TEST_F(SubmissionSteps, takeTheTimeThatTheirToolsTake)
{
    submitUpTo(uploadTool);
    host.clock.time = host.clock.time.addSecs(252);
    host.tools.release(uploadTool);
    host.settle();
    const StepList &steps = host.document().stepList;
    EXPECT_EQ(steps.duration(steps.rows().at(8)), 252);
    EXPECT_EQ(steps.duration(steps.rows().at(7)), 0);
}

TEST_F(SubmissionSteps, failWhereTheCredentialsDo)
{
    expectFailure(historyTool, u"Check credentials"_s);
}

TEST_F(SubmissionSteps, failWhereTheirToolFails)
{
    expectFailure(u"xattr"_s, u"Clear extended attributes"_s);
}

TEST_F(SubmissionSteps, failWhereTheSigningFails)
{
    expectFailure(u"codesign"_s, u"Sign main file"_s);
}

TEST_F(SubmissionSteps, failWhereTheUploadFails)
{
    expectFailure(uploadTool, u"Upload to Apple"_s);
}

TEST_F(SubmissionSteps, failWhereTheVerdictIsARefusal)
{
    host.tools.answer(infoTool, {.output = FakeTools::infoReport(u"invalid"_s)});
    launched();
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_EQ(rows().last(), u"Staple: skipped"_s);
    EXPECT_EQ(rows().value(9), u"Wait for Apple's result: failed"_s);
}

TEST_F(SubmissionSteps, failWhereTheStaplerFails)
{
    host.tools.answer(u"stapler"_s, {.status = 65, .error = "no"});
    submitToTheEnd(u"Foo.app"_s);
    EXPECT_EQ(rows().last(), u"Staple: failed"_s);
    EXPECT_EQ(rows().value(9), u"Wait for Apple's result: done"_s);
}

TEST_F(SubmissionSteps, areCancelledWhereACancelEndsTheTool)
{
    submitUpTo(u"xattr"_s);
    host.document().doCancel();
    EXPECT_EQ(rows().value(3), u"Clear extended attributes: cancelled"_s) << "at once";
    host.settle();
    EXPECT_EQ(rows().value(3), u"Clear extended attributes: cancelled"_s);
    EXPECT_EQ(rows().value(4), u"Lock main script: skipped"_s);
}

TEST_F(SubmissionSteps, areNotLeftRunningByAStepThatBeganAfterTheCancel)
{
    shareRunners(); // with them a cancel does not reach the tools of signing
    host.preferences.setValue(key::prefDoPostCodesignCheck, true);
    submitUpTo(u"codesign"_s);
    host.document().doCancel();
    host.tools.release(u"codesign"_s);
    host.settle();
    EXPECT_TRUE(rows().contains(u"Check code signature: cancelled"_s)) << rows().join(u'\n').toStdString();
    EXPECT_TRUE(rows().filter(u": running"_s).isEmpty());
}

TEST_F(SubmissionSteps, ofTheNextRunBeginAnew)
{
    submitUpTo(u"xattr"_s);
    host.document().doCancel();
    host.settle();
    host.window().answerSheet();
    items::makeBundle(host.item(u"Bar.plugin"_s));
    host.tools.answer(u"xattr"_s, {});
    submitToTheEnd(u"Bar.plugin"_s);
    EXPECT_EQ(rows().filter(u": done"_s).size(), 10);
    EXPECT_EQ(rows().size(), 10);
}

TEST_F(SubmissionSteps, areThoseOfTheItemOfADirectSubmission)
{
    items::makeFile(host.item(u"Foo.dmg"_s), "image");
    launched().commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.dmg"_s)), {});
    EXPECT_EQ(rows().size(), 7);
    EXPECT_EQ(rows().filter(u": waiting"_s).size(), 7) << "nothing has begun";
    host.document().perform(Action::doDirectSubmit);
    host.settle();
    EXPECT_TRUE(rows().contains(u"Find bundle identifier: done"_s));
    EXPECT_TRUE(rows().contains(u"Wait for Apple's result: running"_s));
}

TEST_F(SubmissionSteps, ofAnotherItemGiveWayToThoseOfADirectSubmission)
{
    submitToTheEnd(u"Foo.app"_s);
    const qsizetype stepsOfAnApp = rows().size();
    items::makeFile(host.item(u"Foo.dmg"_s), "image");
    host.document().commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.dmg"_s)), {});
    EXPECT_LT(rows().size(), stepsOfAnApp);
    EXPECT_EQ(rows().filter(u": waiting"_s), rows()) << "nothing has begun";
}

TEST_F(SubmissionSteps, ofADirectSubmissionFollowTheOptionsWhileItWaits)
{
    MainWinController &document = launched();
    document.commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    EXPECT_TRUE(rows().contains(u"Make zip archive: waiting"_s));
    document.createDiskImageCheckbox.setState(1);
    EXPECT_TRUE(rows().contains(u"Make disk image: waiting"_s)) << rows().join(u'\n').toStdString();
    document.dontSignEnclosuresCheckbox.setState(1);
    EXPECT_FALSE(rows().contains(u"Sign contents: waiting"_s));
    document.perform(Action::doCancelDirectSubmit);
    document.dontSignEnclosuresCheckbox.setState(0);
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(SubmissionSteps, ofADirectSubmissionGoWithItsItem)
{
    submitToTheEnd(u"Foo.app"_s);
    items::makeFile(host.item(u"Foo.dmg"_s), "image");
    host.document().commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.dmg"_s)), {});
    host.document().perform(Action::doCancelDirectSubmit);
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(SubmissionSteps, areThoseOfTheItemThatThePanelGave)
{
    items::makeFile(host.item(u"Foo.dmg"_s), "image");
    launched().perform(Action::doSubmit);
    host.window().choose(itempath::toUrl(host.item(u"Foo.dmg"_s)));
    EXPECT_EQ(rows().size(), 7);
    host.settle();
}

TEST_F(SubmissionSteps, tellTheNextPollAndHowManyThereHaveBeen)
{
    host.preferences.setValue(key::pollingDelay, 40.0);
    launched();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(rows().value(9), u"Wait for Apple's result: running"_s);
    ASSERT_TRUE(wait());
    EXPECT_EQ(wait()->nextPoll, host.clock.time.addSecs(40));
    EXPECT_EQ(wait()->polls, 0U);
    host.clock.time = host.clock.time.addSecs(41);
    host.timers.fireNext();
    EXPECT_FALSE(wait()->nextPoll.isValid()) << "it is being made";
    host.settle();
    EXPECT_EQ(wait()->nextPoll, host.clock.time.addSecs(40));
    EXPECT_EQ(wait()->polls, 1U);
    EXPECT_EQ(wait()->failures, 0U);
}

TEST_F(SubmissionSteps, countThePollsThatFailedOfBothKinds)
{
    host.tools.answerRun(infoTool, 1, {.status = 1, .error = "no"});
    host.tools.answerRun(infoTool, 2, {.status = 239, .error = "no"});
    launched();
    host.submit(host.item(u"Foo.app"_s));
    for (int poll = 0; poll < 3; ++poll) {
        host.timers.fireNext();
        host.settle();
    }
    ASSERT_TRUE(wait());
    EXPECT_EQ(wait()->polls, 3U);
    EXPECT_EQ(wait()->failures, 2U);
}

TEST_F(SubmissionSteps, waitNoLongerOnceCancelled)
{
    launched();
    host.submit(host.item(u"Foo.app"_s));
    host.document().doCancel();
    host.settle();
    EXPECT_FALSE(wait());
    EXPECT_EQ(rows().value(9), u"Wait for Apple's result: cancelled"_s);
}

TEST_F(SubmissionSteps, areLeftAloneByAHistoryAfterTheRun)
{
    submitToTheEnd(u"Foo.app"_s);
    host.window().answerSheet();
    const QStringList before = rows();
    host.document().perform(Action::doFetchHistory);
    host.settle();
    EXPECT_EQ(rows(), before);
}
