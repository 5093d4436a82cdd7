// The folder of a run, without a document: its names, and what it never loses.

#include "run/runfolder.h"
#include "run/workingfoldernames.h"
#include "support/items.h"
#include "support/testfiles.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Folder : public testing::Test {
protected:
    Folder() { items::makeFile(at(u"Foo.pkg"_s), "original"); }

    QString at(const QString &name) const { return place.filePath(u"items/"_s + name); }
    QStringList listing(const QString &name = {}) const
    {
        return QDir(at(name)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    void failFor(const QString &operation, const QString &part = {})
    {
        files.failure = [operation, part](const QString &each, const QString &path) {
            return each == operation && path.contains(part) ? u"refused"_s : QString();
        };
    }
    RunFolder folderOf(const QString &name)
    {
        return {files,
                {.original = at(name), .fileName = name, .item = at(name), .upload = {}},
                [this](const Places &places) { told = places; },
                [this](std::shared_ptr<platform::FolderClaim> taken) { claim = std::move(taken); }};
    }
    /// A folder with the copy in it, as the first step makes it.
    RunFolder madeFor(const QString &name)
    {
        RunFolder folder = folderOf(name);
        folder.aimAtCopy();
        EXPECT_TRUE(folder.create());
        EXPECT_TRUE(folder.copyOriginal());
        return folder;
    }

    QTemporaryDir place;
    TestFiles files{place.filePath(u"trash"_s)};
    Places told;
    std::shared_ptr<platform::FolderClaim> claim;
};

} // namespace

// Making it

TEST_F(Folder, isNamedForTheItemAndHoldsACopy)
{
    const RunFolder folder = madeFor(u"Foo.pkg"_s);
    EXPECT_EQ(folder.path(), at(u"Foo - Working"_s));
    EXPECT_EQ(folder.itemPlace(), at(u"Foo - Working/Foo.pkg"_s));
    EXPECT_EQ(told.item, folder.itemPlace());
    EXPECT_TRUE(claim);
    EXPECT_EQ(listing(), (QStringList{u"Foo - Working"_s, u"Foo.pkg"_s}));
    EXPECT_EQ(listing(u"Foo - Working"_s), QStringList{u"Foo.pkg"_s});
}

TEST_F(Folder, ofAnotherRunIsLeftAlone)
{
    items::makeFile(at(u"Foo.dmg"_s), "another");
    const RunFolder first = madeFor(u"Foo.pkg"_s);
    const auto held = claim;
    RunFolder second = folderOf(u"Foo.dmg"_s);
    second.aimAtCopy();
    EXPECT_FALSE(second.remove());
    const auto created = second.create();
    EXPECT_FALSE(created);
    EXPECT_TRUE(created.error().contains(at(u"Foo - Working"_s))) << created.error().toStdString();
    EXPECT_EQ(listing(u"Foo - Working"_s), QStringList{u"Foo.pkg"_s});
}

TEST_F(Folder, thatWaitsForAVerdictKeepsOthersFromItsName)
{
    items::makeFile(at(u"Foo.dmg"_s), "another");
    RunFolder first = madeFor(u"Foo.pkg"_s);
    ASSERT_TRUE(first.renameTo(workingfolder::submitted));
    const auto held = claim;
    RunFolder second = folderOf(u"Foo.dmg"_s);
    second.aimAtCopy();
    EXPECT_FALSE(second.create());
    claim.reset();
}

TEST_F(Folder, takesThePlaceOfWhatACrashHasLeft)
{
    items::makeFile(at(u"Foo - Working/left over"_s), "text");
    RunFolder folder = folderOf(u"Foo.pkg"_s);
    folder.aimAtCopy();
    EXPECT_TRUE(folder.remove());
    EXPECT_EQ(listing(), QStringList{u"Foo.pkg"_s});
    EXPECT_TRUE(files.trashed.isEmpty());
}

TEST_F(Folder, withAnOriginalInItIsPutAwayAndNotDeleted)
{
    items::makeFile(at(u"Foo - Working/Foo - Unmodified Original/Foo.pkg"_s), "earlier original");
    RunFolder folder = folderOf(u"Foo.pkg"_s);
    folder.aimAtCopy();
    EXPECT_TRUE(folder.remove());
    EXPECT_EQ(files.trashed, QStringList{at(u"Foo - Working"_s)});

    items::makeFile(at(u"Foo - Working/Foo - Unmodified Original/Foo.pkg"_s), "earlier original");
    failFor(u"trashItem"_s);
    EXPECT_TRUE(folder.remove());
    EXPECT_EQ(listing(), (QStringList{u"Foo - Working 2"_s, u"Foo.pkg"_s}));
}

TEST_F(Folder, withAnOriginalThatCannotBePutAwayIsNotEmptied)
{
    items::makeFile(at(u"Foo - Working/Foo - Unmodified Original/Foo.pkg"_s), "earlier original");
    files.failure = [](const QString &operation, const QString &) {
        return operation == "trashItem"_L1 || operation == "moveItem"_L1 ? u"refused"_s : QString();
    };
    RunFolder folder = folderOf(u"Foo.pkg"_s);
    folder.aimAtCopy();
    EXPECT_FALSE(folder.remove());
    EXPECT_FALSE(folder.empty());
    EXPECT_TRUE(QFile::exists(at(u"Foo - Working/Foo - Unmodified Original/Foo.pkg"_s)));
}

// Its next names

TEST_F(Folder, takesItsItemAndItsUploadAlongToItsNextName)
{
    RunFolder folder = madeFor(u"Foo.pkg"_s);
    folder.setUpload(folder.path(u"Foo.zip"));
    EXPECT_FALSE(folder.isSubmitted());
    EXPECT_TRUE(folder.renameTo(workingfolder::submitted));
    EXPECT_TRUE(folder.isSubmitted());
    EXPECT_EQ(told.item, at(u"Foo - Submitted/Foo.pkg"_s));
    EXPECT_EQ(told.upload, at(u"Foo - Submitted/Foo.zip"_s));
    EXPECT_TRUE(told.leftIn.isNull());
}

TEST_F(Folder, sendsAnEarlierResultToTheTrash)
{
    items::makeFile(at(u"Foo - Submitted/earlier"_s), "text");
    RunFolder folder = madeFor(u"Foo.pkg"_s);
    EXPECT_TRUE(folder.renameTo(workingfolder::submitted));
    EXPECT_EQ(files.trashed, QStringList{at(u"Foo - Submitted"_s)});
}

TEST_F(Folder, withoutATrashCallsAnEarlierResultOldOnce)
{
    failFor(u"trashItem"_s);
    items::makeFile(at(u"Foo - Submitted/earlier"_s), "text");
    items::makeFile(at(u"Foo - Submitted - old/still earlier"_s), "text");
    RunFolder folder = madeFor(u"Foo.pkg"_s);
    EXPECT_TRUE(folder.renameTo(workingfolder::submitted));
    EXPECT_EQ(listing(u"Foo - Submitted - old"_s), QStringList{u"earlier"_s});
}

TEST_F(Folder, thatKeepsItsNameTellsWhereEverythingLies)
{
    RunFolder folder = madeFor(u"Foo.pkg"_s);
    failFor(u"moveItem"_s);
    const auto named = folder.renameTo(workingfolder::notarized);
    ASSERT_FALSE(named);
    EXPECT_EQ(named.error(), u"The folder stays '%1': refused"_s.arg(at(u"Foo - Working"_s)));
    EXPECT_EQ(folder.path(), at(u"Foo - Working"_s));
    EXPECT_EQ(folder.itemPlace(), at(u"Foo - Working/Foo.pkg"_s));
    EXPECT_EQ(told.item, at(u"Foo - Notarized/Foo.pkg"_s)) << "the name that it should have";
    EXPECT_EQ(told.leftIn, at(u"Foo - Working"_s));
    files.failure = nullptr;
    EXPECT_TRUE(folder.renameTo(workingfolder::failed));
    EXPECT_TRUE(told.leftIn.isNull());
    EXPECT_EQ(folder.itemPlace(), at(u"Foo - Failed/Foo.pkg"_s));
}

// The original

TEST_F(Folder, takesTheOriginalIn)
{
    RunFolder folder = madeFor(u"Foo.pkg"_s);
    folder.moveOriginalIn();
    EXPECT_EQ(listing(), QStringList{u"Foo - Working"_s});
    EXPECT_EQ(listing(u"Foo - Working/Foo - Unmodified Original"_s), QStringList{u"Foo.pkg"_s});
}

TEST_F(Folder, thatCannotTakeTheOriginalInKeepsWhatItHadTaken)
{
    RunFolder folder = madeFor(u"Foo.pkg"_s);
    failFor(u"moveItem"_s, u"Unmodified Original"_s);
    folder.moveOriginalIn();
    EXPECT_EQ(listing(u"Foo - Working"_s), QStringList{u"Foo.pkg"_s}) << "no empty folder is left";
    items::makeFile(at(u"Foo - Working/Foo - Unmodified Original/Foo.pkg"_s), "earlier original");
    folder.moveOriginalIn();
    EXPECT_TRUE(QFile::exists(at(u"Foo - Working/Foo - Unmodified Original/Foo.pkg"_s)));
    EXPECT_TRUE(QFile::exists(at(u"Foo.pkg"_s)));
}

// What is deleted, and what has changed

TEST_F(Folder, deletesTheUploadUnlessItIsTheItem)
{
    RunFolder folder = madeFor(u"Foo.pkg"_s);
    folder.setUpload(folder.itemPlace());
    folder.removeUpload();
    EXPECT_EQ(listing(u"Foo - Working"_s), QStringList{u"Foo.pkg"_s});
    items::makeFile(at(u"Foo - Working/Foo.zip"_s), "zip");
    folder.setUpload(at(u"Foo - Working/Foo.zip"_s));
    folder.removeUpload();
    EXPECT_EQ(listing(u"Foo - Working"_s), QStringList{u"Foo.pkg"_s});
    folder.removeItem();
    EXPECT_TRUE(listing(u"Foo - Working"_s).isEmpty());
}

TEST_F(Folder, knowsWhetherItsItemIsStillWhatItWas)
{
    RunFolder folder = madeFor(u"Foo.pkg"_s);
    EXPECT_FALSE(folder.hasItemChanged()) << "nothing has been kept";
    folder.rememberItem();
    EXPECT_FALSE(folder.hasItemChanged());
    ASSERT_TRUE(folder.renameTo(workingfolder::submitted));
    EXPECT_FALSE(folder.hasItemChanged()) << "a new name changes nothing";
    items::makeFile(folder.itemPlace(), "longer than it was");
    EXPECT_TRUE(folder.hasItemChanged());
}
