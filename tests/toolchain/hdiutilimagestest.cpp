// Images that are damaged, looked at or made into others.

#include "toolchain/hdiutilattachtest.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

TEST_F(HdiutilAttach, aMissingImageIsAnError)
{
    const ToolResult result = attach(path(u"none.dmg"_s));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"hdiutil: attach failed - No such file or directory\n"_s);
    EXPECT_EQ(result.output, QString());
}

TEST_F(HdiutilAttach, whatIsNoImageOrACutOneIsNotRecognized)
{
    const QByteArray whole = bundlebuilder::readFile(m_image);
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("garbage"), randomBytes(100'000), whole.chopped(1),
          whole.first(whole.size() / 2), whole.last(512), whole.last(2000)}) {
        bundlebuilder::writeFile(path(u"a.dmg"_s), bytes);
        const ToolResult result = attach(path(u"a.dmg"_s));
        EXPECT_EQ(result.status, 1) << bytes.size();
        EXPECT_EQ(result.error, u"hdiutil: attach failed - image not recognized\n"_s);
    }
    expectNothingAttached();
    EXPECT_EQ(attach(path(u"My App.app"_s)).error, u"hdiutil: attach failed - image not recognized\n"_s);
}

TEST_F(HdiutilAttach, aChangedByteIsFoundOnlyIfChecksumsAreCompared)
{
    bundlebuilder::writeFile(path(u"noise/noise"_s), randomBytes(1 << 20));
    m_image = imageOf(path(u"noise"_s));
    const QString image = damagedImage(700'000); // amid bytes that could not be made shorter
    const ToolResult refused = run(hdiutil, {u"attach"_s, image});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.error, u"hdiutil: attach failed - corrupt image\n"_s);
    expectNothingAttached();
    EXPECT_EQ(run(hdiutil, {u"verify"_s, image}).status, 1);
    EXPECT_EQ(attach(image).status, 0);
}

TEST_F(HdiutilAttach, noChangedByteBringsItDown)
{
    const qsizetype size = QFileInfo(m_image).size();
    for (qsizetype offset = 0; offset < size; offset += 97) {
        const ToolResult result = attach(damagedImage(offset));
        ASSERT_TRUE(result.status == 0 || result.status == 1) << offset << result.error.toStdString();
        if (result.status == 0) {
            ASSERT_EQ(detach({mountPointIn(result)}).status, 0) << offset;
        }
    }
    expectNothingAttached();
}

TEST_F(HdiutilAttach, verifyFindsAWholeImageValid)
{
    const ToolResult result = run(hdiutil, {u"verify"_s, m_image});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.error.endsWith(u" is VALID\n"_s));
    EXPECT_EQ(run(hdiutil, {u"verify"_s, damagedImage(0)}).error,
              u"hdiutil: verify failed - corrupt image\n"_s);
}

TEST_F(HdiutilAttach, imageinfoTellsTheFormat)
{
    EXPECT_EQ(run(hdiutil, {u"imageinfo"_s, u"-format"_s, m_image}).output, u"UDZO\n"_s);
    const QString text = run(hdiutil, {u"imageinfo"_s, m_image}).output;
    EXPECT_TRUE(text.contains(u"\nFormat: UDZO\n"_s));
    EXPECT_TRUE(text.contains(u"disk image (Apple_HFS : 4)"_s));
    EXPECT_EQ(run(hdiutil, {u"imageinfo"_s, path(u"My App.app/Contents/Info.plist"_s)}).status, 1);
}

TEST_F(HdiutilAttach, anImageWithoutAVolumeHasNothingToMount)
{
    const QByteArray name = QFile::encodeName(path(u"empty.dmg"_s));
    const int file = open(name.constData(), O_WRONLY | O_CREAT, 0600);
    toolchain::UdifWriter writer(file, name.toStdString(), *toolchain::udif::imageFormat(u"UDZO"_s), 1);
    writer.beginPartition(u"whole disk (unknown partition : 0)"_s);
    writer.write(QByteArray(1 << 20, 'x'));
    writer.endPartition();
    writer.finish();
    close(file);
    EXPECT_EQ(attach(path(u"empty.dmg"_s)).error, u"hdiutil: attach failed - no mountable file systems\n"_s);
    expectNothingAttached();
}

TEST_F(HdiutilAttach, anotherProgramHelpsWithChunksThatCannotBeUnpackedHere)
{
    bundlebuilder::writeFile(path(u"folder/sub/a file"_s), QByteArray(900'000, 'f'));
    ASSERT_EQ(toolchain::writeAttribute(path(u"folder/sub/a file"_s), "note", "kept").error(), QString());
    const QString image = path(u"other.dmg"_s);
    writeLzfseImage(volumeOf(imageOf(path(u"folder"_s))), image);
    EXPECT_EQ(run(hdiutil, {u"imageinfo"_s, u"-format"_s, image}).output, u"ULFO\n"_s);
    const ToolResult verified = run(hdiutil, {u"verify"_s, image});
    EXPECT_EQ(verified.status, 0) << verified.error.toStdString();
    const QString volume = mountPointIn(attach(image));
    EXPECT_EQ(QProcess::execute(u"diff"_s, {u"-r"_s, path(u"folder"_s), volume}), 0);
    EXPECT_EQ(toolchain::readAttributes(volume + u"/sub/a file"_s)->value("note"), "kept");
    const QString converted = path(u"converted.dmg"_s);
    ASSERT_EQ(run(hdiutil, {u"convert"_s, image, u"-format"_s, u"ULMO"_s, u"-o"_s, converted}).status, 0);
    EXPECT_TRUE(runProgram(u"7z"_s, {u"t"_s, converted}).output.contains(u"Everything is Ok"_s));
}

TEST_F(HdiutilAttach, anEncryptedImageIsRefusedByName)
{
    bundlebuilder::writeFile(path(u"new.dmg"_s), "encrcdsa" + QByteArray(4096, 'x'));
    bundlebuilder::writeFile(path(u"old.dmg"_s), QByteArray(4096, 'x') + "cdsaencr");
    for (const QString &image : {u"new.dmg"_s, u"old.dmg"_s}) {
        for (const QStringList &arguments :
             {QStringList{u"attach"_s, path(image)},
              {u"verify"_s, path(image)},
              {u"imageinfo"_s, path(image)},
              {u"convert"_s, path(image), u"-format"_s, u"UDZO"_s, u"-o"_s, path(u"out.dmg"_s)}}) {
            const ToolResult result = run(hdiutil, arguments);
            EXPECT_EQ(result.status, 1);
            EXPECT_TRUE(result.error.contains(u"encrypted"_s)) << result.error.toStdString();
        }
    }
}

TEST_F(HdiutilAttach, convertWritesTheSameDiskInAnotherFormat)
{
    const QByteArray disk = bundlebuilder::readFile(diskOf(m_image));
    for (const QString &format : {u"UDRO"_s, u"UDBZ"_s, u"ULMO"_s, u"UDZO"_s}) {
        const QString image = path(format + u".dmg"_s);
        const ToolResult result =
            run(hdiutil, {u"convert"_s, m_image, u"-format"_s, format, u"-o"_s, path(format)});
        EXPECT_EQ(result.output, u"created: %1\n"_s.arg(image)) << result.error.toStdString();
        EXPECT_EQ(run(hdiutil, {u"imageinfo"_s, u"-format"_s, image}).output, format + u'\n');
        EXPECT_EQ(run(hdiutil, {u"verify"_s, image}).status, 0);
        QProcess reader;
        reader.start(u"7z"_s, {u"e"_s, u"-so"_s, u"-tdmg"_s, image});
        ASSERT_TRUE(reader.waitForFinished());
        EXPECT_TRUE(reader.readAllStandardOutput() == disk) << format.toStdString();
    }
    EXPECT_EQ(run(hdiutil, {u"convert"_s, m_image, u"-format"_s, u"UDZO"_s, u"-o"_s, path(u"UDZO"_s)}).error,
              u"hdiutil: convert failed - File exists\n"_s);
    EXPECT_EQ(run(hdiutil, {u"convert"_s, m_image, u"-format"_s, u"UDRW"_s, u"-o"_s, path(u"x"_s)}).status,
              2);
}
