#include "formats/apfslisting.h"
#include "formats/fileattributes.h"
#include "formats/review/review.h"
#include "formats/sevenzip.h"
#include "formats/udif/udifwriter.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/machobuilder.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <filesystem>
#include <limits>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace toolchain;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

/// A listing of 7z's, of items that are given by their properties.
QByteArray listingOf(const QByteArrayList &items)
{
    QByteArray listing =
        "\n--\nPath = volume\nType = APFS\nComment = \n{\nvolume_name: Tools: new\n}\n\n----------\n";
    for (const QByteArray &item : items)
        listing += item + "\n\n";
    return listing;
}

/// A program in the place of 7z, which lists what it is told and unpacks a folder.
class ApfsVolumes : public testing::Test {
protected:
    void SetUp() override
    {
        m_pathBefore = qgetenv("PATH");
        writeFile(path(u"bin/7z"_s),
                  "#!/bin/bash\nfolder=$(dirname \"$0\")/..\n[[ ! -e $folder/broken ]] || exit 2\n"
                  "[[ $1 == l ]] && exec cat \"$folder/listing\"\n"
                  "for word; do [[ $word != -o* ]] || cp -a \"$folder/volume/.\" \"${word#-o}\"; done\n");
        ASSERT_TRUE(QFile::setPermissions(path(u"bin/7z"_s), QFile::ReadOwner | QFile::ExeOwner));
        ASSERT_TRUE(qputenv("PATH", path(u"bin"_s).toLocal8Bit() + ':' + m_pathBefore));
        ASSERT_TRUE(QDir().mkpath(out()));
    }
    void TearDown() override { qputenv("PATH", m_pathBefore); }

    /// A disk image of partitions that begin as an APFS container does.
    [[nodiscard]] QString imageOfContainers(int count) const
    {
        constexpr qsizetype magicOffset = 32;
        const QString image = path(u"Disk.dmg"_s);
        QFile file(image);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        UdifWriter writer(file.handle(), image.toStdString(), *udif::imageFormat(u"UDZO"_s), 1);
        for (int number = 0; number < count; ++number) {
            writer.beginPartition(u"disk image (Apple_APFS : %1)"_s.arg(number));
            writer.write(QByteArray(1 << 20, '\0').replace(magicOffset, 4, "NXSB"));
            writer.endPartition();
        }
        writer.finish();
        EXPECT_TRUE(writer.outcome());
        return image;
    }
    /// What the service objects to.
    [[nodiscard]] static QStringList messagesOf(const QString &image)
    {
        QStringList messages;
        for (const auto &issue : review::reviewItem(image, u"Disk.dmg"_s).issues)
            messages.append(issue.message);
        return messages;
    }

    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] QString out() const { return path(u"out"_s); }
    /// What a copy of the volume comes to.
    [[nodiscard]] platform::Outcome copied() const
    {
        const auto volume = sevenzip::apfsVolume(path(u"disk"_s));
        return volume ? sevenzip::extractApfs(path(u"disk"_s), *volume, out()) : volume.failure();
    }
    void list(const QByteArrayList &items) const { writeFile(path(u"listing"_s), listingOf(items)); }

private:
    QTemporaryDir m_folder;
    QByteArray m_pathBefore;
};

const QByteArray plainFile = "Path = a/tool\nSize = 4\nMode = -r--r--r--\nMethod = \nAlternate Stream = -";
const QByteArray linkToIt =
    "Path = link\nSize = 6\nMode = lrwxr-xr-x\nMethod = symlink\nAlternate Stream = -";
const QByteArray attribute =
    "Path = a/tool:com.apple.cs.CodeSignature\nSize = 5\nMethod = \nAlternate Stream = +";

} // namespace

TEST_F(ApfsVolumes, haveTheirName)
{
    list({plainFile});
    EXPECT_EQ(sevenzip::apfsVolume(path(u"disk"_s)).valueOr({}).name, u"Tools: new"_s);
}

TEST_F(ApfsVolumes, filesHaveTheirAttributes)
{
    list({plainFile, linkToIt, attribute});
    writeFile(path(u"volume/a/tool"_s), "tool");
    writeFile(path(u"volume/a/tool:com.apple.cs.CodeSignature"_s), "value");
    writeFile(path(u"volume/a/tool:a name with a colon"_s), "file");
    ASSERT_TRUE(QFile::setPermissions(path(u"volume/a/tool"_s), QFile::ReadOwner));
    const auto outcome = copied();
    ASSERT_TRUE(outcome) << outcome.error().toStdString();
    EXPECT_EQ(readAttributes(out() + u"/a/tool"_s).valueOr({}).value("com.apple.cs.CodeSignature"), "value");
    EXPECT_FALSE(QFileInfo::exists(out() + u"/a/tool:com.apple.cs.CodeSignature"_s));
    EXPECT_EQ(std::filesystem::status((out() + u"/a/tool"_s).toStdString()).permissions(),
              std::filesystem::perms::owner_read);
    EXPECT_EQ(readFile(out() + u"/a/tool:a name with a colon"_s), "file");
}

TEST_F(ApfsVolumes, attributesWhoseNamesLeadOutAreRefusedByName)
{
    list({"Path = ../mine:note\nSize = 5\nMethod = \nAlternate Stream = +"});
    EXPECT_TRUE(QDir().mkpath(path(u"volume"_s)));
    writeFile(path(u"mine"_s), "mine");
    writeFile(path(u"mine:note"_s), "value");
    EXPECT_EQ(copied().error(), u"../mine:note: leads out of the volume"_s);
    EXPECT_EQ(readFile(path(u"mine:note"_s)), "value");
    EXPECT_TRUE(readAttributes(path(u"mine"_s)).valueOr({}).isEmpty());
}

TEST_F(ApfsVolumes, filesThatTheFileSystemHasCompressedAreRefusedByName)
{
    list({plainFile,
          "Path = a/packed\nSize = 0\nMode = -rw-r--r--\nMethod = LZFSE-attr\nAlternate Stream = -\nWritten "
          "Size = 116"});
    EXPECT_EQ(copied().error(), u"a/packed: compressed by the file system, which cannot be read here"_s);
    EXPECT_TRUE(QDir(out()).isEmpty());
    list({"Path = a/packed\nSize = 116\nMode = -rw-r--r--\nMethod = ZLIB-attr\nAlternate Stream = -\nWritten "
          "Size = 116"});
    EXPECT_TRUE(QDir().mkpath(path(u"volume"_s)));
    EXPECT_TRUE(copied()); // this 7z reads it
}

TEST_F(ApfsVolumes, devicesAndPipesAreRefusedByName)
{
    for (const QByteArray kind : {"c", "b", "p", "s"}) {
        list({linkToIt,
              "Path = odd\nSize = 0\nMode = " + kind + "rw-r--r--\nMethod = \nAlternate Stream = -"});
        EXPECT_EQ(copied().error(), u"odd: neither a file, a folder nor a symbolic link"_s);
    }
}

TEST_F(ApfsVolumes, anEncryptedOneIsNamed)
{
    writeFile(path(u"broken"_s), "the program reads nothing");
    writeFile(path(u"disk"_s), QByteArray(4096, '\0'));
    EXPECT_EQ(sevenzip::apfsVolume(path(u"disk"_s)).error(), u"corrupt image"_s);
    writeFile(path(u"disk"_s), QByteArray(4096, '\0').replace(1296, 1, "\x07"));
    EXPECT_EQ(sevenzip::apfsVolume(path(u"disk"_s)).error(),
              u"the volume is encrypted, which cannot be read here"_s);
}

TEST_F(ApfsVolumes, tellHowMuchTheyHold)
{
    list({plainFile, linkToIt, attribute});
    const auto volume = sevenzip::apfsVolume(path(u"disk"_s));
    ASSERT_TRUE(volume) << volume.error().toStdString();
    EXPECT_EQ(volume->items, 3);
    EXPECT_EQ(volume->size, 4 + 6 + 5);
    list({plainFile, "Path = vast\nSize = 9223372036854775807\nMode = -r--r--r--\nAlternate Stream = -",
          "Path = absurd\nSize = 92233720368547758070\nMode = -r--r--r--\nAlternate Stream = -"});
    EXPECT_EQ(sevenzip::apfsVolume(path(u"disk"_s))->size, std::numeric_limits<qint64>::max());
}

TEST_F(ApfsVolumes, inAnImageAreLookedIntoByTheReview)
{
    const QString image = imageOfContainers(1);
    list({plainFile});
    writeFile(path(u"volume/a/tool"_s), bundlebuilder::machO({}));
    const auto review = review::reviewItem(image, u"Disk.dmg"_s);
    ASSERT_EQ(review.issues.size(), 1);
    EXPECT_EQ(review.issues.first().path, u"Disk.dmg/a/tool"_s);
    EXPECT_EQ(review.issues.first().message, u"The binary is not signed."_s);
}

TEST_F(ApfsVolumes, inAnImageThatCannotBeReadOrHoldTooMuchAreRefusedByTheReview)
{
    const QString image = imageOfContainers(1);
    list({"Path = vast\nSize = 99000000000000\nMode = -r--r--r--\nAlternate Stream = -"});
    EXPECT_EQ(messagesOf(image),
              QStringList(u"The archive cannot be read: unpacks to more than can be looked at."_s));
    list({"Path = odd\nSize = 0\nMode = prw-r--r--\nMethod = \nAlternate Stream = -"});
    EXPECT_EQ(
        messagesOf(image),
        QStringList(u"The archive cannot be read: odd: neither a file, a folder nor a symbolic link."_s));
    writeFile(path(u"broken"_s), "the program reads nothing");
    EXPECT_EQ(messagesOf(image), QStringList(u"The archive cannot be read: corrupt image."_s));
}

TEST_F(ApfsVolumes, ofWhichAnImageHasSeveralAreRefusedByTheReview)
{
    list({plainFile});
    EXPECT_EQ(messagesOf(imageOfContainers(2)),
              QStringList(u"The archive cannot be read: it has several volumes, of which only one can be "
                          "read."_s));
}

TEST(ApfsListings, mayComeInAnyPieces)
{
    const QByteArray whole = listingOf({plainFile, attribute, linkToIt});
    for (const qsizetype size : {1, 7, 64}) {
        ApfsListing listing;
        for (qsizetype from = 0; from < whole.size(); from += size)
            listing.take(QByteArrayView(whole).sliced(from, std::min(size, whole.size() - from)));
        listing.finish();
        EXPECT_EQ(listing.volumeName(), u"Tools: new"_s);
        EXPECT_EQ(listing.attributes(), QStringList{u"a/tool:com.apple.cs.CodeSignature"_s});
        EXPECT_EQ(listing.problem(), QString());
    }
}
