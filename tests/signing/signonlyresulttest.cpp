// Signing by itself, where it works: what it leaves, the two ends, and signing again.

#include "document/documentcommands.h"
#include "platform/scriptcommand.h"
#include "signing/signonlytest.h"

#include "app/preferencekeys.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

// What a success leaves

TEST_F(SignOnly, leavesTheSignedCopyAndTheUntouchedItemInOneFolder)
{
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Signed"_s});
    EXPECT_EQ(host.listing(u"Foo - Signed"_s),
              (QStringList{u"Entitlements.plist"_s, u"Foo - Unmodified Original"_s, u"Foo.app"_s,
                           u"Submission Log.txt"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Signed/Foo - Unmodified Original/Foo.app"_s)), original);
    EXPECT_EQ(copy(), host.item(u"Foo - Signed/Foo.app"_s));
    EXPECT_EQ(document().originalAppletURL(), itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_EQ(document().lastAction(), quint64(signAction));
}

TEST_F(SignOnly, closesTheLogFileBehindItsLastLine)
{
    sign(u"Foo.app"_s);
    EXPECT_EQ(document().logHandle(), nullptr);
    EXPECT_TRUE(host.text(u"Foo - Signed/Submission Log.txt"_s)
                    .endsWith(u"14:03:22.123: Code-signing succeeded.\n"_s));
}

TEST_F(SignOnly, withoutALogFileMakesNone)
{
    host.preferences.setValue(key::detailedLogToFile, false);
    sign(u"Foo.app"_s);
    EXPECT_FALSE(host.listing(u"Foo - Signed"_s).contains(u"Submission Log.txt"_s));
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Code-signing succeeded."_s);
}

TEST_F(SignOnly, ofAnItemThatCannotBeMovedLeavesItInPlaceAndIsASuccess)
{
    host.files.failure = [](const QString &operation, const QString &path) {
        return operation == "moveItem"_L1 && path.contains("Unmodified Original"_L1) ? u"read-only volume"_s
                                                                                     : QString();
    };
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Signed"_s, u"Foo.app"_s}));
    EXPECT_FALSE(host.listing(u"Foo - Signed"_s).contains(u"Foo - Unmodified Original"_s));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"Signing Successful"_s);
}

TEST_F(SignOnly, ofAnItemWithNoRoomForItsFolderIsASuccess)
{
    host.files.failure = [](const QString &operation, const QString &path) {
        return operation == "createDirectory"_L1 && path.contains("Unmodified Original"_L1) ? u"full"_s
                                                                                            : QString();
    };
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Signed"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"Signing Successful"_s);
}

TEST_F(SignOnly, ofAnItemThatHasGoneMeanwhileKeepsNothingOfIt)
{
    host.tools.answer(u"xattr"_s, {.hangs = true});
    start(u"Foo.app"_s);
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    ASSERT_TRUE(host.files.removeItem(host.item(u"Foo.app"_s)));
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Signed"_s});
    EXPECT_FALSE(host.listing(u"Foo - Signed"_s).contains(u"Foo - Unmodified Original"_s));
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"Signing Successful"_s);
}

// The two ends

TEST_F(SignOnly, tellsAPersonInASheet)
{
    sign(u"Foo.app"_s);
    ASSERT_EQ(host.window().sheets.size(), 1);
    const platform::Alert alert = host.window().sheets.first();
    EXPECT_EQ(alert.messageText, u"Signing Successful"_s);
    EXPECT_EQ(alert.informativeText, u"Signing of 'Foo.app' has been completed."_s);
    EXPECT_EQ(alert.buttons, (QStringList{u"OK"_s, u"Show"_s}));
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().isSubmitting());
    EXPECT_FALSE(document().canCancel());
    EXPECT_FALSE(document().progressIndicator.isAnimating());
    host.window().answerSheet();
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.workspace.revealed.isEmpty());
}

TEST_F(SignOnly, showSelectsTheSignedCopyAtItsFinalPlace)
{
    sign(u"Foo.app"_s);
    host.window().answerSheet(platform::alertSecondButton);
    EXPECT_EQ(host.workspace.revealed, QStringList{host.item(u"Foo - Signed/Foo.app"_s)});
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(SignOnly, byAScriptWithoutDialogsAnswersWithTheSignedCopy)
{
    launched().useDiskImage.set(true); // makes no difference here
    document().submitFilePath.set(u"/items/Foo.dmg"_s);
    runByScript([this] { commands().signOnly.scriptedSignOnly(itempath::toUrl(host.item(u"Foo.app"_s))); });
    ASSERT_TRUE(scriptReply);
    EXPECT_FALSE(scriptReply->isError());
    EXPECT_EQ(scriptReply->result.toUrl(), itempath::toUrl(host.item(u"Foo - Signed/Foo.app"_s)));
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
    for (const bool flag :
         {document().isBusy(), document().isSubmitting(), document().canCancel(), document().isScripted(),
          document().suppressDialogs(), document().progressIndicator.isAnimating()})
        EXPECT_FALSE(flag);
}

TEST_F(SignOnly, byAScriptWithDialogsAnswersBeforeTheSheetIsDismissed)
{
    launched();
    runByScript([this] { commands().signOnly.scriptedSignOnly(itempath::toUrl(host.item(u"Foo.app"_s))); },
                true);
    ASSERT_TRUE(scriptReply);
    EXPECT_EQ(scriptReply->result.toUrl(), itempath::toUrl(host.item(u"Foo - Signed/Foo.app"_s)));
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_FALSE(document().isScripted());
}

struct MomentRow {
    const char *name;
    bool suppressesDialogs;
    QString status; ///< when the answer goes out
};

class SignOnlyAnswer : public SignOnly, public testing::WithParamInterface<MomentRow> { };

TEST_P(SignOnlyAnswer, goesOutWithItsStatusAndBeforeTheSheet)
{
    launched();
    QString statusAtAnswer;
    qsizetype sheetsAtAnswer = -1;
    const auto command = std::make_shared<ScriptCommand>(QVariantMap(), [&](const ScriptReply &) {
        statusAtAnswer = document().statusString();
        sheetsAtAnswer = host.window().sheets.size();
    });
    command->suspendExecution();
    document().suppressDialogs.set(GetParam().suppressesDialogs);
    document().currentCommand.set(command);
    commands().signOnly.scriptedSignOnly(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.settle();
    EXPECT_EQ(statusAtAnswer, GetParam().status);
    EXPECT_EQ(sheetsAtAnswer, 0);
    EXPECT_EQ(host.window().sheets.size(), GetParam().suppressesDialogs ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(ToAScript, SignOnlyAnswer,
                         testing::Values(MomentRow{"withoutDialogs", true, u"ready"_s},
                                         MomentRow{"withDialogs", false, u"interacting"_s}),
                         [](const auto &row) { return row.param.name; });

TEST_F(SignOnly, byAScriptIsOverForWhateverComesBehindTheAnswer)
{
    launched();
    std::optional<bool> isBusyBehindTheAnswer;
    const auto command = std::make_shared<ScriptCommand>(QVariantMap(), [&](const ScriptReply &) {
        document().dispatchToMain([&] { isBusyBehindTheAnswer = document().isBusy(); });
    });
    command->suspendExecution();
    document().suppressDialogs.set(true);
    document().currentCommand.set(command);
    commands().signOnly.scriptedSignOnly(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.settle();
    ASSERT_TRUE(isBusyBehindTheAnswer);
    EXPECT_FALSE(*isBusyBehindTheAnswer);
}

// Signing again

TEST_F(SignOnly, againTakesTheItemThatIsStillInPlace)
{
    sign(u"Foo.app"_s);
    host.window().answerSheet();
    items::makeBundle(host.item(u"Foo.app"_s), u"com.example.newer"_s);
    const QByteArray newer = items::fingerprint(host.item(u"Foo.app"_s));
    document().isScripted.set(true);
    document().suppressDialogs.set(true);
    document().perform(Action::doSignAgain);
    EXPECT_FALSE(document().isScripted());
    EXPECT_FALSE(document().suppressDialogs());
    host.settle();
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Signed/Foo - Unmodified Original/Foo.app"_s)), newer);
}

TEST_F(SignOnly, againAfterASuccessTakesTheItemBackAndMovesTheEarlierResultAside)
{
    sign(u"Foo.app"_s);
    host.window().answerSheet();
    host.tools.answer(u"xattr"_s, {.hangs = true});
    host.tools.forgetCalls();
    document().perform(Action::doSignAgain);
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Signed/Foo - Unmodified Original/Foo.app"_s)), original)
        << "the kept one stays until the next result replaces it";
    EXPECT_TRUE(host.files.trashed.isEmpty());
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(host.files.trashed, QStringList{host.item(u"Foo - Signed"_s)});
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Signed"_s});
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Signed/Foo - Unmodified Original/Foo.app"_s)), original);
    EXPECT_EQ(document().lastAction(), quint64(signAction));
}

TEST_F(SignOnly, againWithTheItemGoneSaysSoAndForgetsTheAction)
{
    sign(u"Foo.app"_s);
    host.window().answerSheet();
    ASSERT_TRUE(host.files.removeItem(host.item(u"Foo - Signed"_s)));
    host.tools.forgetCalls();
    document().perform(Action::doSignAgain);
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"File Not Found"_s);
    EXPECT_EQ(host.window().sheet->alert.informativeText,
              u"The file:\n\n‘%1’\n\nhas been moved or deleted."_s.arg(host.item(u"Foo.app"_s)));
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_EQ(document().lastAction(), quint64(signAction));
    host.window().answerSheet();
    EXPECT_EQ(document().lastAction(), quint64(nothingToRepeat));
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(SignOnly, againWithAnItemThatCannotBeTakenBackSaysThatItHasGone)
{
    sign(u"Foo.app"_s);
    host.window().answerSheet();
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "copyItem"_L1 ? u"disk full"_s : QString();
    };
    document().perform(Action::doSignAgain);
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"File Not Found"_s);
}

struct AgainRow {
    const char *name;
    QString item;
    QString base; ///< of the names of its folders
};

class SignAgain : public SignOnly, public testing::WithParamInterface<AgainRow> { };

TEST_P(SignAgain, takesTheKeptItemBackUnderItsOwnName)
{
    const auto &[name, item, base] = GetParam();
    items::makeBundle(host.item(item + u"/Inner.app"_s));
    items::makeBundle(host.item(item));
    const QByteArray fingerprint = items::fingerprint(host.item(item));
    sign(item);
    host.window().answerSheet();
    ASSERT_FALSE(QFileInfo::exists(host.item(item)));
    document().perform(Action::doSignAgain);
    host.settle();
    EXPECT_EQ(host.window().sheets.last().messageText, u"Signing Successful"_s);
    EXPECT_EQ(host.files.trashed, QStringList{host.item(base + u" - Signed"_s)});
    EXPECT_EQ(items::fingerprint(host.item(u"%1 - Signed/%1 - Unmodified Original/%2"_s.arg(base, item))),
              fingerprint);
}

INSTANTIATE_TEST_SUITE_P(OfAnItem, SignAgain,
                         testing::Values(AgainRow{"aFolder", u"Tools"_s, u"Tools"_s},
                                         AgainRow{"twoDots", u"My.Tool.app"_s, u"My.Tool"_s}),
                         [](const auto &row) { return row.param.name; });
