// How far an upload is, from the tool that writes it down to the window that reads it.

#include "ui/uploadprogress.h"

#include "altool/progress.h"
#include "support/core.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class ProgressOfAnUpload : public testing::Test {
protected:
    ProgressOfAnUpload() { qputenv("SEALWRIGHT_UPLOAD_PROGRESS", folder.path().toUtf8()); }
    ~ProgressOfAnUpload() override { qunsetenv("SEALWRIGHT_UPLOAD_PROGRESS"); }

    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files); }

    QTemporaryDir folder;
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
    qunsetenv("SEALWRIGHT_UPLOAD_PROGRESS");
    toolchain::ProgressFile file(uploaded);
    file.show(1, 900);
    EXPECT_EQ(files(), QStringList());
}
