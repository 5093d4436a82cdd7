// Signatures that are verified and shown.

#include "toolchain/codeverifytest.h"

#include <QFileInfo>
#include <QProcess>

using namespace Qt::StringLiterals;
using namespace toolchain;
using namespace toolchain::codesignature;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

TEST_F(CodeVerify, whatWasSignedIsValidAndSaysSoOnDemand)
{
    ASSERT_EQ(sign(app()).status, 0);
    EXPECT_EQ(verify({app()}).error, QString());
    const ToolResult result = verify({u"--strict"_s, u"-v"_s, app()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error,
              app() + u": valid on disk\n"_s + app()
                  + u": signed by the authority of this machine, which no Mac knows\n"_s + app()
                  + u": satisfies its Designated Requirement\n"_s);
    EXPECT_EQ(run(codesign, {u"-v"_s, app()}).status, 0);
}

TEST_F(CodeVerify, anAdHocSignatureIsValidToo)
{
    ASSERT_EQ(adHoc(app()).status, 0);
    EXPECT_EQ(verify({u"-v"_s, app()}).error,
              app() + u": valid on disk\n"_s + app() + u": satisfies its Designated Requirement\n"_s);
}

TEST_F(CodeVerify, whatIsNotSignedIsAFailure)
{
    const ToolResult result = verify({app()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, app() + u": code object is not signed at all\n"_s);
}

TEST_F(CodeVerify, aChangedResourceIsNamed)
{
    ASSERT_EQ(sign(app()).status, 0);
    writeFile(contents(u"Resources/Größe.txt"_s), "changed");
    writeFile(contents(u"Resources/new"_s), "added");
    ASSERT_TRUE(QFile::remove(contents(u"Resources/en.lproj/Main.strings"_s))); // may be missing
    const QString text = app() + u": a sealed resource is missing or invalid\n"_s;
    EXPECT_EQ(verify({app()}).error, text);
    const ToolResult result = verify({u"-v"_s, app()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error,
              text + u"file modified: "_s + contents(u"Resources/Größe.txt"_s) + u"\nfile added: "_s
                  + contents(u"Resources/new"_s) + u'\n');
}

TEST_F(CodeVerify, aChangedInfoPropertyListOrSealIsToldApart)
{
    ASSERT_EQ(sign(app()).status, 0);
    const QByteArray info = readFile(contents(u"Info.plist"_s));
    writeFile(contents(u"Info.plist"_s), info + ' ');
    EXPECT_EQ(verify({app()}).error.section(u'\n', 0, 0),
              app() + u": invalid Info.plist (plist or signature have been modified)"_s);
    writeFile(contents(u"Info.plist"_s), info);
    flipByteAt(contents(u"_CodeSignature/CodeResources"_s), 200);
    EXPECT_EQ(verify({app()}).error.section(u'\n', 0, 0),
              app() + u": invalid resource directory (directory or signature have been modified)"_s);
    ASSERT_TRUE(QFile::remove(contents(u"_CodeSignature/CodeResources"_s)));
    EXPECT_EQ(verify({app()}).error.section(u'\n', 0, 0),
              app() + u": code has no resources but signature indicates they must be present"_s);
}

TEST_F(CodeVerify, aChangedPageIsFoundInEverySlice)
{
    ASSERT_EQ(sign(app()).status, 0);
    for (const auto &[offset, architecture] :
         {std::pair<qint64, QString>{0x4000 + 0x1800, u"x86_64"_s}, {0xc000 + 0x2000 + 0x4000, u"arm64"_s}}) {
        flipByteAt(executable(), offset);
        EXPECT_EQ(verify({app()}).error,
                  app() + u": invalid signature (code or signature have been modified)\nIn architecture: "_s
                      + architecture + u'\n');
        flipByteAt(executable(), offset);
    }
    EXPECT_EQ(verify({app()}).status, 0);
}

TEST_F(CodeVerify, changedCodeInsideIsNamed)
{
    ASSERT_EQ(sign(app()).status, 0);
    const QString version = bundlebuilder::frameworkVersionOf(app());
    writeFile(version + u"/Resources/more"_s, "added");
    const ToolResult result = verify({u"--deep"_s, u"-v"_s, app()});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.startsWith(app()
                                        + u": a sealed resource is missing or invalid\nIn subcomponent: "_s
                                        + contents(u"Frameworks/Inner.framework\n"_s)))
        << result.error.toStdString();
    EXPECT_TRUE(result.error.contains(u"file added: "_s)) << result.error.toStdString();
}

TEST_F(CodeVerify, codeInsideThatSomebodyElseSignedIsNotTheOneThatWasSealed)
{
    ASSERT_EQ(sign(app()).status, 0);
    const QString version = bundlebuilder::frameworkVersionOf(app());
    ASSERT_EQ(adHoc(version).status, 0);
    EXPECT_EQ(verify({app()}).error,
              app() + u": nested code is modified or invalid\nIn subcomponent: "_s
                  + contents(u"Frameworks/Inner.framework\n"_s));
    ASSERT_EQ(run(codesign, {u"-f"_s, u"-s"_s, identity, u"-o"_s, u"kill"_s, version}).status, 0);
    EXPECT_EQ(verify({app()}).status, 0); // the same signer may sign it anew
}

TEST_F(CodeVerify, deepNamesWhatItLooksAt)
{
    ASSERT_EQ(sign(app()).status, 0);
    const QString place = contents(u"Frameworks/Inner.framework/Versions/Current/.\n"_s);
    const QString error = verify({u"--deep"_s, u"-vv"_s, app()}).error;
    EXPECT_TRUE(error.startsWith(u"--prepared:"_s + place + u"--validated:"_s + place))
        << error.toStdString();
}

TEST_F(CodeVerify, aRequirementOfTheCallersMayBeMetOrNot)
{
    ASSERT_EQ(sign(app()).status, 0);
    const ToolResult met = verify({u"-R=identifier \"com.example.app\""_s, u"-v"_s, app()});
    EXPECT_EQ(met.status, 0);
    EXPECT_TRUE(met.error.endsWith(app() + u": explicit requirement satisfied\n"_s));
    const ToolResult unmet = verify({u"-R"_s, u"=anchor apple generic"_s, app()});
    EXPECT_EQ(unmet.status, 3);
    EXPECT_EQ(unmet.error, u"test-requirement: code failed to satisfy specified code requirement(s)\n"_s);
    EXPECT_EQ(verify({u"-R=nonsense ("_s, app()}).status, 2);
}

TEST_F(CodeVerify, strictAsksForACleanBundle)
{
    ASSERT_EQ(sign(app()).status, 0);
    writeFile(app() + u"/left"_s, "here");
    EXPECT_EQ(verify({app()}).status, 0);
    EXPECT_EQ(verify({u"--strict"_s, app()}).error.section(u'\n', 0, 0),
              app() + u": unsealed contents present in the bundle root"_s);
}

TEST_F(CodeVerify, strictTakesWhatTheFinderLeavesInABundle)
{
    ASSERT_EQ(sign(app()).status, 0);
    writeFile(app() + u"/.DS_Store"_s, "notes");
    writeFile(app() + u"/Icon\r"_s, "picture");
    EXPECT_EQ(verify({u"--strict"_s, app()}).status, 0);
}

TEST_F(CodeVerify, strictAsksThatNothingFollowsTheCode)
{
    using namespace bundlebuilder;
    const QString file = path(u"code"_s);
    for (const QByteArray &bytes : {thinMachO(arm64), universalMachO()}) {
        writeFile(file, bytes);
        ASSERT_EQ(sign(file).status, 0);
        EXPECT_EQ(verify({u"--strict"_s, file}).status, 0);
        writeFile(file, readFile(file) + 'x');
        EXPECT_EQ(verify({file}).status, 0);
        EXPECT_EQ(verify({u"--strict"_s, file}).error.section(u'\n', 0, 0),
                  file + u": main executable failed strict validation"_s);
    }
}

TEST_F(CodeVerify, strictAsksThatWhatIsSignedOfAFrameworksOtherVersionsHolds)
{
    const QString version = bundlebuilder::frameworkVersionOf(app());
    const QString older = contents(u"Frameworks/Inner.framework/Versions/Older"_s);
    ASSERT_EQ(QProcess::execute(u"cp"_s, {u"-a"_s, version, older}), 0);
    ASSERT_EQ(run(codesign, {u"-s"_s, identity, older}).status, 0);
    ASSERT_EQ(sign(app()).status, 0);
    EXPECT_EQ(verify({u"--strict"_s, app()}).error, QString());
    writeFile(older + u"/Resources/more"_s, "added");
    EXPECT_EQ(verify({app()}).status, 0);
    EXPECT_EQ(verify({u"--strict"_s, app()}).error,
              app() + u": embedded framework contains modified or invalid version\nIn subcomponent: "_s
                  + contents(u"Frameworks/Inner.framework\n"_s));
    ASSERT_EQ(run(codesign, {u"--remove-signature"_s, older}).status, 0);
    EXPECT_EQ(verify({u"--strict"_s, app()}).status, 0); // no seal speaks of it
}

TEST_F(CodeVerify, strictAsksForNoResourceForkOnAnyFile)
{
    ASSERT_EQ(sign(app()).status, 0);
    const QString file = contents(u"Resources/Größe.txt"_s);
    ASSERT_TRUE(writeAttribute(file, "com.apple.FinderInfo", QByteArray(32, '\0')));
    EXPECT_EQ(verify({u"--strict"_s, app()}).error, QString()); // zeros say nothing
    ASSERT_TRUE(writeAttribute(file, "com.apple.ResourceFork", "fork"));
    EXPECT_EQ(verify({app()}).status, 0);
    EXPECT_EQ(verify({u"--strict"_s, u"-v"_s, app()}).error,
              app() + u": resource fork, Finder information, or similar detritus not allowed\nIn detail: "_s
                  + file + u" has a resource fork or Finder information\n"_s);
}

TEST_F(CodeVerify, aCodeDirectoryInAnotherPlaceOfTheIndexIsNone)
{
    const QString file = path(u"code"_s);
    writeFile(file, bundlebuilder::thinMachO(bundlebuilder::arm64));
    ASSERT_EQ(sign(file).status, 0);
    const QByteArray bytes = readFile(file);
    const qsizetype alternate =
        bytes.indexOf(QByteArray::fromHex("00001000"), bytes.indexOf(QByteArray::fromHex("fade0cc0")));
    ASSERT_GT(alternate, 0);
    writeFile(file, QByteArray(bytes).replace(alternate, 4, QByteArray::fromHex("00001001")));
    EXPECT_FALSE(isFine(judge(file)));
}

TEST_F(CodeVerify, aFileOfAnotherKindIsHeldAgainstItsAttributes)
{
    writeFile(path(u"hello"_s), "hello\n");
    ASSERT_EQ(adHoc(path(u"hello"_s)).status, 0);
    const auto code = readCodeSignature(path(u"hello"_s));
    ASSERT_TRUE(code);
    EXPECT_EQ(code->native().cdHash().toHex(), "6a3516f4502eabbd40254d9fced38adb24a37405");
    EXPECT_EQ(code->native().primary().fields().identifier,
              u"hello-f572d396fae9206628714fb2ce00f72e94f2258f"_s);
    ASSERT_EQ(sign(path(u"hello"_s), {u"-f"_s}).status, 0);
    EXPECT_EQ(verify({path(u"hello"_s)}).status, 0);
    QFile file(path(u"hello"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.write("H") == 1);
    file.close();
    EXPECT_EQ(verify({path(u"hello"_s)}).status, 1);
    ASSERT_EQ(run(codesign, {u"--remove-signature"_s, path(u"hello"_s)}).status, 0);
    EXPECT_TRUE(verify({path(u"hello"_s)}).error.endsWith(u"code object is not signed at all\n"_s));
}

TEST_F(CodeVerify, aBundleWithoutAMachOFileHasItsSignatureBesideTheSeal)
{
    writeFile(executable(), "#!/bin/sh\n");
    ASSERT_EQ(sign(app()).status, 0);
    EXPECT_TRUE(QFileInfo::exists(contents(u"_CodeSignature/CodeDirectory"_s)));
    EXPECT_TRUE(QFileInfo::exists(contents(u"_CodeSignature/CodeRequirements-1"_s)));
    EXPECT_EQ(verify({u"--strict"_s, app()}).status, 0);
    writeFile(executable(), "#!/bin/ksh\n");
    EXPECT_EQ(verify({app()}).status, 1);
}

TEST_F(CodeVerify, displayShowsWhatWasSigned)
{
    writeFile(path(u"E.plist"_s),
              "<plist><dict><key>com.apple.security.cs.allow-jit</key><true/></dict></plist>");
    ASSERT_EQ(sign(app(), {u"--entitlements"_s, path(u"E.plist"_s)}).status, 0);
    const ToolResult result = run(codesign, {u"-dvvvv"_s, app()});
    EXPECT_EQ(result.status, 0);
    for (const QString &line :
         {u"Executable="_s + executable(), u"Identifier=com.example.app"_s,
          u"Format=bundle with Mach-O universal (x86_64 arm64)"_s, u"flags=0x10000(runtime)"_s,
          u"Hash choices=sha1,sha256"_s, u"Authority="_s + identity, u"TeamIdentifier=A1B2C3D4E5"_s,
          u"Runtime Version=12.3.0"_s, u"Sealed Resources version=2 rules=13 files=3"_s, u"Page size=16384"_s,
          u"Info.plist entries=2"_s, u"Internal requirements count=1 size="_s})
        EXPECT_TRUE(result.error.contains(line)) << line.toStdString() << '\n' << result.error.toStdString();
    EXPECT_EQ(run(codesign, {u"-d"_s, app()}).error, u"Executable="_s + executable() + u'\n');
    EXPECT_EQ(run(codesign, {u"-d"_s, u"--entitlements"_s, u"-"_s, app()}).output,
              QString::fromUtf8(readFile(path(u"E.plist"_s))));
    EXPECT_TRUE(
        run(codesign, {u"-d"_s, u"-r-"_s, app()})
            .output.startsWith(u"designated => identifier \"com.example.app\" and certificate root = H"_s));
    EXPECT_EQ(run(codesign, {u"-d"_s, u"-r"_s, path(u"none/there"_s), app()}).status, 1);
}

TEST_F(CodeVerify, oldMetadataIsKeptOnDemand)
{
    writeFile(path(u"E.plist"_s), "<plist><dict><key>a</key><true/></dict></plist>");
    ASSERT_EQ(sign(app(), {u"-i"_s, u"com.example.other"_s, u"--entitlements"_s, path(u"E.plist"_s)}).status,
              0);
    ASSERT_EQ(run(codesign,
                  {u"-f"_s, u"-s"_s, u"-"_s, u"--preserve-metadata=identifier,entitlements,flags"_s, app()})
                  .status,
              0);
    const auto code = readCodeSignature(app());
    ASSERT_TRUE(code);
    EXPECT_EQ(code->native().primary().fields().identifier, u"com.example.other"_s);
    EXPECT_EQ(code->native().primary().fields().flags, codeflag::runtime | codeflag::adhoc);
    EXPECT_EQ(code->native().entitlements(), readFile(path(u"E.plist"_s)));
}

TEST_F(CodeVerify, aSignatureCanBeReadWithoutTheDigestsOfTheCode)
{
    ASSERT_EQ(sign(app(), {u"-i"_s, u"com.example.other"_s}).status, 0);
    const auto whole = readSignedCode(app());
    const auto heads = readSignedCode(app(), SignatureDepth::heads);
    ASSERT_TRUE(whole && heads);
    for (qsizetype index = 0; index < whole->parts.size(); ++index) {
        const SignedPart &expected = whole->parts[index];
        const SignedPart &read = heads->parts[index];
        ASSERT_TRUE(read.isSigned()) << read.damage.toStdString();
        EXPECT_EQ(read.directories.size(), expected.directories.size());
        EXPECT_EQ(read.primary().fields().identifier, u"com.example.other"_s);
        EXPECT_EQ(read.primary().fields().flags, expected.primary().fields().flags);
        EXPECT_EQ(read.best().fields().runtime, expected.best().fields().runtime);
        EXPECT_EQ(read.primary().specialSlot(1), expected.primary().specialSlot(1));
        EXPECT_EQ(read.primary().codeSlotCount(), 0U);
        EXPECT_EQ(read.requirements(), expected.requirements());
        EXPECT_EQ(read.cms(), expected.cms());
    }
}
