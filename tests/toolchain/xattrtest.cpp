#include "formats/fileattributes.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QFile>

#include <sys/prctl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *attribute = "user.com.apple.quarantine";

class Xattr : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        bundlebuilder::writeFile(path(u"tree/inner/file"_s), "bytes");
        bundlebuilder::writeFile(path(u"outside"_s), "bytes");
        QFile::link(path(u"outside"_s), path(u"tree/link"_s));
        for (const QString &item : {u"tree"_s, u"tree/inner"_s, u"tree/inner/file"_s, u"outside"_s})
            setAttribute(item);
    }

    void setAttribute(const QString &item) const
    {
        const QByteArray name = QFile::encodeName(path(item));
        ASSERT_EQ(setxattr(name.constData(), attribute, "value", 5, 0), 0)
            << "the temporary folder's file system keeps no extended attributes: " << std::strerror(errno);
    }

    [[nodiscard]] bool hasAttribute(const QString &item) const
    {
        return getxattr(QFile::encodeName(path(item)).constData(), attribute, nullptr, 0) >= 0;
    }
};

/// Takes root's right to write into read-only files, so that the permissions of a file count for root too.
void obeyPermissions()
{
    constexpr int overridePermissions = 1; // CAP_DAC_OVERRIDE of <linux/capability.h>
    if (geteuid() == 0)
        prctl(PR_CAPBSET_DROP, overridePermissions);
}

} // namespace

TEST_F(Xattr, clearsAWholeTree)
{
    const ToolResult result = run(xattr, {u"-r"_s, u"-c"_s, u"-s"_s, path(u"tree"_s)});
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_FALSE(hasAttribute(u"tree"_s));
    EXPECT_FALSE(hasAttribute(u"tree/inner"_s));
    EXPECT_FALSE(hasAttribute(u"tree/inner/file"_s));
}

TEST_F(Xattr, leavesAloneWhatALinkInTheTreeLeadsTo)
{
    ASSERT_EQ(run(xattr, {u"-rcs"_s, path(u"tree"_s)}).status, 0);
    EXPECT_TRUE(hasAttribute(u"outside"_s));
    ASSERT_EQ(run(xattr, {u"-rc"_s, path(u"tree"_s)}).status, 0);
    EXPECT_TRUE(hasAttribute(u"outside"_s));
}

TEST_F(Xattr, followsALinkThatIsNamedUnlessItIsToldNotTo)
{
    ASSERT_EQ(run(xattr, {u"-c"_s, u"-s"_s, path(u"tree/link"_s)}).status, 0);
    EXPECT_TRUE(hasAttribute(u"outside"_s));
    ASSERT_EQ(run(xattr, {u"-c"_s, path(u"tree/link"_s)}).status, 0);
    EXPECT_FALSE(hasAttribute(u"outside"_s));
}

TEST_F(Xattr, withoutRecursionClearsTheItemAlone)
{
    ASSERT_EQ(run(xattr, {u"-c"_s, path(u"tree"_s)}).status, 0);
    EXPECT_FALSE(hasAttribute(u"tree"_s));
    EXPECT_TRUE(hasAttribute(u"tree/inner"_s));
}

TEST_F(Xattr, listsNamesAndChangesNothing)
{
    const ToolResult result = run(xattr, {path(u"outside"_s)});
    EXPECT_EQ(result.output, u"user.com.apple.quarantine\n"_s);
    EXPECT_TRUE(hasAttribute(u"outside"_s));
}

TEST_F(Xattr, listsATreeWithTheFileInEachLine)
{
    const ToolResult result = run(xattr, {u"-r"_s, path(u"tree/inner"_s)});
    EXPECT_EQ(
        result.output,
        u"%1: user.com.apple.quarantine\n%1/file: user.com.apple.quarantine\n"_s.arg(path(u"tree/inner"_s)));
}

TEST_F(Xattr, aReadOnlyFileWithAttributesIsAnErrorThatNamesIt)
{
    const QString file = path(u"tree/inner/file"_s);
    QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    const ToolResult result = run(xattr, {u"-r"_s, u"-c"_s, u"-s"_s, path(u"tree"_s)}, {}, obeyPermissions);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"xattr: [Errno 13] Permission denied: '%1'\n"_s.arg(file));
    EXPECT_TRUE(hasAttribute(u"tree/inner/file"_s));
    EXPECT_FALSE(hasAttribute(u"tree/inner"_s));
}

TEST_F(Xattr, aReadOnlyFileWithoutAttributesIsNone)
{
    const QString file = path(u"tree/inner/file"_s);
    ASSERT_EQ(removexattr(QFile::encodeName(file).constData(), attribute), 0);
    QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    EXPECT_EQ(run(xattr, {u"-rcs"_s, path(u"tree"_s)}, {}, obeyPermissions).status, 0);
}

TEST_F(Xattr, aMissingFileIsAnError)
{
    const ToolResult result = run(xattr, {u"-c"_s, path(u"nowhere"_s)});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"xattr: [Errno 2] No such file or directory: '%1'\n"_s.arg(path(u"nowhere"_s)));
}

TEST_F(Xattr, noFileAtAllIsRefused)
{
    EXPECT_EQ(run(xattr, {u"-c"_s}).status, 64);
}

TEST_F(Xattr, writesPrintsAndRemovesOneAttribute)
{
    const QString file = path(u"tree/inner/file"_s);
    ASSERT_EQ(run(xattr, {u"-w"_s, u"com.example.note"_s, u"a value"_s, file}).status, 0);
    EXPECT_GE(getxattr(QFile::encodeName(file).constData(), "user.com.example.note", nullptr, 0), 0);
    EXPECT_EQ(run(xattr, {u"-p"_s, u"com.example.note"_s, file}).output, u"a value\n"_s);
    EXPECT_EQ(run(xattr, {u"-p"_s, u"user.com.example.note"_s, file}).output, u"a value\n"_s);
    EXPECT_EQ(run(xattr, {u"-p"_s, u"-v"_s, u"com.example.note"_s, file}).output, file + u": a value\n"_s);
    ASSERT_EQ(run(xattr, {u"-d"_s, u"com.example.note"_s, file}).status, 0);
    const ToolResult gone = run(xattr, {u"-p"_s, u"com.example.note"_s, file});
    EXPECT_EQ(gone.status, 1);
    EXPECT_EQ(gone.error, u"xattr: %1: No such xattr: com.example.note\n"_s.arg(file));
    EXPECT_EQ(run(xattr, {u"-d"_s, u"com.example.note"_s, file}).status, 1);
    EXPECT_TRUE(hasAttribute(u"tree/inner/file"_s));
}

TEST_F(Xattr, listsNamesWithValues)
{
    const QString file = path(u"outside"_s);
    EXPECT_EQ(run(xattr, {u"-l"_s, file}).output, u"user.com.apple.quarantine: value\n"_s);
    ASSERT_EQ(run(xattr, {u"-wx"_s, u"com.apple.quarantine"_s, u"00 01 41 ff"_s, file}).status, 0);
    EXPECT_EQ(
        run(xattr, {u"-l"_s, file}).output,
        u"user.com.apple.quarantine:\n00000000  00 01 41 FF%1  |..A.|\n00000004\n"_s.arg(QString(36, u' ')));
    EXPECT_EQ(run(xattr, {u"-px"_s, u"com.apple.quarantine"_s, file}).output, u"00 01 41 FF\n"_s);
}

TEST_F(Xattr, hexadecimalDigitsComeSixteenBytesALine)
{
    const QString file = path(u"outside"_s);
    ASSERT_EQ(run(xattr, {u"-w"_s, u"n"_s, u"0123456789abcdefX"_s, file}).status, 0);
    EXPECT_EQ(run(xattr, {u"-p"_s, u"-x"_s, u"n"_s, file}).output,
              u"30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66\n58\n"_s);
    EXPECT_EQ(run(xattr, {u"-w"_s, u"-x"_s, u"n"_s, u"0"_s, file}).status, 64);
    EXPECT_EQ(run(xattr, {u"-w"_s, u"-x"_s, u"n"_s, u"zz"_s, file}).status, 64);
}

TEST_F(Xattr, actsOnAWholeTreeWithEveryVerb)
{
    ASSERT_EQ(run(xattr, {u"-rw"_s, u"n"_s, u"v"_s, path(u"tree/inner"_s)}).status, 0);
    EXPECT_EQ(run(xattr, {u"-rp"_s, u"n"_s, path(u"tree/inner"_s)}).output,
              u"%1: v\n%1/file: v\n"_s.arg(path(u"tree/inner"_s)));
    ASSERT_EQ(run(xattr, {u"-rd"_s, u"n"_s, path(u"tree"_s)}).status, 0) << "not everything in a tree has it";
    EXPECT_EQ(run(xattr, {u"-rp"_s, u"n"_s, path(u"tree"_s)}).output, QString());
}

TEST_F(Xattr, whatLiesBesideAFileCountsAndIsClearedWithIt)
{
    const QString file = path(u"tree/inner/file"_s);
    ASSERT_EQ(toolchain::writeAttribute(file, "large", QByteArray(100'000, 'x')).error(), QString());
    ASSERT_TRUE(QFile::exists(path(u"tree/inner/._file"_s)));
    EXPECT_EQ(run(xattr, {file}).output, u"user.com.apple.quarantine\nuser.large\n"_s);
    EXPECT_EQ(run(xattr, {u"-r"_s, path(u"tree/inner"_s)}).output.count(u'\n'), 3);
    ASSERT_EQ(run(xattr, {u"-r"_s, u"-c"_s, u"-s"_s, path(u"tree"_s)}).status, 0);
    EXPECT_FALSE(QFile::exists(path(u"tree/inner/._file"_s)));
}

TEST_F(Xattr, anOptionThatIsNotBuiltAndVerbsThatDoNotGoTogetherAreRefused)
{
    EXPECT_EQ(run(xattr, {u"-z"_s, path(u"tree"_s)}).status, 2);
    EXPECT_EQ(run(xattr, {u"-cd"_s, u"n"_s, path(u"tree"_s)}).status, 64);
    EXPECT_EQ(run(xattr, {u"-w"_s, u"n"_s, path(u"tree"_s)}).status, 64);
}
