// Bundles that are signed, and their seals.

#include "toolchain/codesigntest.h"

#include <QCryptographicHash>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace toolchain;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

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

TEST_F(Codesign, refusesABundleWithSomethingBesideWhatTheSealCovers)
{
    writeFile(app() + u"/Read Me.txt"_s, "text");
    ToolResult result = sign(app());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, app() + u": unsealed contents present in the bundle root\n"_s);
    EXPECT_FALSE(QFileInfo::exists(app() + seal));
    EXPECT_TRUE(QFile::remove(app() + u"/Read Me.txt"_s));
    const QString framework = contents(u"Frameworks/Inner.framework"_s);
    writeFile(framework + u"/left"_s, "here");
    result = sign(framework);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error,
              framework + u": unsealed contents present in the root directory of an embedded framework\n"_s);
    EXPECT_EQ(sign(framework + u"/Versions/A"_s).status, 0);
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
