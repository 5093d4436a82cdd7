// The parts of a signature as bytes: images, directories, requirements, entitlements.

#include "toolchain/signatureplan.h"

#include <cstring>

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;
using bundlebuilder::MachORecipe;

namespace {

QString roundTrip(const QString &text)
{
    const auto blob = compileRequirement(text);
    return blob ? requirementText(*blob).valueOr(u"not printed"_s) : blob.error();
}

RequirementSubject subject()
{
    RequirementSubject subject;
    subject.identifier = u"com.example.app"_s;
    subject.info = {{u"CFBundleVersion"_s, u"10.15"_s}};
    subject.entitlements = {{u"a"_s, true}, {u"b"_s, false}, {u"list"_s, QVariantList{u"x"_s, u"y"_s}}};
    subject.cdHashes = {QByteArray(20, '\x11')};
    return subject;
}

bool isMet(const QString &text)
{
    const auto blob = compileRequirement(text);
    EXPECT_TRUE(blob) << blob.error().toStdString();
    return blob && meetsRequirement(*blob, subject()).valueOr(false);
}

} // namespace

TEST(MachOImages, tellWhatTheirHeadsTell)
{
    MachORecipe recipe;
    recipe.infoPropertyList = "<plist/>";
    const auto image = imageOf(bundlebuilder::machO(recipe));
    ASSERT_TRUE(image) << image.error().toStdString();
    const MachOSlice &slice = image->slices.first();
    EXPECT_EQ(slice.architecture(), u"arm64"_s);
    EXPECT_EQ(slice.fileType, MachOFileType::executable);
    EXPECT_EQ(slice.version()->sdk, 0x000c0300U);
    EXPECT_EQ(slice.uuid, "0123456789abcdef");
    EXPECT_EQ(slice.infoPropertyList->length, 8U);
    EXPECT_EQ(slice.firstSection, recipe.firstSection);
    EXPECT_EQ(image->description(), u"Mach-O thin (arm64)"_s);
    EXPECT_EQ(versionText(0x000c0300), u"12.3"_s);
}

TEST(MachOImages, cutAnywhereAreAnErrorAndNoCrash)
{
    const QByteArray whole = bundlebuilder::universalMachO();
    for (qsizetype length = 8; length < whole.size(); length += length < 0x4200 ? 1 : 97)
        EXPECT_FALSE(imageOf(whole.first(length))) << length;
    EXPECT_TRUE(imageOf(whole));
}

TEST(MachOImages, withSlicesThatOverlapAreRefused)
{
    QByteArray bytes = bundlebuilder::universalMachO();
    bytes.replace(8 + 20 + 8, 4, QByteArray::fromHex("00004000"));
    EXPECT_TRUE(imageOf(bytes).error().contains(u"overlap"_s));
}

TEST(MachOImages, withACommandThatOverflowsAreRefused)
{
    QByteArray bytes = bundlebuilder::thinMachO(bundlebuilder::arm64);
    bytes.replace(32 + 4, 4, QByteArray::fromHex("f8ffffff"));
    EXPECT_EQ(imageOf(bytes).error(), u"load command 0 does not fit in its place"_s);
}

TEST(SuperBlobs, lieOneAfterTheOtherByTheirTypes)
{
    SuperBlob blobs;
    blobs.set(slot::cms, makeBlob(magic::wrapper, {}));
    blobs.set(slot::codeDirectory, makeBlob(magic::codeDirectory, "directory"));
    const QByteArray bytes = blobs.bytes();
    EXPECT_EQ(bytes.toHex(),
              "fade0cc0000000350000000200000000" // magic, length, count, type 0
              "0000001c000100000000002d" // its offset; type 0x10000 and its offset
              "fade0c02000000116469726563746f7279fade0b0100000008");
    const auto read = SuperBlob::parse(bytes, magic::embeddedSignature);
    ASSERT_TRUE(read) << read.error().toStdString();
    EXPECT_EQ(read->bytes(), bytes);
    EXPECT_EQ(read->blobs().first().type, slot::codeDirectory);
}

TEST(SuperBlobs, thatClaimMoreThanThereIsAreRefused)
{
    const QByteArray huge = QByteArray::fromHex("fade0cc0800000000000000100000000000000140000000000000000");
    EXPECT_TRUE(SuperBlob::parse(huge, magic::embeddedSignature).error().contains(u"2147483648 bytes"_s));
}

TEST(SuperBlobs, whoseBlobsOverlapOrStandTwiceAreRefused)
{
    const auto withIndex = [](const char *index) {
        return QByteArray::fromHex("fade0cc00000002c00000002") + QByteArray::fromHex(index)
            + QByteArray::fromHex("fade0b0100000010fade0b0100000008");
    };
    EXPECT_TRUE(SuperBlob::parse(withIndex("000000000000001c0000000200000024"), magic::embeddedSignature)
                    .error()
                    .contains(u"overlap"_s));
    EXPECT_TRUE(SuperBlob::parse(withIndex("000000020000001c0000000200000024"), magic::embeddedSignature)
                    .error()
                    .contains(u"two blobs"_s));
}

TEST(CodeDirectories, haveTheOldestVersionThatHoldsTheirFields)
{
    CodeDirectoryFields fields;
    EXPECT_EQ(fields.neededVersion(), 0x20100U);
    fields.team = u"TEAM"_s;
    EXPECT_EQ(fields.neededVersion(), 0x20200U);
    fields.codeLimit = 0x100000000;
    EXPECT_EQ(fields.neededVersion(), 0x20300U);
    fields.execSegmentLimit = 1;
    EXPECT_EQ(fields.neededVersion(), 0x20400U);
    fields.runtime = 1;
    EXPECT_EQ(fields.neededVersion(), 0x20500U);
}

TEST(CodeDirectories, comeBackAsTheyWereMade)
{
    CodeDirectoryFields fields;
    fields.identifier = u"com.example"_s;
    fields.team = u"A1B2C3D4E5"_s;
    fields.flags = codeflag::runtime;
    fields.runtime = 0x000c0300;
    fields.pageShift = 12;
    fields.codeLimit = 5000;
    const QByteArray special(32, 's');
    const QByteArray blob = codeDirectoryHead(fields, {{2, special}}) + QByteArray(64, 'c');
    const auto directory = CodeDirectory::parse(blob);
    ASSERT_TRUE(directory) << directory.error().toStdString();
    EXPECT_EQ(directory->fields().identifier, fields.identifier);
    EXPECT_EQ(directory->fields().team, fields.team);
    EXPECT_EQ(directory->codeSlotCount(), 2U);
    EXPECT_EQ(directory->specialSlot(2), special);
    EXPECT_FALSE(directory->hasSpecialSlot(1));
    EXPECT_EQ(codeFlagsText(directory->fields().flags), u"runtime"_s);
    for (qsizetype length = 0; length < blob.size(); ++length)
        EXPECT_FALSE(CodeDirectory::parse(blob.first(length)));
}

TEST(Requirements, theDesignatedOneOfADeveloperIdIsTheKnownBytes)
{
    const QByteArray expected = QByteArray::fromHex(
        "fade0c0000000090000000010000000600000002000000046e6f6465000000060000000f000000060000000e00000001"
        "0000000a2a864886f7636406020600000000000000000006"
        "0000000e000000000000000a2a864886f7636406010d0000000000000000000b000000000000000a"
        "7375626a6563742e4f550000000000010000000a485837373339473846580000");
    const auto text = requirementText(expected);
    ASSERT_TRUE(text) << text.error().toStdString();
    EXPECT_EQ(*text,
              u"identifier node and anchor apple generic and certificate 1[field.1.2.840.113635.100.6.2.6] "
              u"/* exists */ and certificate leaf[field.1.2.840.113635.100.6.1.13] /* exists */ and "
              u"certificate leaf[subject.OU] = HX7739G8FX"_s);
    const QByteArray set = requirementSetBlob({{RequirementType::designated, expected}});
    EXPECT_EQ(set.size(), 0xa4);
    EXPECT_TRUE(digestOf(set, HashType::sha256).toHex().startsWith("1269c636692bd36c"));
}

TEST(Requirements, theEmptySetHasTheKnownDigests)
{
    EXPECT_EQ(requirementSetBlob({}).toHex(), "fade0c010000000c00000000");
    EXPECT_TRUE(digestOf(requirementSetBlob({}), HashType::sha1).toHex().startsWith("3a75f6db"));
    EXPECT_TRUE(digestOf(requirementSetBlob({}), HashType::sha256).toHex().startsWith("987920904eab650e"));
}

TEST(Requirements, comeBackFromTheirBinaryFormAsTheSameText)
{
    for (const QString &text : {u"always"_s,
                                u"identifier \"com.example.app\""_s,
                                u"identifier app"_s,
                                u"identifier \"host\""_s,
                                u"identifier \"a \\\" and \\\\ b\""_s,
                                u"identifier 0x00ff"_s,
                                u"anchor apple"_s,
                                u"anchor apple \"X\" and always"_s,
                                u"anchor apple generic and (identifier a or identifier b)"_s,
                                u"identifier a and identifier b or identifier c"_s,
                                u"! identifier a"_s,
                                u"! (always and never)"_s,
                                u"cdhash H\"00112233445566778899aabbccddeeff00112233\""_s,
                                u"certificate root = H\"00112233445566778899aabbccddeeff00112233\""_s,
                                u"certificate leaf[subject.CN] = \"Apple Development: X\""_s,
                                u"certificate 1[field.1.2.840.113635.100.6.2.6] /* exists */"_s,
                                u"certificate leaf[policy.1.2.3] /* exists */"_s,
                                u"certificate -2 trusted"_s,
                                u"anchor trusted"_s,
                                u"info[CFBundleVersion] >= \"10.9\""_s,
                                u"info[A] = a*"_s,
                                u"info[A] = *a"_s,
                                u"info[A] = *a*"_s,
                                u"entitlement[com.apple.security.app-sandbox] absent"_s,
                                u"platform = 2"_s,
                                u"notarized"_s,
                                u"certificate leaf[timestamp.1.2.3] < timestamp \"20260131000000Z\""_s})
        EXPECT_EQ(roundTrip(text), text);
}

TEST(Requirements, takeCommentsAndTheShorterForms)
{
    EXPECT_EQ(roundTrip(u"cert leaf[field.1.2.3] exists // behind\n and # more\n true /* x */"_s),
              u"certificate leaf[field.1.2.3] /* exists */ and always"_s);
    EXPECT_EQ(roundTrip(u"identifier = com.example.app"_s), u"identifier \"com.example.app\""_s);
    EXPECT_EQ(roundTrip(u"anchor = H\"00112233445566778899aabbccddeeff00112233\""_s),
              u"certificate root = H\"00112233445566778899aabbccddeeff00112233\""_s);
}

TEST(Requirements, thatMeanNothingAreAnErrorWithItsPlace)
{
    for (const QString &text :
         {QString(), u"identifier"_s, u"identifier a and"_s, u"(identifier a"_s,
          u"identifier a identifier b"_s, u"cdhash H\"0011\""_s, u"certificate leaf[field.x] exists"_s,
          u"certificate leaf[nonsense] exists"_s, u"identifier \"open"_s, u"@"_s,
          u"info[A] < timestamp \"never\""_s, QString(100'000, u'(')})
        EXPECT_TRUE(compileRequirement(text).error().contains(u"at character"_s))
            << text.left(40).toStdString();
    EXPECT_FALSE(compileRequirementSet(u"identifier a"_s));
    EXPECT_TRUE(compileRequirementSet(u"host => anchor apple designated => identifier a"_s));
}

TEST(Requirements, areJudgedByWhatTheCodeIs)
{
    EXPECT_TRUE(isMet(u"identifier \"com.example.app\""_s));
    EXPECT_FALSE(isMet(u"identifier other"_s));
    EXPECT_TRUE(isMet(u"identifier other or ! never"_s));
    EXPECT_FALSE(isMet(u"identifier \"com.example.app\" and never"_s));
    EXPECT_TRUE(isMet(u"info[CFBundleVersion] > \"10.9\""_s)); // by number, not by letter
    EXPECT_TRUE(isMet(u"info[CFBundleVersion] = 10*"_s));
    EXPECT_FALSE(isMet(u"info[Missing] exists"_s));
    EXPECT_TRUE(isMet(u"info[Missing] absent"_s));
    EXPECT_TRUE(isMet(u"entitlement[a] exists"_s));
    EXPECT_FALSE(isMet(u"entitlement[b] exists"_s));
    EXPECT_TRUE(isMet(u"entitlement[list] = y"_s));
    EXPECT_TRUE(isMet(u"cdhash H\"1111111111111111111111111111111111111111\""_s));
    EXPECT_FALSE(isMet(u"anchor apple generic"_s));
    EXPECT_FALSE(isMet(u"certificate leaf[subject.CN] exists"_s));
}

TEST(Requirements, damagedInTheirBinaryFormAreAnErrorAndNoCrash)
{
    const QByteArray whole = *compileRequirement(u"anchor apple generic and identifier \"abc\""_s);
    for (qsizetype length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(requirementText(whole.first(length)));
        EXPECT_FALSE(meetsRequirement(whole.first(length), subject()));
    }
    const QByteArray deep = makeBlob(
        magic::requirement, QByteArray::fromHex("00000001") + QByteArray::fromHex("00000009").repeated(5000));
    EXPECT_FALSE(requirementText(deep));
    EXPECT_FALSE(meetsRequirement(deep, subject()));
}

TEST(EntitlementsAsDer, areTheKnownBytes)
{
    const QVariantMap entitlements{
        {u"a"_s, QVariantMap{{u"z"_s, false}}}, {u"b"_s, QVariantList{u"x"_s, 1}}, {u"c"_s, 300}};
    const auto der = entitlementsAsDer(entitlements);
    ASSERT_TRUE(der) << der.error().toStdString();
    EXPECT_EQ(der->toHex(),
              "702a020101b025300d0c0161b00830060c017a010100300b0c016230060c017802010130070c01630202012c");
    EXPECT_EQ(entitlementsAsDer({})->toHex(), "7005020101b000");
    EXPECT_TRUE(entitlementsFromDer(*der));
    for (qsizetype length = 0; length < der->size(); ++length)
        EXPECT_FALSE(entitlementsFromDer(der->first(length)));
    EXPECT_FALSE(entitlementsAsDer({{u"d"_s, QDateTime::currentDateTime()}}));
}

TEST(EntitlementsAsDer, inTheFormOfMacOS11AreReadToo)
{
    const auto read = entitlementsFromDer(QByteArray::fromHex("310f30060c016101010130050c01620c00"));
    ASSERT_TRUE(read) << read.error().toStdString();
    EXPECT_EQ(*read, (QVariantMap{{u"a"_s, true}, {u"b"_s, QString()}}));
    EXPECT_FALSE(entitlementsFromDer(QByteArray::fromHex("310830060c016101010100"))); // more behind it
}

TEST(Entitlements, endWhereTheirListEnds)
{
    const QByteArray list = "  <plist version=\"1.0\"><dict><key>a</key><true/></dict></plist>";
    EXPECT_EQ(readEntitlements(list + "\n</xml>").valueOr({}), (QVariantMap{{u"a"_s, true}}));
    EXPECT_FALSE(readEntitlements(list.chopped(1)));
    EXPECT_FALSE(readEntitlements("<plist version=\"1.0\"><array/></plist>"));
}

TEST(PageDigests, areThoseOfEachPageWhateverTheNumberOfThreads)
{
    const QByteArray code = QByteArray("0123456789").repeated(500'000);
    const CodeReader reader = [&code](quint64 offset, char *buffer, quint64 length) {
        std::memcpy(buffer, code.constData() + offset, length);
        return true;
    };
    QByteArray all(qsizetype(20 * ((code.size() + 4095) / 4096)), '\0');
    const PageSink sink = [&all](const PageRun &run) {
        std::memcpy(all.data() + 20 * run.firstPage, run.digests.first().constData(),
                    std::size_t(run.digests.first().size()));
        return true;
    };
    ASSERT_TRUE(digestPages(quint64(code.size()), 12, {HashType::sha1}, reader, sink));
    for (qsizetype page = 0; page * 20 < all.size(); ++page)
        ASSERT_EQ(all.mid(page * 20, 20), digestOf(code.mid(page * 4096, 4096), HashType::sha1));
}
