#include "formats/codesignature/signaturereader.h"
#include "formats/fileattributes.h"
#include "platform/propertylist/propertylist.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/machobuilder.h"
#include "toolchain/toolfixture.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace toolchain;
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
        return platform::propertyListFromData(readFile(sealPath)).valueOr({}).toMap().value(key).toMap();
    }

    /// Every path below Contents that a seal should name.
    [[nodiscard]] QStringList expectedPaths() const
    {
        QStringList paths;
        QDirIterator entries(contents({}), QDir::Files | QDir::Hidden | QDir::System,
                             QDirIterator::Subdirectories);
        const QString framework = u"Frameworks/Inner.framework"_s;
        while (entries.hasNext()) {
            const QString entry = entries.next().mid(contents({}).size());
            if (!entry.startsWith(framework))
                paths.append(entry);
        }
        for (const QString &omitted : {u"Info.plist"_s, u"MacOS/My App"_s, u"Resources/.DS_Store"_s})
            EXPECT_TRUE(paths.removeOne(omitted)) << omitted.toStdString();
        paths.append(framework); // code inside is one entry
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
    for (const QString &file : {u"Resources/Größe.txt"_s, u"Resources/en.lproj/Main.strings"_s}) {
        const QVariantMap entry = sealedFiles(app() + seal).value(file).toMap();
        EXPECT_EQ(entry.value(u"hash"_s).toByteArray(),
                  digest(readFile(contents(file)), QCryptographicHash::Sha1));
        EXPECT_EQ(entry.value(u"hash2"_s).toByteArray(),
                  digest(readFile(contents(file)), QCryptographicHash::Sha256));
    }
}

TEST_F(Codesign, theSealHoldsLinksByTheirTargets)
{
    ASSERT_TRUE(QFile::link(u"Größe.txt"_s, contents(u"Resources/link"_s)));
    ASSERT_EQ(sign(app()).status, 0);
    const QVariantMap link = sealedFiles(app() + seal).value(u"Resources/link"_s).toMap();
    EXPECT_EQ(link, (QVariantMap{{u"symlink"_s, u"Größe.txt"_s}}));
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
    const ToolResult result =
        run(codesign, {u"-s"_s, identity, u"--deep"_s, u"--digest-algorithm=sha256"_s, app()});
    ASSERT_EQ(result.status, 0);
    const QVariantMap entry = sealedFiles(app() + seal).value(u"Resources/Größe.txt"_s).toMap();
    EXPECT_EQ(entry.keys(), QStringList{u"hash2"_s});
}

TEST_F(Codesign, saysWhatItDidWhenItIsVerbose)
{
    const ToolResult result = sign(app());
    EXPECT_EQ(result.error,
              app() + u": signed bundle with Mach-O universal (x86_64 arm64) [com.example.app]\n"_s);
    EXPECT_EQ(run(codesign, {u"-f"_s, u"-s"_s, identity, app()}).error,
              app() + u": replacing existing signature\n"_s);
    ASSERT_EQ(run(codesign, {u"--remove-signature"_s, app()}).status, 0);
    EXPECT_EQ(run(codesign, {u"-s"_s, identity, app()}).error, QString());
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
    EXPECT_TRUE(sealedFiles(app() + seal).contains(u"Frameworks/Inner.framework"_s));
}

TEST_F(Codesign, deepSignsWhatIsInsideFirst)
{
    ASSERT_EQ(sign(app(), {u"--force"_s, u"--deep"_s}).status, 0);
    const auto inner = codesignature::readCodeSignature(bundlebuilder::frameworkVersionOf(app()));
    ASSERT_TRUE(inner) << inner.error().toStdString();
    const QVariantMap entry = sealedFiles(app() + seal).value(u"Frameworks/Inner.framework"_s).toMap();
    EXPECT_EQ(entry.value(u"cdhash"_s).toByteArray(), inner->native().cdHash());
    EXPECT_TRUE(
        entry.value(u"requirement"_s).toString().startsWith(u"identifier \"com.example.Inner\" and "_s));
}

TEST_F(Codesign, unsignedCodeInsideIsNamedWithoutDeep)
{
    const ToolResult result = run(codesign, {u"-s"_s, identity, app()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error,
              app() + u": code object is not signed at all\nIn subcomponent: "_s
                  + contents(u"Frameworks/Inner.framework\n"_s));
    EXPECT_FALSE(QFileInfo::exists(app() + seal));
    EXPECT_EQ(readFile(contents(u"MacOS/My App"_s)), bundlebuilder::universalMachO());
}

TEST_F(Codesign, anAppWhoseExecutableIsAScriptIsSealedAsGeneric)
{
    writeFile(contents(u"MacOS/My App"_s), "#!/bin/sh\n");
    EXPECT_EQ(sign(app()).error, app() + u": signed bundle with generic [com.example.app]\n"_s);
}

TEST_F(Codesign, signsMachOFilesOfTheseArchitectures)
{
    using namespace bundlebuilder;
    const QList<std::pair<QByteArray, QString>> files{{thinMachO(x86_64), u"thin (x86_64)"_s},
                                                      {thinMachO(arm64), u"thin (arm64)"_s},
                                                      {thinMachO(i386), u"thin (i386)"_s},
                                                      {universalMachO(), u"universal (x86_64 arm64)"_s}};
    for (const auto &[bytes, description] : files) {
        QFile::remove(path(u"lib.dylib"_s));
        writeFile(path(u"lib.dylib"_s), bytes);
        const ToolResult result = sign(path(u"lib.dylib"_s));
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.error, path(u"lib.dylib"_s) + u": signed Mach-O "_s + description + u" [lib]\n"_s);
        EXPECT_TRUE(codesignature::readCodeSignature(path(u"lib.dylib"_s)));
    }
}

TEST_F(Codesign, refusesMachOFilesThatCannotHoldASignature)
{
    using namespace bundlebuilder;
    MachORecipe full;
    full.firstSection = 0x120;
    full.hasUuid = false;
    const QByteArray universal = universalMachO();
    const QByteArray thin = thinMachO(arm64);
    for (const QByteArray &bytes :
         {thinMachO(powerPC, ByteOrder::big), universalMachO(true), machO(full), universal.left(200),
          universal.chopped(1), universal + "more", universal.left(0x8000), thin.left(31), thin.chopped(1),
          thin + "more", QByteArray::fromHex("cafebabe00000003")}) {
        writeFile(path(u"file"_s), bytes);
        const ToolResult result = sign(path(u"file"_s));
        EXPECT_EQ(result.status, 1) << bytes.left(16).toHex().toStdString();
        EXPECT_TRUE(result.error.startsWith(path(u"file"_s) + u": "_s));
        EXPECT_EQ(readFile(path(u"file"_s)), bytes);
        EXPECT_FALSE(QFileInfo::exists(path(u"file.cstemp"_s)));
    }
}

TEST_F(Codesign, signsAnyOtherFileByItsAttributes)
{
    for (const QByteArray &bytes : {QByteArray(), QByteArray("#!/bin/sh\n"), QByteArray::fromHex("cffaed"),
                                    QByteArray::fromHex("cafebabe0000003400000000"), QByteArray("koly")}) {
        writeFile(path(u"file.txt"_s), bytes);
        const ToolResult result = sign(path(u"file.txt"_s), {u"--force"_s});
        EXPECT_EQ(result.status, 0) << result.error.toStdString();
        EXPECT_TRUE(result.error.endsWith(u"signed generic [file]\n"_s)) << result.error.toStdString();
        EXPECT_EQ(readFile(path(u"file.txt"_s)), bytes);
        EXPECT_TRUE(codesignature::readCodeSignature(path(u"file.txt"_s)));
    }
}

TEST_F(Codesign, signsMachOFilesThatAreNoProgramsAsAnyOtherFile)
{
    using namespace bundlebuilder;
    QList<QByteArray> files{"!<arch>\nlibrary"};
    for (const std::uint32_t type : {1, 9, 10}) { // an object file, a stub of a library, symbols
        MachORecipe recipe;
        recipe.fileType = type;
        files.append(machO(recipe));
    }
    files.append(universalOf({"!<arch>\none", "!<arch>\nother"}));
    for (const QByteArray &bytes : files) {
        writeFile(path(u"library"_s), bytes);
        const ToolResult result = sign(path(u"library"_s), {u"--force"_s});
        EXPECT_EQ(result.status, 0) << result.error.toStdString();
        EXPECT_TRUE(result.error.endsWith(u"signed generic [library]\n"_s)) << result.error.toStdString();
        EXPECT_EQ(readFile(path(u"library"_s)), bytes);
        EXPECT_EQ(run(codesign, {u"--verify"_s, path(u"library"_s)}).status, 0);
    }
}

TEST_F(Codesign, refusesResourceForksWhichNoSignatureCovers)
{
    const QString file = contents(u"Resources/Größe.txt"_s);
    const QString message = app()
        + u": resource fork, Finder information, or similar detritus not allowed\nIn detail: %1 has a resource fork or Finder information\n"_s;
    ASSERT_TRUE(writeAttribute(file, "com.apple.ResourceFork", "fork"));
    EXPECT_EQ(sign(app()).error, message.arg(file));
    ASSERT_TRUE(removeAttribute(file, "com.apple.ResourceFork"));
    ASSERT_TRUE(writeAttribute(app(), "com.apple.FinderInfo", QByteArray(32, 'x')));
    EXPECT_EQ(sign(app()).error, message.arg(app()));
    EXPECT_FALSE(QFileInfo::exists(app() + seal));
    ASSERT_TRUE(removeAttribute(app(), "com.apple.FinderInfo"));
    ASSERT_TRUE(writeAttribute(file, "com.apple.quarantine", "0081"));
    EXPECT_EQ(sign(app()).status, 0);
}

TEST_F(Codesign, aLinkOutOfTheBundleIsNamed)
{
    const QString link = contents(u"Resources/out"_s);
    ASSERT_TRUE(QFile::link(u"/etc/passwd"_s, link));
    EXPECT_EQ(sign(app()).error,
              app() + u": invalid destination for symbolic link in bundle\nIn detail: "_s + link + u'\n');
    EXPECT_FALSE(QFileInfo::exists(app() + seal));
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
    EXPECT_EQ(run(codesign, {u"--deep"_s, u"--sign"_s, u"Example Corp"_s, app()}).status, 0);
    ASSERT_EQ(run(keychain, {u"make-identity"_s, u"--name"_s, u"Example Corp (ZZZZZZZZZZ)"_s}).status, 0);
    const ToolResult result = run(codesign, {u"-f"_s, u"-s"_s, u"Example Corp"_s, app()});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.startsWith(
        u"Example Corp: ambiguous (matches \"Developer ID Application: Example Corp (A1"_s));
}

TEST_F(Codesign, takesOptionsInAnyOrderAndAllTheirForms)
{
    writeFile(path(u"E.plist"_s), "<plist><dict><key>a</key><true/></dict></plist>");
    EXPECT_EQ(run(codesign,
                  {u"-fvv"_s, app(), u"--deep"_s, u"--sign"_s, identity, u"--options"_s, u"runtime,kill"_s,
                   u"--entitlements"_s, path(u"E.plist"_s), u"--timestamp=none"_s, u"--digest-algorithm"_s,
                   u"sha1,sha256"_s})
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
                                         {u"--verify"_s, u"-s"_s, identity, app()},
                                         {u"--no-such-option"_s, app()},
                                         {u"-o"_s, u"walltime"_s, u"-s"_s, identity, app()},
                                         {u"--digest-algorithm=md5"_s, u"-s"_s, identity, app()},
                                         {app(), u"-s"_s},
                                         {u"--force=yes"_s, u"-s"_s, identity, app()}})
        EXPECT_EQ(run(codesign, arguments).status, 2) << arguments.join(u' ').toStdString();
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

TEST_F(Codesign, theServiceOfThisMachineStampsTheTime)
{
    writeFile(path(u"code"_s), bundlebuilder::thinMachO(bundlebuilder::arm64));
    ASSERT_EQ(run(codesign, {u"-s"_s, identity, u"--timestamp"_s, path(u"code"_s)}).status, 0);
    EXPECT_TRUE(run(codesign, {u"-dvv"_s, path(u"code"_s)}).error.contains(u"\nTimestamp="_s));
    EXPECT_EQ(run(codesign, {u"--verify"_s, path(u"code"_s)}).status, 0);
}

TEST_F(Codesign, withoutATimeStampThatWasWantedNothingIsSigned)
{
    const QByteArray before = bundlebuilder::thinMachO(bundlebuilder::arm64);
    writeFile(path(u"code"_s), before);
    const ToolResult result =
        run(codesign, {u"-s"_s, identity, u"--timestamp=http://127.0.0.1:9/"_s, path(u"code"_s)});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.startsWith(path(u"code: The timestamp service is not available."_s)))
        << result.error.toStdString();
    EXPECT_EQ(readFile(path(u"code"_s)), before);
}

TEST_F(Codesign, frameworkAndFlatBundlesAreSignedWhereTheyLie)
{
    using namespace bundlebuilder;
    const QString flat = path(u"Driver.dext"_s);
    writeFile(flat + u"/Info.plist"_s, infoPropertyList(u"Driver"_s, u"com.example.driver"_s));
    writeFile(flat + u"/Driver"_s, thinMachO(arm64));
    writeFile(flat + u"/data"_s, "data");
    ASSERT_EQ(sign(flat).status, 0);
    EXPECT_EQ(sealedFiles(flat + u"/_CodeSignature/CodeResources"_s).keys(), QStringList{u"data"_s});
    const QString framework = contents(u"Frameworks/Inner.framework"_s);
    ASSERT_EQ(sign(framework).status, 0);
    EXPECT_TRUE(QFileInfo::exists(frameworkVersionOf(app()) + u"/_CodeSignature/CodeResources"_s));
    for (const QString &item : {flat, framework})
        EXPECT_EQ(run(codesign, {u"--verify"_s, u"--strict"_s, item}).status, 0) << item.toStdString();
}

TEST_F(Codesign, aBundleWithoutAnExecutableIsSignedByItsInfoPropertyList)
{
    const QString bundle = path(u"Data.bundle"_s);
    writeFile(bundle + u"/Contents/Info.plist"_s,
              "<plist><dict><key>CFBundleIdentifier</key><string>com.example.data</string></dict></plist>");
    writeFile(bundle + u"/Contents/Resources/data"_s, "data");
    ASSERT_EQ(sign(bundle).status, 0);
    EXPECT_TRUE(QFileInfo::exists(bundle + u"/Contents/_CodeSignature/CodeDirectory"_s));
    EXPECT_EQ(run(codesign, {u"--verify"_s, bundle}).status, 0);
    writeFile(bundle + u"/Contents/Resources/data"_s, "other");
    EXPECT_EQ(run(codesign, {u"--verify"_s, bundle}).status, 1);
}

TEST_F(Codesign, aRunThatIsKilledLeavesTheFileAsItWas)
{
    bundlebuilder::MachORecipe recipe;
    recipe.codeLength = 0x8000000;
    const QByteArray before = bundlebuilder::machO(recipe);
    writeFile(path(u"code"_s), before);
    for (const int pause : {5, 20, 60}) {
        const auto process = start(codesign, {u"-s"_s, u"-"_s, path(u"code"_s)});
        ASSERT_TRUE(process->waitForStarted());
        process->waitForFinished(pause);
        process->kill();
        process->waitForFinished();
        const QByteArray behind = readFile(path(u"code"_s));
        EXPECT_TRUE(behind == before || codesignature::readCodeSignature(path(u"code"_s)));
    }
    ASSERT_EQ(run(codesign, {u"-f"_s, u"-s"_s, u"-"_s, path(u"code"_s)}).status, 0);
    EXPECT_FALSE(QFileInfo::exists(path(u"code.cstemp"_s)));
}
