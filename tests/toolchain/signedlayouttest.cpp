// How a signature lies in a file, in a folder and in attributes, and what is left when it is taken off.

#include "formats/codesignature/machoimage.h"
#include "formats/codesignature/signaturereader.h"
#include "formats/fileattributes.h"
#include "toolchain/machobuilder.h"
#include "toolchain/toolfixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

using namespace Qt::StringLiterals;
using namespace toolchain;
using namespace toolchain::codesignature;
using bundlebuilder::MachORecipe;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

class SignedLayout : public ToolFixture {
protected:
    [[nodiscard]] ToolResult adHoc(const QStringList &arguments) const
    {
        return run(codesign, QStringList{u"-s"_s, u"-"_s} + arguments);
    }
    /// Writes a file named "code" and signs it.
    [[nodiscard]] QByteArray signedFile(const QByteArray &bytes, const QStringList &options = {}) const
    {
        writeFile(code(), bytes);
        const ToolResult result = adHoc(options + QStringList{code()});
        EXPECT_EQ(result.status, 0) << result.error.toStdString();
        return readFile(code());
    }
    [[nodiscard]] QByteArray strippedFile() const
    {
        EXPECT_EQ(run(codesign, {u"--remove-signature"_s, code()}).status, 0);
        return readFile(code());
    }
    [[nodiscard]] QString code() const { return path(u"code"_s); }
    [[nodiscard]] MachOSlice slice() const
    {
        const auto image = readMachOImage(code());
        EXPECT_TRUE(image) << image.error().toStdString();
        return image->slices.first();
    }
};

quint32 numberAt(const QByteArray &bytes, qsizetype offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

quint32 headerNumberAt(const QByteArray &bytes, qsizetype offset)
{
    return qFromBigEndian<quint32>(bytes.constData() + offset);
}

} // namespace

TEST_F(SignedLayout, theCommandStandsBehindTheOthersAndTheGapIsZeros)
{
    const QByteArray plain = bundlebuilder::machO({.linkeditLength = 21});
    const QByteArray bytes = signedFile(plain);
    EXPECT_EQ(numberAt(bytes, 16), numberAt(plain, 16) + 1); // how many commands
    EXPECT_EQ(numberAt(bytes, 20), numberAt(plain, 20) + 16); // their length
    const qsizetype command = 32 + qsizetype(numberAt(plain, 20));
    EXPECT_EQ(numberAt(bytes, command), 0x1dU);
    EXPECT_EQ(numberAt(bytes, command + 4), 16U);
    const quint32 place = numberAt(bytes, command + 8);
    EXPECT_EQ(place, (quint32(plain.size()) + 15) / 16 * 16);
    EXPECT_EQ(bytes.mid(plain.size(), place - plain.size()), QByteArray(place - plain.size(), '\0'));
    EXPECT_EQ(bytes.size(), place + numberAt(bytes, command + 12));
    const MachOSegment linkedit = *slice().segment("__LINKEDIT");
    EXPECT_EQ(linkedit.file.end(), quint64(bytes.size()));
    EXPECT_EQ(linkedit.virtualSize, (linkedit.file.length + 0x3fff) / 0x4000 * 0x4000);
}

TEST_F(SignedLayout, theRoomOfASignatureCanBeChosen)
{
    const qsizetype usual = signedFile(bundlebuilder::machO({})).size();
    EXPECT_EQ(signedFile(bundlebuilder::machO({}), {u"--signature-size"_s, u"18160"_s}).size(), usual + 160);
    writeFile(code(), bundlebuilder::machO({}));
    EXPECT_EQ(adHoc({u"--signature-size"_s, u"many"_s, code()}).status, 2);
}

TEST_F(SignedLayout, ofALongerOldSignatureNothingStaysBehindTheNewOne)
{
    const QByteArray expected = signedFile(bundlebuilder::machO({}));
    makeIdentity();
    ASSERT_EQ(run(codesign,
                  {u"-f"_s, u"-s"_s, identity, u"--digest-algorithm=sha1,sha256"_s, u"--signature-size"_s,
                   u"60000"_s, code()})
                  .status,
              0);
    ASSERT_EQ(adHoc({u"-f"_s, code()}).status, 0);
    EXPECT_EQ(readFile(code()), expected);
}

TEST_F(SignedLayout, whatIsTakenOffLeavesTheFileAsItWas)
{
    MachORecipe recipe;
    for (const std::uint32_t length : {16, 20, 24}) { // up to twelve bytes behind the strings go too
        recipe.linkeditLength = length;
        recipe.hasSymbolTable = true;
        QByteArray expected = bundlebuilder::machO(recipe);
        const QByteArray bytes = signedFile(expected);
        const qsizetype virtualSize = expected.indexOf("__LINKEDIT") + 24;
        expected.replace(virtualSize, 8, bytes.mid(virtualSize, 8)); // stays
        EXPECT_NE(bytes.first(expected.size()), expected);
        EXPECT_EQ(strippedFile(), expected) << length;
    }
    recipe.hasSymbolTable = false;
    recipe.linkeditLength = 20;
    const QByteArray plain = bundlebuilder::machO(recipe);
    EXPECT_NE(signedFile(plain), plain);
    EXPECT_EQ(strippedFile().size(), plain.size() + 12); // nothing tells where it ended
}

TEST_F(SignedLayout, theSlicesOfAUniversalFileLieAtMultiplesOf16KiB)
{
    const QByteArray small = bundlebuilder::machO({.architecture = bundlebuilder::x86_64});
    const QByteArray bytes = signedFile(bundlebuilder::universalOf({small, bundlebuilder::machO({})}));
    EXPECT_EQ(headerNumberAt(bytes, 4), 2U);
    quint32 expected = 0x4000;
    for (const qsizetype entry : {8, 28}) {
        const quint32 offset = headerNumberAt(bytes, entry + 8);
        const quint32 size = headerNumberAt(bytes, entry + 12);
        EXPECT_EQ(offset, expected);
        EXPECT_EQ(headerNumberAt(bytes, entry + 16), 14U);
        expected = (offset + size + 0x3fff) / 0x4000 * 0x4000;
        if (entry == 28)
            EXPECT_EQ(offset + size, quint32(bytes.size())); // the last one is not padded
        else
            EXPECT_EQ(bytes.mid(offset + size, expected - offset - size).count('\0'),
                      expected - offset - size);
    }
}

TEST_F(SignedLayout, aLinkersSignatureCountsAsNone)
{
    (void)signedFile(bundlebuilder::machO({}), {u"-o"_s, u"linker-signed"_s, u"-i"_s, u"from.the.linker"_s});
    EXPECT_TRUE(run(codesign, {u"-dv"_s, code()}).error.contains(u"flags=0x20002(adhoc,linker-signed)"_s));
    const ToolResult result = adHoc({u"-v"_s, u"--preserve-metadata=identifier,flags"_s, code()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error,
              code() + u": signed Mach-O thin (arm64) [code-5555494430313233343536373839616263646566]\n"_s);
    EXPECT_EQ(readCodeSignature(code())->native().best().fields().flags, codeflag::adhoc);
}

TEST_F(SignedLayout, aFileOfFourGibibytesIsRefusedByNameAndStaysAsItIs)
{
    constexpr qint64 fourGibibytes = 4LL << 30;
    const QByteArray head = bundlebuilder::machO({});
    writeFile(code(), head);
    ASSERT_TRUE(QFile::resize(code(), fourGibibytes)); // nearly all of it is a hole
    const ToolResult result = adHoc({u"-f"_s, code()});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.startsWith(code() + u": "_s)) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains(u"it has 4 GiB or more"_s)) << result.error.toStdString();
    QFile file(code());
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    EXPECT_EQ(file.size(), fourGibibytes);
    EXPECT_EQ(file.read(head.size()), head);
}

TEST_F(SignedLayout, aSignatureThatClaimsTwoGigabytesIsRefusedByName)
{
    const QByteArray good = signedFile(bundlebuilder::machO({}));
    const qsizetype command = good.indexOf(QByteArray::fromHex("1d00000010000000"));
    const qsizetype superBlob = good.indexOf(QByteArray::fromHex("fade0cc0"));
    ASSERT_TRUE(command > 0 && superBlob > 0);
    const QByteArray byCommand = QByteArray(good).replace(command + 12, 4, QByteArray::fromHex("00000080"));
    const QByteArray bySuperBlob =
        QByteArray(good).replace(superBlob + 4, 4, QByteArray::fromHex("80000000"));
    for (const QByteArray &bytes : {byCommand, bySuperBlob}) {
        writeFile(code(), bytes);
        for (const QStringList &arguments : QList<QStringList>{{u"-d"_s}, {u"--verify"_s}}) {
            const ToolResult result = run(codesign, arguments + QStringList{code()});
            EXPECT_EQ(result.status, 1);
            EXPECT_TRUE(result.error.startsWith(code() + u": "_s)) << result.error.toStdString();
        }
    }
    writeFile(code(), byCommand);
    EXPECT_EQ(adHoc({u"-f"_s, code()}).status, 1);
    EXPECT_EQ(readFile(code()), byCommand);
}

TEST_F(SignedLayout, anyOtherFileHasItsSignatureInAttributes)
{
    makeIdentity();
    const QString file = path(u"file.txt"_s);
    writeFile(file, "text");
    ASSERT_TRUE(writeAttribute(file, "com.apple.cs.Leftover", "of an older tool"));
    ASSERT_EQ(sign(file).status, 0);
    const auto attributes = readAttributes(file).valueOr({});
    EXPECT_TRUE(attributes.value("com.apple.cs.CodeDirectory").startsWith(QByteArray::fromHex("fade0c02")));
    EXPECT_TRUE(
        attributes.value("com.apple.cs.CodeRequirements").startsWith(QByteArray::fromHex("fade0c01")));
    EXPECT_TRUE(
        attributes.value("com.apple.cs.CodeRequirements-1").startsWith(QByteArray::fromHex("fade0c02")));
    EXPECT_TRUE(attributes.value("com.apple.cs.CodeSignature").startsWith(QByteArray::fromHex("3080")));
    EXPECT_FALSE(attributes.contains("com.apple.cs.Leftover"));
    ASSERT_EQ(adHoc({u"-f"_s, file}).status, 0);
    const auto adHocs = readAttributes(file).valueOr({});
    EXPECT_TRUE(adHocs.contains("com.apple.cs.CodeSignature"));
    EXPECT_TRUE(adHocs.value("com.apple.cs.CodeSignature").isEmpty());
    EXPECT_FALSE(adHocs.contains("com.apple.cs.CodeRequirements-1"));
}

TEST_F(SignedLayout, whatElseLayBesideTheSealIsGone)
{
    const QString app = path(u"My App.app"_s);
    bundlebuilder::makeApp(app, u"com.example.app"_s);
    writeFile(app + u"/Contents/_CodeSignature/CodeDirectory"_s, "of an older signature");
    writeFile(app + u"/Contents/_CodeSignature/notes"_s, "");
    ASSERT_EQ(adHoc({u"--deep"_s, u"-f"_s, app}).status, 0);
    EXPECT_EQ(QDir(app + u"/Contents/_CodeSignature"_s).entryList(QDir::Files),
              QStringList{u"CodeResources"_s});
}

TEST_F(SignedLayout, anotherVersionOfAFrameworkIsSignedByItsOwnPath)
{
    const QString app = path(u"My App.app"_s);
    bundlebuilder::makeApp(app, u"com.example.app"_s);
    const QString current = bundlebuilder::frameworkVersionOf(app);
    const QString other = QFileInfo(current).path() + u"/B"_s;
    writeFile(other + u"/Resources/Info.plist"_s,
              bundlebuilder::infoPropertyList(u"Inner"_s, u"com.example.Inner"_s));
    writeFile(other + u"/Inner"_s, bundlebuilder::machO({}));
    ASSERT_EQ(adHoc({app + u"/Contents/Frameworks/Inner.framework"_s}).status, 0);
    EXPECT_TRUE(QFileInfo::exists(current + u"/_CodeSignature"_s));
    EXPECT_FALSE(QFileInfo::exists(other + u"/_CodeSignature"_s));
    ASSERT_EQ(adHoc({other}).status, 0);
    EXPECT_TRUE(QFileInfo::exists(other + u"/_CodeSignature/CodeResources"_s));
    EXPECT_EQ(run(codesign, {u"--verify"_s, u"--strict"_s, other}).status, 0);
}

TEST_F(SignedLayout, theExecutableOfABundleStandsForTheBundle)
{
    const QString app = path(u"My App.app"_s);
    const QString executable = app + u"/Contents/MacOS/My App"_s;
    bundlebuilder::makeApp(app, u"com.example.app"_s);
    EXPECT_EQ(adHoc({u"-v"_s, u"--deep"_s, executable}).error,
              executable + u": signed bundle with Mach-O universal (x86_64 arm64) [com.example.app]\n"_s);
    EXPECT_TRUE(QFileInfo::exists(app + u"/Contents/_CodeSignature/CodeResources"_s));
    EXPECT_EQ(run(codesign, {u"--verify"_s, u"--strict"_s, u"-v"_s, executable}).error,
              executable + u": valid on disk\n"_s + executable
                  + u": satisfies its Designated Requirement\n"_s);
    EXPECT_EQ(run(codesign, {u"-dv"_s, executable}).error, run(codesign, {u"-dv"_s, app}).error);
    ASSERT_TRUE(QFile::link(executable, path(u"link"_s)));
    EXPECT_EQ(run(codesign, {u"--verify"_s, path(u"link"_s)}).status, 0);
    writeFile(app + u"/Contents/Resources/new"_s, "added");
    EXPECT_EQ(run(codesign, {u"--verify"_s, executable}).error,
              executable + u": a sealed resource is missing or invalid\n"_s);
    const QString framework = bundlebuilder::frameworkVersionOf(app);
    for (const QString &inner :
         {framework + u"/Inner"_s, app + u"/Contents/Frameworks/Inner.framework/Inner"_s})
        EXPECT_TRUE(run(codesign, {u"-dv"_s, inner}).error.contains(u"Format=bundle with"_s));
    writeFile(app + u"/Contents/MacOS/helper"_s, bundlebuilder::machO({}));
    EXPECT_TRUE(
        adHoc({u"-v"_s, app + u"/Contents/MacOS/helper"_s}).error.contains(u": signed Mach-O thin"_s));
}
