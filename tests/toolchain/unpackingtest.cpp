// Archives that mean harm or are damaged.

#include "toolchain/dittotest.h"

using namespace Qt::StringLiterals;

TEST_F(Ditto, whatLeadsOutOfTheFolderIsRefusedByNameAndNothingIsWritten)
{
    for (const auto &[name, mode, content] : {std::tuple(QByteArray("../evil"), 0100644, QByteArray("x")),
                                              {"/tmp/evil", 0100644, "x"},
                                              {"a/../../evil", 0100644, "x"},
                                              {"link", 0120777, "/etc/passwd"},
                                              {"a/link", 0120777, "../../etc"},
                                              {"device", 0020666, ""},
                                              {"pipe", 0010644, ""}}) {
        writeArchive({{"first", 0100644, "written before?"}, {name, quint16(mode), content}});
        const ToolResult result = extract(path(u"crafted.zip"_s), path(u"out/unpacked"_s));
        EXPECT_EQ(result.status, 1) << name.toStdString();
        EXPECT_TRUE(result.error.contains(QString::fromUtf8(name))) << result.error.toStdString();
        EXPECT_FALSE(QFile::exists(path(u"out/unpacked/first"_s))) << name.toStdString();
        EXPECT_FALSE(QFile::exists(path(u"out/evil"_s)));
    }
}

TEST_F(Ditto, aLinkThatIsThereIsNotWrittenThrough)
{
    QDir().mkpath(path(u"out/unpacked"_s));
    QDir().mkpath(path(u"elsewhere"_s));
    ASSERT_TRUE(QFile::link(path(u"elsewhere"_s), path(u"out/unpacked/folder"_s)));
    writeArchive({{"folder/file", 0100644, "x"}});
    EXPECT_EQ(extract(path(u"crafted.zip"_s), path(u"out/unpacked"_s)).status, 1);
    EXPECT_FALSE(QFile::exists(path(u"elsewhere/file"_s)));
}

TEST_F(Ditto, aFileBehindALinkOfTheSameArchiveIsRefused)
{
    writeArchive({{"folder", 0120777, "other"}, {"folder/file", 0100644, "x"}});
    EXPECT_EQ(extract(path(u"crafted.zip"_s), path(u"out/unpacked"_s)).status, 1);
}

TEST_F(Ditto, entriesThatShareBytesOrClaimTooMuchAreRefusedByName)
{
    writeArchive({{"one", 0100644, "bytes"}, {"two", 0100644, "bytes"}});
    QByteArray archive = bundlebuilder::readFile(path(u"crafted.zip"_s));
    const qsizetype second = archive.lastIndexOf("PK\1\2");
    const QByteArray whole = archive;
    archive.replace(second + 42, 4, QByteArray(4, '\0'));
    bundlebuilder::writeFile(path(u"crafted.zip"_s), archive);
    EXPECT_TRUE(extract(path(u"crafted.zip"_s), path(u"out/u"_s)).error.contains(u"shares its bytes"_s));
    archive = whole;
    archive.replace(second + 24, 4, "\xff\xff\xff\x7f");
    bundlebuilder::writeFile(path(u"crafted.zip"_s), archive);
    EXPECT_TRUE(
        extract(path(u"crafted.zip"_s), path(u"out/u"_s)).error.contains(u"\"two\" claims to hold more"_s));
    EXPECT_FALSE(QFile::exists(path(u"out/u/one"_s)));
}

TEST_F(Ditto, aDamagedArchiveIsAnErrorAndNeverMore)
{
    bundlebuilder::writeFile(path(u"names/text"_s), QByteArray("again and again ").repeated(100));
    ASSERT_EQ(pack(path(u"names"_s), path(u"out/a.zip"_s)).status, 0);
    const QByteArray whole = bundlebuilder::readFile(path(u"out/a.zip"_s));
    for (qsizetype offset = 0; offset < whole.size(); offset += 7) {
        QByteArray archive = whole;
        archive[offset] = char(~archive[offset]);
        bundlebuilder::writeFile(path(u"crafted.zip"_s), archive);
        const int status = extract(path(u"crafted.zip"_s), path(u"out/u"_s)).status;
        EXPECT_TRUE(status == 0 || status == 1) << offset;
    }
}

TEST_F(Ditto, aFullDiskLeavesTheOldFile)
{
    bundlebuilder::writeFile(path(u"names/noise"_s), randomBytes(1 << 20));
    ASSERT_EQ(pack(path(u"names"_s), path(u"out/a.zip"_s)).status, 0);
    bundlebuilder::writeFile(path(u"out/names/noise"_s), "the old one");
    const ToolResult result =
        run(ditto, {u"-x"_s, u"-k"_s, path(u"out/a.zip"_s), path(u"out"_s)}, {}, limitFileSize);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.contains(u"names/noise: File too large"_s)) << result.error.toStdString();
    EXPECT_EQ(bundlebuilder::readFile(path(u"out/names/noise"_s)), "the old one");
    EXPECT_EQ(
        QDir(path(u"out/names"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(),
        1);
}
