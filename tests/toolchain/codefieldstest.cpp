// What codesign writes into a code directory, for each kind of item.

#include "formats/codesignature/digest.h"
#include "formats/codesignature/entitlementsder.h"
#include "formats/codesignature/signaturereader.h"
#include "toolchain/machobuilder.h"
#include "toolchain/toolfixture.h"

using namespace Qt::StringLiterals;
using namespace toolchain;
using namespace toolchain::codesignature;
using bundlebuilder::MachORecipe;
using bundlebuilder::writeFile;

namespace {

namespace platformnumber {
constexpr std::uint32_t macOS = 1;
constexpr std::uint32_t iOS = 2;
constexpr std::uint32_t tvOS = 3;
constexpr std::uint32_t watchOS = 4;
} // namespace platformnumber

constexpr std::uint32_t library = 6;
constexpr std::uint32_t loadableBundle = 8;

constexpr std::uint32_t packed(std::uint32_t major, std::uint32_t minor, std::uint32_t patch = 0)
{
    return major << 16 | minor << 8 | patch;
}

class CodeFields : public ToolFixture {
protected:
    /// Signs some bytes as a file of that name, and answers what the native slice's signature holds.
    [[nodiscard]] SignedCode signedAs(const QString &name, const QByteArray &bytes,
                                      const QStringList &options = {}) const
    {
        writeFile(path(name), bytes);
        const ToolResult result =
            run(codesign, QStringList{u"-f"_s, u"-s"_s, u"-"_s} + options + QStringList{path(name)});
        EXPECT_EQ(result.status, 0) << result.error.toStdString();
        auto code = readCodeSignature(path(name));
        EXPECT_TRUE(code) << code.error().toStdString();
        return *std::move(code);
    }
    [[nodiscard]] CodeDirectoryFields fieldsOf(const MachORecipe &recipe,
                                               const QStringList &options = {}) const
    {
        return signedAs(u"code"_s, bundlebuilder::machO(recipe), options).native().best().fields();
    }
    [[nodiscard]] QString identifierOf(const QString &name, const QByteArray &bytes,
                                       const QStringList &options = {}) const
    {
        return signedAs(name, bytes, options).native().primary().fields().identifier;
    }
    [[nodiscard]] QList<HashType> digestsOf(const QByteArray &bytes) const
    {
        QList<HashType> types;
        const SignedCode code = signedAs(u"code"_s, bytes);
        for (const SignedPart &part : code.parts) {
            types.clear();
            for (const CodeDirectory &directory : part.directories)
                types.append(directory.fields().hashType);
        }
        return types;
    }
    [[nodiscard]] QList<HashType> digestsFrom(std::uint32_t platform, std::uint32_t minimumSystem) const
    {
        return digestsOf(bundlebuilder::machO({.platform = platform, .minimumSystem = minimumSystem}));
    }
};

QByteArray withInfo(const QByteArray &entry)
{
    MachORecipe recipe;
    recipe.infoPropertyList = "<plist><dict>" + entry + "</dict></plist>";
    return bundlebuilder::machO(recipe);
}

const QList<HashType> both{HashType::sha1, HashType::sha256};
const QList<HashType> one{HashType::sha256};

} // namespace

TEST_F(CodeFields, anIdentifierIsTheNameWithoutExtensionAndFurtherNumbers)
{
    makeIdentity();
    for (const auto &[name, identifier] :
         QList<std::pair<QString, QString>>{{u"libfrotz7.3.5.dylib"_s, u"libfrotz7"_s},
                                            {u"mumble.77.plugin"_s, u"mumble.77"_s},
                                            {u"rumble.rb"_s, u"rumble"_s},
                                            {u"Safent_0.9.0_aarch64.dmg"_s, u"Safent_0.9.0_aarch64"_s},
                                            {u"My App 1.2.dmg"_s, u"My App 1"_s},
                                            {u"7zip.1.2"_s, u"7zip.1.2"_s},
                                            {u"plain"_s, u"plain"_s}}) {
        writeFile(path(name), "anything");
        EXPECT_EQ(run(codesign, {u"-v"_s, u"-s"_s, identity, u"--timestamp=none"_s, path(name)}).error,
                  path(name) + u": signed generic [%1]\n"_s.arg(identifier));
    }
}

TEST_F(CodeFields, anAdHocIdentifierWithoutADotTellsTheBuildToo)
{
    EXPECT_EQ(identifierOf(u"code"_s, bundlebuilder::machO({})),
              u"code-5555494430313233343536373839616263646566"_s);
    MachORecipe nameless;
    nameless.hasUuid = false;
    const QByteArray bytes = bundlebuilder::machO(nameless);
    EXPECT_EQ(
        identifierOf(u"code"_s, bytes),
        u"code-"_s
            + QString::fromLatin1(digestOf(bytes.first(32 + 72 + 80 + 72 + 24), HashType::sha1).toHex()));
    EXPECT_EQ(identifierOf(u"code.1"_s, bytes), u"code.1"_s);
    EXPECT_EQ(identifierOf(u"code"_s, bytes, {u"--prefix"_s, u"com.example."_s}), u"com.example.code"_s);
    EXPECT_EQ(identifierOf(u"code.1"_s, bytes, {u"--prefix"_s, u"com.example."_s}), u"code.1"_s);
    EXPECT_EQ(identifierOf(u"code"_s, bytes, {u"-i"_s, u"told"_s}), u"told"_s);
}

TEST_F(CodeFields, anIdentifierInTheFilesOwnInfoPropertyListCounts)
{
    const QByteArray name = "<key>CFBundleName</key><string>Named</string>";
    const QByteArray identifier = "<key>CFBundleIdentifier</key><string>com.example.x</string>";
    EXPECT_EQ(identifierOf(u"code"_s, withInfo(name + identifier)), u"com.example.x"_s);
    EXPECT_EQ(identifierOf(u"code"_s, withInfo(name)), u"Named"_s); // no build behind what a list tells
    const SignedCode code = signedAs(u"code"_s, withInfo(name));
    EXPECT_EQ(code.native().best().specialSlot(slot::infoPropertyList),
              digestOf("<plist><dict>" + name + "</dict></plist>", HashType::sha256));
}

TEST_F(CodeFields, oldSystemsGetBothDigestsAndNewOnesSha256Alone)
{
    using namespace platformnumber;
    EXPECT_EQ(digestsFrom(macOS, packed(10, 11, 3)), both);
    EXPECT_EQ(digestsFrom(macOS, packed(10, 11, 4)), one);
    EXPECT_EQ(digestsFrom(iOS, packed(10, 3)), both);
    EXPECT_EQ(digestsFrom(iOS, packed(11, 0)), one);
    EXPECT_EQ(digestsFrom(tvOS, packed(10, 2)), both);
    EXPECT_EQ(digestsFrom(watchOS, packed(11, 0)), both);
    EXPECT_EQ(digestsFrom(watchOS, packed(12, 0)), one);
    EXPECT_EQ(digestsOf("no code"), one);
    const QByteArray oldSlice =
        bundlebuilder::machO({.architecture = bundlebuilder::x86_64, .minimumSystem = packed(10, 9)});
    EXPECT_EQ(digestsOf(bundlebuilder::universalOf({oldSlice, bundlebuilder::machO({})})), both);
}

TEST_F(CodeFields, pagesAreLargeOnArmAlone)
{
    using namespace bundlebuilder;
    EXPECT_EQ(fieldsOf({.architecture = arm64}).pageShift, 14);
    EXPECT_EQ(fieldsOf({.architecture = x86_64}).pageShift, 12);
    EXPECT_EQ(fieldsOf({.architecture = i386}).pageShift, 12);
    EXPECT_EQ(fieldsOf({.architecture = arm64, .platform = platformnumber::tvOS}).pageShift, 12);
    EXPECT_EQ(signedAs(u"file"_s, "text").native().best().fields().pageShift, 0);
}

TEST_F(CodeFields, theExecutableSegmentIsTextWithItsLengthInTheFile)
{
    const CodeDirectoryFields program = fieldsOf({});
    EXPECT_EQ(program.execSegmentBase, 0U);
    EXPECT_EQ(program.execSegmentLimit, 0x4000U);
    EXPECT_EQ(program.execSegmentFlags, execseg::mainBinary);
    EXPECT_EQ(fieldsOf({.fileType = library}).execSegmentFlags, 0U);
    const CodeDirectoryFields old = fieldsOf({.platform = 0}); // no command that tells a version
    EXPECT_EQ(old.execSegmentLimit, 0U);
    EXPECT_EQ(old.neededVersion(), 0x20100U);
}

TEST_F(CodeFields, entitlementsSetBitsOfTheExecutableSegment)
{
    for (const auto &[key, flag] :
         QList<std::pair<QString, quint64>>{{u"get-task-allow"_s, 0x10},
                                            {u"run-unsigned-code"_s, 0x10},
                                            {u"com.apple.private.cs.debugger"_s, 0x20},
                                            {u"dynamic-codesigning"_s, 0x40},
                                            {u"com.apple.private.skip-library-validation"_s, 0x80},
                                            {u"com.apple.private.amfi.can-load-cdhash"_s, 0x100},
                                            {u"com.apple.private.amfi.can-execute-cdhash"_s, 0x200},
                                            {u"com.apple.security.get-task-allow"_s, 0}}) {
        EXPECT_EQ(execSegmentFlagsFor({{key, true}}), flag) << key.toStdString();
        EXPECT_EQ(execSegmentFlagsFor({{key, false}}), 0U) << key.toStdString();
    }
    writeFile(path(u"E.plist"_s), "<plist><dict><key>get-task-allow</key><true/></dict></plist>");
    const QStringList options{u"--entitlements"_s, path(u"E.plist"_s)};
    EXPECT_EQ(fieldsOf({}, options).execSegmentFlags, 0x11U);
}

TEST_F(CodeFields, theRuntimesVersionIsThatOfTheSdk)
{
    const QStringList hardened{u"-o"_s, u"runtime"_s};
    EXPECT_EQ(fieldsOf({}, hardened).runtime, 0x000c0300U);
    EXPECT_EQ(fieldsOf({}, hardened).neededVersion(), 0x20500U);
    EXPECT_EQ(fieldsOf({}).runtime, 0U);
    const CodeDirectory file = signedAs(u"file"_s, "text", hardened).native().best();
    EXPECT_EQ(file.fields().flags, codeflag::runtime | codeflag::adhoc);
    EXPECT_EQ(file.fields().runtime, 0U);
    EXPECT_EQ(file.version(), 0x20100U);
}

TEST_F(CodeFields, entitlementsAreKeptAsTheyAreAndByProgramsAlone)
{
    const QByteArray list = "  <?xml version=\"1.0\"?>\n<plist><dict><key>a</key><true/></dict></plist>";
    writeFile(path(u"E.plist"_s), list);
    const QStringList options{u"--entitlements"_s, path(u"E.plist"_s)};
    const SignedPart program = signedAs(u"code"_s, bundlebuilder::machO({}), options).native();
    EXPECT_EQ(program.entitlements(), list);
    for (const QString &place : {u"-"_s, u":-"_s})
        EXPECT_EQ(run(codesign, {u"-d"_s, u"--entitlements"_s, place, path(u"code"_s)}).output,
                  QString::fromUtf8(list));
    ASSERT_EQ(run(codesign, {u"-d"_s, u"--entitlements"_s, path(u"shown"_s), path(u"code"_s)}).status, 0);
    EXPECT_EQ(bundlebuilder::readFile(path(u"shown"_s)), list);
    EXPECT_EQ(blobContent(program.blobs.blob(slot::entitlementsDer)).toByteArray().toHex(),
              "700d020101b00830060c01610101ff");
    EXPECT_EQ(program.best().specialSlot(slot::entitlements),
              digestOf(program.blobs.blob(slot::entitlements), HashType::sha256)); // with its header
    for (const std::uint32_t type : {library, loadableBundle}) {
        const SignedPart other =
            signedAs(u"code"_s, bundlebuilder::machO({.fileType = type}), options).native();
        EXPECT_TRUE(other.entitlements().isEmpty());
        EXPECT_EQ(other.best().specialSlotCount(), 2U);
    }
    EXPECT_TRUE(signedAs(u"file"_s, "text", options).native().entitlements().isEmpty());
}

TEST_F(CodeFields, eachOptionWordHasItsFlag)
{
    for (const auto &[word, flag] : QList<std::pair<QString, quint32>>{{u"host"_s, 0x1},
                                                                       {u"hard"_s, 0x100},
                                                                       {u"kill"_s, 0x200},
                                                                       {u"expires"_s, 0x400},
                                                                       {u"restrict"_s, 0x800},
                                                                       {u"enforcement"_s, 0x1000},
                                                                       {u"library"_s, 0x2000},
                                                                       {u"runtime"_s, 0x10000},
                                                                       {u"linker-signed"_s, 0x20000}})
        EXPECT_EQ(fieldsOf({}, {u"-o"_s, word}).flags, flag | codeflag::adhoc) << word.toStdString();
    EXPECT_EQ(fieldsOf({}, {u"-o"_s, u"hard,kill"_s}).flags, 0x302U);
}

TEST_F(CodeFields, flagsInTheInfoPropertyListCountWhereTheCommandLineTellsNone)
{
    const QString app = path(u"My App.app"_s);
    for (const QByteArray flags : {"hard,kill", "768"}) {
        bundlebuilder::makeApp(app, u"com.example.app"_s);
        writeFile(
            app + u"/Contents/Info.plist"_s,
            "<plist><dict><key>CFBundleExecutable</key><string>My App</string><key>CSFlags</key><string>"
                + flags + "</string></dict></plist>");
        ASSERT_EQ(run(codesign, {u"-f"_s, u"--deep"_s, u"-s"_s, u"-"_s, app}).status, 0);
        EXPECT_EQ(readCodeSignature(app)->native().best().fields().flags, 0x302U) << flags.toStdString();
        ASSERT_EQ(run(codesign, {u"-f"_s, u"-s"_s, u"-"_s, u"-o"_s, u"runtime"_s, app}).status, 0);
        EXPECT_EQ(readCodeSignature(app)->native().best().fields().flags, 0x10002U);
    }
}

TEST_F(CodeFields, onlyTheTeamOfAnAuthorityThatIsKnownIsRecorded)
{
    makeIdentity();
    const SignedCode code = signedAs(u"code"_s, bundlebuilder::machO({}), {u"-s"_s, identity});
    EXPECT_EQ(code.native().best().fields().team, u"A1B2C3D4E5"_s);
    EXPECT_EQ(signedAs(u"file"_s, "text", {u"-s"_s, identity}).native().best().version(), 0x20200U);
    EXPECT_TRUE(fieldsOf({}).team.isEmpty());
}
