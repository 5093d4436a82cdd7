// The place of a signature in a disk image, and the attributes of files, as the tools share them.

#include "formats/appledouble.h"
#include "formats/bigendian.h"
#include "formats/fileattributes.h"
#include "formats/udif/imagesignature.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/diskimagefixture.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <sys/xattr.h>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

class SignaturePlaceInAnImage : public DiskImageFixture {
protected:
    void SetUp() override
    {
        DiskImageFixture::SetUp();
        bundlebuilder::writeFile(path(u"folder/a file"_s), "inside");
        m_image = imageOf(path(u"folder"_s));
    }

    QString m_image;
};

class AttributesOfAFile : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        bundlebuilder::writeFile(file(), "bytes");
    }

    [[nodiscard]] QString file() const { return path(u"a file"_s); }
};

} // namespace

TEST_F(SignaturePlaceInAnImage, isBetweenTheDataAndTheTrailer)
{
    const QByteArray unsignedImage = bundlebuilder::readFile(m_image);
    const QByteArray superblob(1000, 's');
    EXPECT_EQ(udif::replaceImageSignature(m_image, superblob).error(), QString());
    const QByteArray image = bundlebuilder::readFile(m_image);
    const qsizetype offset = unsignedImage.size() - 512;
    EXPECT_EQ(image.first(offset), unsignedImage.first(offset));
    EXPECT_EQ(image.mid(offset, superblob.size()), superblob);
    QByteArray trailer = unsignedImage.last(512);
    trailer.replace(0x128, 16, BigEndianBytes().u64(quint64(offset)).u64(1000).bytes());
    EXPECT_EQ(image.mid(offset + superblob.size()), trailer);
    EXPECT_EQ(*udif::readImageSignature(m_image), superblob);
    EXPECT_TRUE(runProgram(u"7z"_s, {u"t"_s, m_image}).output.contains(u"Everything is Ok"_s));
}

TEST_F(SignaturePlaceInAnImage, theDigestedTrailerIsTheSameWhateverTheSignaturesLengthIs)
{
    const auto before = udif::readSignaturePlace(m_image);
    ASSERT_TRUE(before);
    EXPECT_FALSE(before->isSigned());
    for (const qsizetype length : {100, 5000, 300}) {
        ASSERT_EQ(udif::replaceImageSignature(m_image, QByteArray(length, 's')).error(), QString());
        const auto place = udif::readSignaturePlace(m_image);
        ASSERT_TRUE(place);
        EXPECT_EQ(place->signatureLength, quint64(length));
        EXPECT_EQ(place->contentLength, before->contentLength);
        EXPECT_EQ(place->trailerToDigest(), before->trailerToDigest());
    }
}

TEST_F(SignaturePlaceInAnImage, takenOutTheImageIsWhatItWas)
{
    const QByteArray before = bundlebuilder::readFile(m_image);
    ASSERT_EQ(udif::replaceImageSignature(m_image, "one").error(), QString());
    ASSERT_EQ(udif::replaceImageSignature(m_image, {}).error(), QString());
    EXPECT_EQ(bundlebuilder::readFile(m_image), before);
}

TEST_F(SignaturePlaceInAnImage, theFileKeepsItsModeAndAttributes)
{
    const QByteArray name = QFile::encodeName(m_image);
    ASSERT_EQ(chmod(name.constData(), 0640), 0);
    ASSERT_EQ(writeAttribute(m_image, "com.example.note", "kept").error(), QString());
    ASSERT_EQ(udif::replaceImageSignature(m_image, "one").error(), QString());
    struct stat status = {};
    ASSERT_EQ(stat(name.constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    EXPECT_EQ(readAttributes(m_image)->value("com.example.note"), "kept");
}

TEST_F(SignaturePlaceInAnImage, aPlaceOutsideOfTheFileIsRefused)
{
    QByteArray image = bundlebuilder::readFile(m_image);
    image.replace(image.size() - 512 + 0x128, 16, BigEndianBytes().u64(10).u64(quint64(1) << 62).bytes());
    bundlebuilder::writeFile(m_image, image);
    EXPECT_TRUE(udif::readSignaturePlace(m_image).error().contains(m_image));
    EXPECT_FALSE(udif::replaceImageSignature(m_image, "one"));
    EXPECT_EQ(bundlebuilder::readFile(m_image), image);
}

TEST_F(AttributesOfAFile, areKeptUnderTheHostsNames)
{
    EXPECT_EQ(writeAttribute(file(), "com.apple.cs.CodeDirectory", "directory").error(), QString());
    char value[20] = {};
    EXPECT_EQ(getxattr(QFile::encodeName(file()).constData(), "user.com.apple.cs.CodeDirectory", value, 20),
              9);
    EXPECT_STREQ(value, "directory");
    EXPECT_EQ(*readAttributes(file()), (FileAttributes{{"com.apple.cs.CodeDirectory", "directory"}}));
    EXPECT_EQ(removeAttribute(file(), "com.apple.cs.CodeDirectory").error(), QString());
    EXPECT_TRUE(readAttributes(file())->isEmpty());
}

TEST_F(AttributesOfAFile, lieBesideItWhereTheFileSystemHasNoRoom)
{
    const QByteArray large(200'000, 'x'); // more than any file system of Linux keeps
    ASSERT_EQ(writeAttribute(file(), "com.apple.cs.CodeSignature", large).error(), QString());
    ASSERT_EQ(writeAttribute(file(), "com.example.small", "1").error(), QString());
    EXPECT_TRUE(isSidecar(path(u"._a file"_s)));
    EXPECT_FALSE(isSidecar(file()));
    EXPECT_EQ(*readAttributes(file()),
              (FileAttributes{{"com.apple.cs.CodeSignature", large}, {"com.example.small", "1"}}));
    ASSERT_EQ(writeAttribute(file(), "com.apple.cs.CodeSignature", "short").error(), QString());
    EXPECT_FALSE(QFile::exists(path(u"._a file"_s))) << "nothing is left in it";
    EXPECT_EQ(readAttributes(file())->value("com.apple.cs.CodeSignature"), "short");
}

TEST(AppleDouble, givesBackWhatItWasMadeOf)
{
    const QMap<QByteArray, QByteArray> attributes{{"com.apple.FinderInfo", QByteArray(32, 'f')},
                                                  {"com.apple.ResourceFork", QByteArray(1000, 'r')},
                                                  {"com.apple.cs.CodeSignature", ""},
                                                  {"a", QByteArray(70'000, 'a')}};
    EXPECT_EQ(*appledouble::attributesIn(appledouble::fileWith(attributes)), attributes);
    EXPECT_EQ(*appledouble::attributesIn(appledouble::fileWith({})), (QMap<QByteArray, QByteArray>{}));
}

TEST(AppleDouble, cutAnywhereIsAnErrorAndNeverMore)
{
    const QByteArray whole = appledouble::fileWith({{"com.apple.ResourceFork", "rrrr"}, {"name", "value"}});
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(appledouble::attributesIn(QByteArrayView(whole).first(length))) << length;
}
