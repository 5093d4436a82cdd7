// What must not get lost or be told wrong, whatever has the names of a run's folder.

#include "support/items.h"
#include "support/testhost.h"

#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"
#include "scripting/MainWinController+Scripting.h"
#include "scripting/NSApplication+Scripting.h"

#include <QDirIterator>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

class Keeping : public testing::Test {
protected:
    Keeping()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        items::makeFile(host.item(u"Foo.app/Contents/serial"_s), "mine");
        original = items::fingerprint(host.item(u"Foo.app"_s));
        host.launch();
    }

    using Handler = void (NSApplicationScripting::*)(const ScriptCommandPtr &);
    struct Sent {
        std::optional<ScriptReply> reply;
    };
    /// Has the application carry out the command in a document of its own.
    std::shared_ptr<Sent> send(Handler handler, const QString &name)
    {
        auto sent = std::make_shared<Sent>();
        const QVariantMap arguments{{argument::at, itempath::toUrl(host.item(name))}};
        std::make_shared<ScriptCommand>(arguments, [sent](const ScriptReply &reply) {
            sent->reply = reply;
        })->execute([&](const ScriptCommandPtr &command) {
            (host.application().scripting().*handler)(command);
        });
        return sent;
    }
    ScriptReply sign(const QString &name)
    {
        const auto sent = send(&NSApplicationScripting::AESignOnly, name);
        host.runUntil([&] { return sent->reply.has_value(); });
        host.settle();
        return *sent->reply;
    }
    /// Up to the wait for the verdict.
    std::shared_ptr<Sent> upload(const QString &name)
    {
        const auto sent = send(&NSApplicationScripting::AESubmitForNotarizing, name);
        host.settle();
        return sent;
    }

    void failMovesTo(const QString &end)
    {
        host.files.failure = [end](const QString &operation, const QString &path) {
            const bool isFailing = operation == "moveItem"_L1 && path.endsWith(end);
            return isFailing || operation == "trashItem"_L1 ? u"not today"_s : QString();
        };
    }
    QString resultOf(const ScriptReply &reply) { return itempath::fromUrl(reply.result.toUrl()); }
    QByteArray print(const QString &path) { return items::fingerprint(host.item(path)); }
    /// What a run leaves that was ended between its last two renamings.
    void leaveOriginalIn(const QString &folder)
    {
        QDir().mkpath(host.item(folder + u"/Foo - Unmodified Original"_s));
        ASSERT_TRUE(QDir().rename(host.item(u"Foo.app"_s),
                                  host.item(folder + u"/Foo - Unmodified Original/Foo.app"_s)));
        items::makeBundle(host.item(u"Foo.app"_s));
    }

    TestHost host;
    QByteArray original;
};

} // namespace

TEST_F(Keeping, aWorkingFolderWithAnOriginalGoesToTheTrash)
{
    leaveOriginalIn(u"Foo - Working"_s);
    EXPECT_FALSE(sign(u"Foo.app"_s).isError());
    EXPECT_EQ(host.files.trashed, QStringList{host.item(u"Foo - Working"_s)});
}

TEST_F(Keeping, aWorkingFolderWithAnOriginalGetsANumberWhereThereIsNoTrash)
{
    leaveOriginalIn(u"Foo - Working"_s);
    failMovesTo(u"nothing"_s);
    EXPECT_FALSE(sign(u"Foo.app"_s).isError());
    EXPECT_EQ(print(u"Foo - Working 2/Foo - Unmodified Original/Foo.app"_s), original);
}

TEST_F(Keeping, aWorkingFolderWithAnOriginalThatCannotBePutAwayIsNotEmptied)
{
    leaveOriginalIn(u"Foo - Working"_s);
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "trashItem"_L1 || operation == "moveItem"_L1 ? u"not today"_s : QString();
    };
    const ScriptReply reply = sign(u"Foo.app"_s);
    EXPECT_TRUE(reply.errorText.startsWith(u"Cannot Empty Working Folder: "_s))
        << reply.errorText.toStdString();
    EXPECT_EQ(print(u"Foo - Working/Foo - Unmodified Original/Foo.app"_s), original);
}

TEST_F(Keeping, anOldResultWithAnOriginalIsNotDeletedForTheNextOne)
{
    leaveOriginalIn(u"Foo - Signed - old"_s);
    items::makeFile(host.item(u"Foo - Signed/second"_s), "second");
    failMovesTo(u"nothing"_s);
    EXPECT_FALSE(sign(u"Foo.app"_s).isError());
    EXPECT_EQ(print(u"Foo - Signed - old 2/Foo - Unmodified Original/Foo.app"_s), original);
    EXPECT_EQ(host.listing(u"Foo - Signed - old"_s), QStringList{u"second"_s});
}

TEST_F(Keeping, anEarlierOriginalInTheFolderStaysWhereTheNextOneFindsNoPlace)
{
    ASSERT_TRUE(host.files.createDirectory(host.item(u"Foo - Submitted"_s)));
    leaveOriginalIn(u"Foo - Submitted"_s);
    items::makeBundle(host.item(u"Foo - Submitted/Foo.app"_s));
    host.tools.answer(u"spctl"_s, {.error = "Foo.app: accepted\n"});
    const auto sent = send(&NSApplicationScripting::AEStapleOnly, u"Foo - Submitted/Foo.app"_s);
    host.runUntil([&] { return sent->reply.has_value(); });
    EXPECT_FALSE(sent->reply->isError()) << sent->reply->errorText.toStdString();
    EXPECT_EQ(print(u"Foo - Notarized/Foo - Unmodified Original/Foo.app"_s), original);
    EXPECT_TRUE(host.files.isReachable(host.item(u"Foo.app"_s)));
}

TEST_F(Keeping, theAnswerNamesWhereTheResultLiesIfItsFolderHasKeptItsName)
{
    items::makeBundle(host.item(u"Foo - Signed/Foo.app"_s)); // somebody else's
    const QByteArray foreign = print(u"Foo - Signed/Foo.app"_s);
    failMovesTo(u"Foo - Signed - old"_s);
    const ScriptReply reply = sign(u"Foo.app"_s);
    EXPECT_EQ(resultOf(reply), host.item(u"Foo - Working/Foo.app"_s));
    EXPECT_EQ(print(u"Foo - Signed/Foo.app"_s), foreign);
    EXPECT_TRUE(host.log(LogStyle::plain)
                    .last()
                    .startsWith(u"The folder stays '%1': "_s.arg(host.item(u"Foo - Working"_s))))
        << host.log().join(u'\n').toStdString();
}

TEST_F(Keeping, aSubmissionInAFolderThatHasKeptItsNameWorksOnItsOwnItem)
{
    items::makeBundle(host.item(u"Foo - Submitted/Foo.app"_s)); // somebody else's
    failMovesTo(u"Foo - Submitted - old"_s);
    const auto sent = upload(u"Foo.app"_s);
    EXPECT_FALSE(host.text(u"Foo - Working/RequestUUID.txt"_s).isEmpty());
    EXPECT_FALSE(host.listing(u"Foo - Submitted"_s).contains(u"RequestUUID.txt"_s));
    host.firePolls();
    ASSERT_TRUE(sent->reply.has_value());
    EXPECT_EQ(host.tools.callsOf(u"stapler"_s).last().last(), host.item(u"Foo - Working/Foo.app"_s));
    EXPECT_EQ(resultOf(*sent->reply), host.item(u"Foo - Notarized/Foo.app"_s));
    EXPECT_EQ(print(u"Foo - Notarized/Foo - Unmodified Original/Foo.app"_s), original);
}

TEST_F(Keeping, aRunIsRefusedWhileAnotherWorksUnderTheSameName)
{
    host.tools.answerRun(u"codesign"_s, 1, {.hangs = true});
    const auto first = send(&NSApplicationScripting::AESignOnly, u"Foo.app"_s);
    host.runUntil([this] { return !host.tools.callsOf(u"codesign"_s).isEmpty(); });
    DocumentPtr working = host.application().allControllers().last();
    const auto second = send(&NSApplicationScripting::AESignOnly, u"Foo.app"_s);
    host.runUntil([&] { return second->reply.has_value(); });
    EXPECT_EQ(
        second->reply->errorText,
        u"Cannot Create Working Folder: Failed to create working folder '%1': another run works in '%1'"_s
            .arg(host.item(u"Foo - Working"_s)));
    EXPECT_FALSE(first->reply.has_value());
    working->doCancel();
    host.settle();
    EXPECT_FALSE(sign(u"Foo.app"_s).isError()) << "and begins when that one is over";
}

TEST_F(Keeping, aRunIsRefusedWhileAnotherWaitsForItsVerdictUnderTheSameName)
{
    items::makeFile(host.item(u"Foo.dmg"_s), "image");
    const auto first = upload(u"Foo.app"_s);
    const auto second = upload(u"Foo.dmg"_s);
    ASSERT_TRUE(second->reply.has_value());
    EXPECT_TRUE(second->reply->errorText.endsWith(
        u"another run works in '%1'"_s.arg(host.item(u"Foo - Submitted"_s))))
        << second->reply->errorText.toStdString();
    host.firePolls();
    EXPECT_EQ(resultOf(*first->reply), host.item(u"Foo - Notarized/Foo.app"_s));
    EXPECT_FALSE(upload(u"Foo.dmg"_s)->reply.has_value()) << "and goes up when that one is over";
}

TEST_F(Keeping, anItemThatChangesWhileTheVerdictIsAwaitedIsSaid)
{
    const auto sent = upload(u"Foo.app"_s);
    items::makeFile(host.item(u"Foo - Submitted/Foo.app/Contents/late"_s), "late");
    host.firePolls();
    ASSERT_TRUE(sent->reply.has_value());
    EXPECT_FALSE(sent->reply->isError());
    ASSERT_EQ(host.log(LogStyle::error).size(), 1);
    EXPECT_TRUE(
        host.log(LogStyle::error).first().startsWith(u"The item has changed since it was uploaded: "_s));
}

TEST_F(Keeping, anItemThatStaysAsItIsIsNotSaidToHaveChanged)
{
    upload(u"Foo.app"_s);
    host.firePolls();
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
}

TEST_F(Keeping, aScriptBehindALinkOfTheItemIsNotLocked)
{
    const QString outside = host.item(u"../mine.scpt"_s);
    items::makeFile(outside, "mine");
    items::makeLink(host.item(u"Foo.app/Contents/Resources/Scripts/main.scpt"_s), outside);
    struct stat before;
    ASSERT_EQ(stat(QFile::encodeName(outside).constData(), &before), 0);
    EXPECT_FALSE(sign(u"Foo.app"_s).isError());
    struct stat after;
    ASSERT_EQ(stat(QFile::encodeName(outside).constData(), &after), 0);
    EXPECT_EQ(after.st_mode, before.st_mode);
}

TEST_F(Keeping, anItemWhoseFolderCouldNotBeCalledSubmittedIsNotUploaded)
{
    const QString name = QString(244, u'x') + u".dmg"_s;
    items::makeFile(host.item(name), "image");
    const auto sent = upload(name);
    ASSERT_TRUE(sent->reply.has_value());
    EXPECT_TRUE(sent->reply->errorText.startsWith(u"Error Uploading File: The item's name is too long"_s))
        << sent->reply->errorText.toStdString();
    EXPECT_TRUE(host.tools.callsOf(u"altool--notarize-app"_s).isEmpty());
}

TEST_F(Keeping, anIdentifierThatCannotBeSavedIsInTheLog)
{
    host.files.failure = [](const QString &operation, const QString &path) {
        const bool isRecord = operation == "writeFileAtomically"_L1 && path.endsWith(u"RequestUUID.txt"_s);
        return isRecord ? u"No space left on device"_s : QString();
    };
    upload(u"Foo.app"_s);
    const QStringList lines = host.log(LogStyle::plain);
    EXPECT_TRUE(std::any_of(lines.cbegin(), lines.cend(), [](const QString &line) {
        return line.startsWith(u"The identifier of the request, "_s)
            && line.endsWith(u" is not saved: No space left on device"_s);
    })) << lines.join(u'\n').toStdString();
}
