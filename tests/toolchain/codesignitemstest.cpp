// What is signed besides bundles, what is not, and the words of the command line.

#include "toolchain/codesigntest.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace toolchain;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

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
