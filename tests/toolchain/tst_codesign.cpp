#include "platform/propertylist/propertylist.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

const QString seal = u"/Contents/_CodeSignature/CodeResources"_s;

class Codesign : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        makeIdentity();
        bundlebuilder::makeApp(app(), u"com.example.app"_s);
    }

    [[nodiscard]] QString app() const { return path(u"My App.app"_s); }
    [[nodiscard]] QString contents(const QString &name) const { return app() + u"/Contents/"_s + name; }

    static QVariantMap sealedFiles(const QString &sealPath, const QString &key = u"files2"_s)
    {
        return platform::propertyListFromData(readFile(sealPath)).value.toMap().value(key).toMap();
    }

    /// Every path below Contents that a seal should name.
    [[nodiscard]] QStringList expectedPaths() const
    {
        QStringList paths;
        QDirIterator entries(contents({}), QDir::Files | QDir::Hidden | QDir::System,
                             QDirIterator::Subdirectories);
        while (entries.hasNext())
            paths.append(entries.next().mid(contents({}).size()));
        for (const QString &omitted : {u"Info.plist"_s, u"MacOS/My App"_s, u"Resources/.DS_Store"_s})
            EXPECT_TRUE(paths.removeOne(omitted)) << omitted.toStdString();
        paths.append(
            u"Frameworks/Inner.framework/Versions/Current"_s); // a link to a folder is no file to the walk
        paths.removeDuplicates();
        paths.sort();
        return paths;
    }
};

QByteArray digest(const QByteArray &bytes, QCryptographicHash::Algorithm algorithm)
{
    return QCryptographicHash::hash(bytes, algorithm);
}

} // namespace

TEST_F(Codesign, sealsEveryFileButTheExecutableAndWhatTheRulesOmit)
{
    const QStringList expected = expectedPaths();
    const ToolResult result = sign(app());
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(sealedFiles(app() + seal).keys(), expected);
}

TEST_F(Codesign, theSealHoldsTheDigestsOfTheFiles)
{
    ASSERT_EQ(sign(app()).status, 0);
    for (const QString &file : {u"Resources/Größe.txt"_s, u"Frameworks/Inner.framework/Versions/A/Inner"_s}) {
        const QVariantMap entry = sealedFiles(app() + seal).value(file).toMap();
        EXPECT_EQ(entry.value(u"hash"_s).toByteArray(),
                  digest(readFile(contents(file)), QCryptographicHash::Sha1));
        EXPECT_EQ(entry.value(u"hash2"_s).toByteArray(),
                  digest(readFile(contents(file)), QCryptographicHash::Sha256));
    }
}

TEST_F(Codesign, theSealHoldsLinksByTheirTargets)
{
    ASSERT_EQ(sign(app()).status, 0);
    const QVariantMap link = sealedFiles(app() + seal).value(u"Frameworks/Inner.framework/Inner"_s).toMap();
    EXPECT_EQ(link, (QVariantMap{{u"symlink"_s, u"Versions/Current/Inner"_s}}));
}

TEST_F(Codesign, theFirstVersionOfTheSealNamesResourcesAlone)
{
    ASSERT_EQ(sign(app()).status, 0);
    const QVariantMap files = sealedFiles(app() + seal, u"files"_s);
    EXPECT_EQ(files.keys(),
              (QStringList{u"Resources/.DS_Store"_s, u"Resources/Größe.txt"_s,
                           u"Resources/en.lproj/Main.strings"_s}));
    EXPECT_EQ(files.value(u"Resources/Größe.txt"_s).toByteArray(),
              digest("resource", QCryptographicHash::Sha1));
    const QVariantMap localized = files.value(u"Resources/en.lproj/Main.strings"_s).toMap();
    EXPECT_EQ(localized.value(u"hash"_s).toByteArray(), digest("localized", QCryptographicHash::Sha1));
    EXPECT_TRUE(localized.value(u"optional"_s).toBool());
}

TEST_F(Codesign, theSealCarriesItsRules)
{
    ASSERT_EQ(sign(app()).status, 0);
    EXPECT_EQ(sealedFiles(app() + seal, u"rules"_s).value(u"^Resources/"_s), QVariant(true));
    const QVariantMap omission = sealedFiles(app() + seal, u"rules2"_s).value(u"^Info\\.plist$"_s).toMap();
    EXPECT_EQ(omission, (QVariantMap{{u"omit"_s, true}, {u"weight"_s, 20.0}}));
}

TEST_F(Codesign, aSealWithSha256AloneIsMadeOnDemand)
{
    const ToolResult result = run(codesign, {u"-s"_s, identity, u"--digest-algorithm=sha256"_s, app()});
    ASSERT_EQ(result.status, 0);
    const QVariantMap entry = sealedFiles(app() + seal).value(u"Resources/Größe.txt"_s).toMap();
    EXPECT_EQ(entry.keys(), QStringList{u"hash2"_s});
}

TEST_F(Codesign, saysWhatItDidWhenItIsVerbose)
{
    const ToolResult result = sign(app());
    EXPECT_EQ(result.error,
              app() + u": signed bundle with Mach-O universal (x86_64 arm64) [com.example.app]\n"_s);
    EXPECT_EQ(run(codesign, {u"-f"_s, u"-s"_s, identity, app()}).error, QString());
}

TEST_F(Codesign, aSealedBundleIsLeftAloneWithoutForce)
{
    ASSERT_EQ(sign(app()).status, 0);
    const QByteArray first = readFile(app() + seal);
    writeFile(contents(u"Resources/added"_s), "later");
    const ToolResult again = sign(app());
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.error, app() + u": is already signed\n"_s);
    EXPECT_EQ(readFile(app() + seal), first);
}

TEST_F(Codesign, forceReplacesASeal)
{
    ASSERT_EQ(sign(app()).status, 0);
    writeFile(contents(u"Resources/added"_s), "later");
    ASSERT_EQ(sign(app(), {u"--force"_s}).status, 0);
    EXPECT_TRUE(sealedFiles(app() + seal).contains(u"Resources/added"_s));
}

TEST_F(Codesign, aStapledTicketIsNotSealed)
{
    writeFile(contents(u"CodeResources"_s), "a ticket");
    ASSERT_EQ(sign(app()).status, 0);
    EXPECT_FALSE(sealedFiles(app() + seal).contains(u"CodeResources"_s));
}

TEST_F(Codesign, aFrameworkIsSealedInItsVersionFolder)
{
    const QString version = bundlebuilder::frameworkVersionOf(app());
    const ToolResult result = sign(version);
    EXPECT_EQ(result.error, version + u": signed bundle with Mach-O thin (arm64) [com.example.Inner]\n"_s);
    EXPECT_EQ(sealedFiles(version + u"/_CodeSignature/CodeResources"_s).keys(),
              QStringList{u"Resources/Info.plist"_s});
    ASSERT_EQ(sign(app()).status, 0);
    EXPECT_TRUE(sealedFiles(app() + seal)
                    .contains(u"Frameworks/Inner.framework/Versions/A/_CodeSignature/CodeResources"_s));
}

TEST_F(Codesign, deepSealsWhatIsInsideFirst)
{
    ASSERT_EQ(sign(app(), {u"--force"_s, u"--deep"_s}).status, 0);
    const QByteArray inner =
        readFile(bundlebuilder::frameworkVersionOf(app()) + u"/_CodeSignature/CodeResources"_s);
    ASSERT_FALSE(inner.isEmpty());
    const QVariantMap entry =
        sealedFiles(app() + seal)
            .value(u"Frameworks/Inner.framework/Versions/A/_CodeSignature/CodeResources"_s)
            .toMap();
    EXPECT_EQ(entry.value(u"hash2"_s).toByteArray(), digest(inner, QCryptographicHash::Sha256));
}

TEST_F(Codesign, anAppWhoseExecutableIsAScriptIsSealedAsGeneric)
{
    writeFile(contents(u"MacOS/My App"_s), "#!/bin/sh\n");
    EXPECT_EQ(sign(app()).error, app() + u": signed bundle with generic [com.example.app]\n"_s);
}

TEST_F(Codesign, aMachOFileIsCheckedAndLeftAsItIs)
{
    using namespace bundlebuilder;
    for (const QByteArray &bytes :
         {thinMachO(x86_64), thinMachO(arm64), thinMachO(i386), thinMachO(powerPC, ByteOrder::Big),
          universalMachO(), universalMachO(true)}) {
        writeFile(path(u"lib.dylib"_s), bytes);
        const ToolResult result = sign(path(u"lib.dylib"_s));
        EXPECT_EQ(result.status, 0) << bytes.toHex().toStdString();
        EXPECT_EQ(result.error,
                  path(u"lib.dylib"_s)
                      + u": checked; this edition writes no signature into Mach-O files\n"_s);
        EXPECT_EQ(readFile(path(u"lib.dylib"_s)), bytes);
    }
}

TEST_F(Codesign, refusesFilesThatAreNoWholeMachO)
{
    const QByteArray universal = bundlebuilder::universalMachO();
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("#!/bin/sh\n"), QByteArray::fromHex("cffaedfe"), universal.left(200),
          universal.chopped(1), universal.left(300), bundlebuilder::thinMachO(bundlebuilder::arm64).left(31),
          QByteArray::fromHex("cafebabe0000003400000000"), QByteArray::fromHex("cafebabe00000000")}) {
        writeFile(path(u"file"_s), bytes);
        const ToolResult result = sign(path(u"file"_s));
        EXPECT_EQ(result.status, 1) << bytes.left(16).toHex().toStdString();
        EXPECT_EQ(result.error,
                  path(u"file"_s) + u": bundle format unrecognized, invalid, or unsuitable\n"_s);
    }
}

TEST_F(Codesign, refusesFoldersThatAreNoBundles)
{
    const QString complaint = u": bundle format unrecognized, invalid, or unsuitable\n"_s;
    writeFile(path(u"plain/file"_s), "bytes");
    EXPECT_EQ(sign(path(u"plain"_s)).error, path(u"plain"_s) + complaint);
    ASSERT_TRUE(QFile::remove(contents(u"MacOS/My App"_s)));
    EXPECT_EQ(sign(app()).error, app() + complaint);
    writeFile(contents(u"Info.plist"_s), "not a list <");
    EXPECT_EQ(sign(app()).error, app() + complaint);
    EXPECT_FALSE(QFileInfo::exists(app() + seal));
}

TEST_F(Codesign, refusesWhatIsOnlyCalledADiskImage)
{
    writeFile(path(u"image.dmg"_s), "koly");
    const ToolResult result = sign(path(u"image.dmg"_s));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error,
              path(u"image.dmg"_s) + u": bundle format unrecognized, invalid, or unsuitable\n"_s);
}

TEST_F(Codesign, aMissingItemIsAnError)
{
    const ToolResult result = sign(path(u"none.app"_s));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, path(u"none.app"_s) + u": No such file or directory\n"_s);
}

TEST_F(Codesign, anUnknownIdentityIsAnErrorAndNothingIsSealed)
{
    const ToolResult result = run(codesign, {u"-s"_s, u"Developer ID Application: Nobody"_s, app()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"Developer ID Application: Nobody: no identity found\n"_s);
    EXPECT_FALSE(QFileInfo::exists(app() + seal));
}

TEST_F(Codesign, anInstallersIdentityCannotSignCode)
{
    ASSERT_EQ(
        run(keychain, {u"make-identity"_s, u"--kind"_s, u"installer"_s, u"--name"_s, u"Other (O)"_s}).status,
        0);
    EXPECT_EQ(run(codesign, {u"-s"_s, u"Developer ID Installer: Other (O)"_s, app()}).status, 1);
}

TEST_F(Codesign, aPartOfANameWillDoIfItFitsOneIdentity)
{
    EXPECT_EQ(run(codesign, {u"--sign"_s, u"Example Corp"_s, app()}).status, 0);
    ASSERT_EQ(run(keychain, {u"make-identity"_s, u"--name"_s, u"Example Corp (ZZZZZZZZZZ)"_s}).status, 0);
    const ToolResult result = run(codesign, {u"-f"_s, u"-s"_s, u"Example Corp"_s, app()});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.startsWith(
        u"Example Corp: ambiguous (matches \"Developer ID Application: Example Corp (A1"_s));
}

TEST_F(Codesign, takesOptionsInAnyOrderAndAllTheirForms)
{
    writeFile(path(u"E.plist"_s), "<plist><dict><key>a</key><true/></dict></plist>");
    EXPECT_EQ(
        run(codesign,
            {u"-fvv"_s, app(), u"--sign"_s, identity, u"--options"_s, u"runtime,kill"_s, u"--entitlements"_s,
             path(u"E.plist"_s), u"--timestamp=none"_s, u"--digest-algorithm"_s, u"sha1,sha256"_s})
            .status,
        0);
}

TEST_F(Codesign, entitlementsMustBeADictionary)
{
    for (const QByteArray &bytes :
         {QByteArray("<plist><array/></plist>"), QByteArray("<plist><dict>"), QByteArray()}) {
        writeFile(path(u"E.plist"_s), bytes);
        const ToolResult result = sign(app(), {u"--entitlements"_s, path(u"E.plist"_s)});
        EXPECT_EQ(result.status, 1) << bytes.toStdString();
        EXPECT_TRUE(result.error.startsWith(path(u"E.plist"_s) + u": unrecognized entitlement data: "_s));
    }
    EXPECT_TRUE(sign(app(), {u"--entitlements"_s, path(u"none"_s)})
                    .error.contains(u"cannot read entitlement data"_s));
    EXPECT_FALSE(QFileInfo::exists(app() + seal));
}

TEST_F(Codesign, refusesArgumentsThatMeanNothing)
{
    for (const QStringList &arguments : {QStringList{},
                                         {u"-s"_s, identity},
                                         {app()},
                                         {u"--verify"_s, app()},
                                         {u"-o"_s, u"walltime"_s, u"-s"_s, identity, app()},
                                         {u"--digest-algorithm=md5"_s, u"-s"_s, identity, app()},
                                         {app(), u"-s"_s},
                                         {u"--force=yes"_s, u"-s"_s, identity, app()}})
        EXPECT_EQ(run(codesign, arguments).status, 64) << arguments.join(u' ').toStdString();
    EXPECT_FALSE(QFileInfo::exists(app() + seal));
}

TEST_F(Codesign, replacesALinkInThePlaceOfTheSealAndNotItsTarget)
{
    writeFile(path(u"precious"_s), "keep me");
    writeFile(contents(u"_CodeSignature/other"_s), "");
    ASSERT_TRUE(QFile::link(path(u"precious"_s), app() + seal));
    ASSERT_EQ(sign(app(), {u"--force"_s}).status, 0);
    EXPECT_EQ(readFile(path(u"precious"_s)), "keep me");
    EXPECT_FALSE(QFileInfo(app() + seal).isSymLink());
}
