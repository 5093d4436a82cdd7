// The working folder's last names, and the item's way into it.

#include "platform/itempath.h"
#include "support/steptest.h"

using namespace Qt::StringLiterals;

namespace {

class Renaming : public StepTest {
protected:
    Renaming()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        makeWorkingCopy(u"Foo.app"_s);
        document().submitFilePath.set(host.item(u"Foo - Working/Foo.zip"_s));
    }

    void rename(const QString &suffix) { steps().folder.renameTo(suffix); }

    void failAt(const QStringList &operations)
    {
        host.files.failure = [=](const QString &operation, const QString &) {
            return operations.contains(operation) ? u"not today"_s : QString();
        };
    }
};

using Original = Renaming;

} // namespace

TEST_F(Renaming, movesTheFolderAndAllThatPointsIntoIt)
{
    rename(u"Failed"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_TRUE(host.listing(u"Foo - Failed"_s).contains(u"Foo.app"_s));
    EXPECT_EQ(copy(), host.item(u"Foo - Failed/Foo.app"_s));
    EXPECT_EQ(document().submitFilePath(), host.item(u"Foo - Failed/Foo.zip"_s));
}

TEST_F(Renaming, leavesNoFileToUploadWhereThereIsNone)
{
    document().submitFilePath.set({});
    rename(u"Failed"_s);
    EXPECT_TRUE(document().submitFilePath().isNull());
}

TEST_F(Renaming, maySucceedTwice)
{
    rename(u"Submitted"_s);
    rename(u"Notarized"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Notarized"_s, u"Foo.app"_s}));
    EXPECT_EQ(copy(), host.item(u"Foo - Notarized/Foo.app"_s));
}

TEST_F(Renaming, sendsAnEarlierResultToTheTrash)
{
    items::makeFile(host.item(u"Foo - Failed/earlier"_s), "earlier");
    items::makeFile(host.item(u"Foo - Signed/other"_s), "other");
    rename(u"Failed"_s);
    EXPECT_EQ(host.files.trashed, QStringList{host.item(u"Foo - Failed"_s)});
    EXPECT_FALSE(host.listing(u"Foo - Failed"_s).contains(u"earlier"_s));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo - Signed"_s, u"Foo.app"_s}))
        << "results of another end stay";
}

TEST_F(Renaming, withoutATrashKeepsTheEarlierResultAsOld)
{
    items::makeFile(host.item(u"Foo - Failed/earlier"_s), "earlier");
    failAt({u"trashItem"_s});
    rename(u"Failed"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo - Failed - old"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Failed - old"_s), QStringList{u"earlier"_s});
    EXPECT_FALSE(host.listing(u"Foo - Failed"_s).contains(u"earlier"_s));
}

TEST_F(Renaming, withoutATrashKeepsOneGenerationAsOld)
{
    items::makeFile(host.item(u"Foo - Failed - old/first"_s), "first");
    items::makeFile(host.item(u"Foo - Failed/second"_s), "second");
    failAt({u"trashItem"_s});
    rename(u"Failed"_s);
    EXPECT_EQ(host.listing(u"Foo - Failed - old"_s), QStringList{u"second"_s});
    EXPECT_TRUE(host.listing(u"Foo - Failed"_s).contains(u"Foo.app"_s));
}

TEST_F(Renaming, thatFailsIsSilentAndThePathsGoAhead)
{
    failAt({u"moveItem"_s});
    rename(u"Failed"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s}));
    EXPECT_EQ(copy(), host.item(u"Foo - Failed/Foo.app"_s));
    EXPECT_EQ(document().submitFilePath(), host.item(u"Foo - Failed/Foo.zip"_s));
    host.settle();
    expectNoReport();
}

TEST_F(Renaming, thatCanMoveNothingAwayLeavesBothFolders)
{
    items::makeFile(host.item(u"Foo - Failed/earlier"_s), "earlier");
    failAt({u"trashItem"_s, u"moveItem"_s});
    rename(u"Failed"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo - Working"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Failed"_s), QStringList{u"earlier"_s});
}

// The user's item

TEST_F(Original, movesIntoAFolderOfItsOwn)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    steps().folder.moveOriginalIn();
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Working"_s});
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Working/Foo - Unmodified Original/Foo.app"_s)), original);
    EXPECT_EQ(document().originalAppletURL(), itempath::toUrl(host.item(u"Foo.app"_s)));
}

TEST_F(Original, thatHasGoneLeavesNoFolder)
{
    ASSERT_TRUE(host.files.removeItem(host.item(u"Foo.app"_s)));
    steps().folder.moveOriginalIn();
    EXPECT_FALSE(host.listing(u"Foo - Working"_s).contains(u"Foo - Unmodified Original"_s));
}

TEST_F(Original, thatCannotBeMovedStaysAndTheFolderForItGoes)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    failAt({u"moveItem"_s});
    steps().folder.moveOriginalIn();
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_FALSE(host.listing(u"Foo - Working"_s).contains(u"Foo - Unmodified Original"_s));
}

TEST_F(Original, staysWhereNoFolderForItCanBeMade)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    failAt({u"createDirectory"_s});
    steps().folder.moveOriginalIn();
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s}));
}
