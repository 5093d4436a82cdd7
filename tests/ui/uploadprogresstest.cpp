// How far an upload is, from the tool that writes it down to the window that reads it.

#include "ui/uploadprogress.h"

#include "altool/progress.h"
#include "support/changedvariable.h"
#include "support/core.h"

#include <QDir>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class ProgressOfAnUpload : public testing::Test {
protected:
    ProgressOfAnUpload() { uploadprogress::askFor(); }

    QStringList files() const { return QDir(uploads).entryList(QDir::Files); }

    const QTemporaryDir folder;
    const ChangedVariable session{"XDG_RUNTIME_DIR", folder.path()};
    const QString uploads = folder.filePath(u"sealwright-uploads"_s);
    const QString uploaded = u"/some folder/Über.zip"_s;
};

} // namespace

TEST_F(ProgressOfAnUpload, isReadAsTheToolHasWrittenIt)
{
    toolchain::ProgressFile file(uploaded);
    EXPECT_FALSE(uploadprogress::of(uploaded)) << "nothing is sent yet";
    file.show(340, 900);
    const auto read = uploadprogress::of(uploaded);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->done, 340);
    EXPECT_EQ(read->all, 900);
    EXPECT_FALSE(uploadprogress::of(u"/some folder/other.zip"_s));
}

TEST_F(ProgressOfAnUpload, isTheWholeAtItsEndHoweverSoonThatComes)
{
    toolchain::ProgressFile file(uploaded);
    file.show(1, 900);
    file.show(900, 900);
    EXPECT_EQ(uploadprogress::of(uploaded)->done, 900);
}

TEST_F(ProgressOfAnUpload, goesWithTheUpload)
{
    {
        toolchain::ProgressFile file(uploaded);
        file.show(1, 900);
        EXPECT_EQ(files().size(), 1);
    }
    EXPECT_EQ(files(), QStringList());
    EXPECT_FALSE(uploadprogress::of(uploaded));
}

TEST_F(ProgressOfAnUpload, isWrittenForNobodyWhoHasNotAsked)
{
    ASSERT_TRUE(QDir().rmdir(uploads));
    toolchain::ProgressFile file(uploaded);
    file.show(1, 900);
    EXPECT_EQ(files(), QStringList());
}

TEST_F(ProgressOfAnUpload, isAskedForWithoutAnythingInTheEnvironmentOfTheTools)
{
    const auto before = QProcessEnvironment::systemEnvironment();
    uploadprogress::askFor();
    EXPECT_EQ(QProcessEnvironment::systemEnvironment(), before);
}
