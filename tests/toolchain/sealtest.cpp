// The seal of a bundle's resources, as it is made.

#include "toolchain/sealtest.h"

using namespace Qt::StringLiterals;
using namespace toolchain;
using bundlebuilder::writeFile;
using seal::Layout;

TEST_F(Seals, thoseOfARealPackageComeOutByteForByte)
{
    const auto archive = xar::Archive::open(QStringLiteral(PACKAGE_FILE));
    ASSERT_TRUE(archive);
    ASSERT_TRUE(package::expandPackage(*archive, path(u"out"_s), package::Depth::payloads));
    const QString manager =
        path(u"out/Payload/Applications/.Karabiner-VirtualHIDDevice-Manager.app/Contents"_s);
    const QString extension = u"org.pqrs.Karabiner-DriverKit-VirtualHIDDevice"_s;
    const QString daemon = path(
        u"out/Payload/Library/Application Support/org.pqrs/Karabiner-DriverKit-VirtualHIDDevice/Applications/Karabiner-VirtualHIDDevice-Daemon.app/Contents"_s);
    const seal::SealedFolder folders[]{
        {manager, Layout::withResources, "MacOS/Karabiner-VirtualHIDDevice-Manager"},
        {manager + u"/Library/SystemExtensions/"_s + extension + u".dext"_s, Layout::flat,
         extension.toUtf8()},
        {daemon, Layout::withResources, "MacOS/Karabiner-VirtualHIDDevice-Daemon"}};
    for (const seal::SealedFolder &real : folders) {
        const auto made = seal::makeSeal(real, seal::Digests::sha256, describeAny);
        ASSERT_TRUE(made) << made.error().toStdString();
        EXPECT_EQ(*made, *seal::readSealFile(real.base)) << real.base.toStdString();
        EXPECT_TRUE(seal::checkSeal(*made, real, seal::Strictness::strict, acceptAny).isEmpty());
    }
}

TEST_F(Seals, aSealIsWrittenAsCodesignWritesIt)
{
    folder.layout = Layout::flat;
    write(u"a&b"_s, "");
    write(u"Info.plist"_s);
    const QByteArray bytes = make(seal::Digests::sha1AndSha256);
    const QByteArray expected = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>files</key>
	<dict>
		<key>Info.plist</key>
		<data>
		)"
        + sha1("bytes").toBase64() + R"(
		</data>
		<key>a&amp;b</key>
		<data>
		2jmj7l5rSw0yVb/vlWAYkK/YBwk=
		</data>
	</dict>
	<key>files2</key>
	<dict>
		<key>a&amp;b</key>
		<dict>
			<key>hash</key>
			<data>
			2jmj7l5rSw0yVb/vlWAYkK/YBwk=
			</data>
			<key>hash2</key>
			<data>
			47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU=
			</data>
		</dict>
	</dict>
	<key>rules</key>
	<dict>
		<key>^.*</key>
		<true/>
		<key>^.*\.lproj/</key>
		<dict>
			<key>optional</key>
			<true/>
			<key>weight</key>
			<real>1000</real>
		</dict>
)";
    EXPECT_EQ(bytes.first(expected.size()), expected);
}

TEST_F(Seals, aBundleWithoutResourcesHasEmptyDictionaries)
{
    write(u"MacOS/App"_s);
    write(u"Info.plist"_s);
    const QByteArray bytes = make();
    EXPECT_TRUE(bytes.contains("\t<key>files</key>\n\t<dict/>\n\t<key>files2</key>\n\t<dict/>\n"));
}

TEST_F(Seals, theTwoPartsCarryTheDigestsThatAreAskedFor)
{
    write(u"Resources/file"_s);
    write(u"other/file"_s);
    const auto one = parts(seal::Digests::sha256);
    EXPECT_EQ(one.files.value("Resources/file").sha1, sha1("bytes"));
    EXPECT_FALSE(one.files.contains("other/file"));
    EXPECT_EQ(one.files2.value("Resources/file").sha256, sha256("bytes"));
    EXPECT_TRUE(one.files2.value("other/file").sha1.isEmpty());
    const auto both = parts(seal::Digests::sha1AndSha256);
    EXPECT_EQ(both.files2.value("other/file").sha1, sha1("bytes"));
    EXPECT_EQ(both.files2.value("other/file").sha256, sha256("bytes"));
    EXPECT_TRUE(parts(seal::Digests::sha1).files2.value("other/file").sha256.isEmpty());
    EXPECT_TRUE(make(seal::Digests::sha1).contains("<key>other/file</key>\n\t\t<data>"));
}

TEST_F(Seals, leavesOutWhatNoSealCovers)
{
    for (const QString &name : {u"Info.plist"_s, u"PkgInfo"_s, u"MacOS/App"_s, u"CodeResources"_s,
                                u"_CodeSignature/CodeResources"_s, u"_MASReceipt/receipt"_s,
                                u"Resources/.DS_Store"_s, u"Resources/de.lproj/locversion.plist"_s})
        write(name);
    write(u"Resources/Info.plist"_s);
    EXPECT_EQ(parts().files2.keys(), QList<QByteArray>{"Resources/Info.plist"});
}

TEST_F(Seals, languagesButTheBaseOneAreOptional)
{
    write(u"Resources/de.lproj/a"_s);
    write(u"Resources/Base.lproj/a"_s);
    const auto seal = parts();
    EXPECT_TRUE(seal.files.value("Resources/de.lproj/a").isOptional);
    EXPECT_TRUE(seal.files2.value("Resources/de.lproj/a").isOptional);
    EXPECT_FALSE(seal.files2.value("Resources/Base.lproj/a").isOptional);
    ASSERT_TRUE(QDir(folder.base + u"/Resources/de.lproj"_s).removeRecursively());
    EXPECT_EQ(lines(make()), QStringList());
}

TEST_F(Seals, nestedCodeIsSealedByItsHashAndRequirement)
{
    write(u"Frameworks/X.framework/Versions/A/X"_s);
    write(u"Frameworks/libx.dylib"_s);
    write(u"Frameworks/plain/deep.bundle/file"_s);
    write(u"MacOS/helper"_s);
    write(u"stray"_s);
    const auto seal = parts();
    EXPECT_EQ(seal.files2.size(), 5);
    for (const char *path : {"Frameworks/X.framework", "Frameworks/libx.dylib",
                             "Frameworks/plain/deep.bundle", "MacOS/helper", "stray"}) {
        EXPECT_EQ(seal.files2.value(path).cdHash, cdHash) << path;
        EXPECT_EQ(seal.files2.value(path).requirement, u"identifier \"nested\""_s) << path;
    }
    EXPECT_TRUE(seal.files.isEmpty());
}

TEST_F(Seals, codeInUnlistedPlacesIsSealedFileByFile)
{
    write(u"Library/SystemExtensions/X.dext/_CodeSignature/CodeResources"_s);
    write(u"Resources/Helper.app/Contents/MacOS/Helper"_s);
    write(u"Frameworks/x.dSYM/Contents/file"_s);
    const auto seal = parts();
    EXPECT_FALSE(
        seal.files2.value("Library/SystemExtensions/X.dext/_CodeSignature/CodeResources").isNested());
    EXPECT_FALSE(seal.files2.value("Resources/Helper.app/Contents/MacOS/Helper").isNested());
    EXPECT_FALSE(seal.files2.value("Frameworks/x.dSYM/Contents/file").isNested());
    EXPECT_EQ(seal.files2.size(), 3);
}

TEST_F(Seals, nestedCodeThatHasNoSignatureStopsTheSealAndIsNamed)
{
    write(u"Frameworks/libx.dylib"_s);
    const auto refuse = [](const QString &) -> platform::Result<seal::NestedCode> {
        return platform::Error{u"code object is not signed at all"_s};
    };
    EXPECT_EQ(seal::makeSeal(folder, seal::Digests::sha256, refuse).error(),
              u"code object is not signed at all\nIn subcomponent: "_s + folder.base
                  + u"/Frameworks/libx.dylib"_s);
}

TEST_F(Seals, linksAreSealedByTheirTextAndNeverFollowed)
{
    write(u"Resources/folder/file"_s);
    link(u"Resources/a"_s, "folder");
    link(u"Frameworks/X.framework"_s, "../Resources/folder");
    const auto seal = parts();
    EXPECT_EQ(seal.files2.value("Resources/a").linkTarget, "folder");
    EXPECT_EQ(seal.files2.value("Frameworks/X.framework").linkTarget, "../Resources/folder");
    EXPECT_FALSE(seal.files2.contains("Resources/a/file"));
    EXPECT_EQ(seal.files.size(), 1);
}

TEST_F(Seals, aLinkThatLeavesTheBundleIsRefusedByName)
{
    for (const QByteArray target : {"../../../x", "/etc/passwd", "a/../../../../x"}) {
        link(u"Resources/bad"_s, target);
        EXPECT_EQ(errorOfMaking(),
                  u"invalid destination for symbolic link in bundle\nIn detail: "_s + folder.base
                      + u"/Resources/bad"_s)
            << target.toStdString();
        ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/bad"_s));
    }
    link(u"Resources/good"_s, "../../Contents/x");
    link(u"Resources/system"_s, "/System/Library/x");
    EXPECT_EQ(errorOfMaking(), QString());
}

TEST_F(Seals, aPipeInABundleIsRefusedByName)
{
    write(u"Resources/file"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.base + u"/Resources/pipe"_s).constData(), 0600), 0);
    EXPECT_EQ(errorOfMaking(),
              folder.base + u"/Resources/pipe: neither a file, a folder nor a symbolic link"_s);
}

TEST_F(Seals, aNameThatIsNotUtf8IsRefused)
{
    write(u"Resources/file"_s);
    QFile file(folder.base + u"/Resources/file"_s);
    ASSERT_EQ(rename(QFile::encodeName(file.fileName()).constData(),
                     (QFile::encodeName(folder.base) + "/Resources/\xff").constData()),
              0);
    EXPECT_TRUE(errorOfMaking().endsWith(u"the name is not valid UTF-8"_s));
    EXPECT_EQ(remove((QFile::encodeName(folder.base) + "/Resources/\xff").constData()), 0);
}

TEST_F(Seals, namesAreKeptByteForByteHoweverTheyAreComposed)
{
    writeFile(folder.base
                  + QString::fromUtf8("/Resources/Gro\xcc\x88\xc3\x9f"
                                      "e"),
              "one");
    writeFile(folder.base
                  + QString::fromUtf8("/Resources/Gr\xc3\xb6\xc3\x9f"
                                      "e"),
              "other");
    const auto seal = parts();
    EXPECT_EQ(seal.files2
                  .value("Resources/Gro\xcc\x88\xc3\x9f"
                         "e")
                  .sha256,
              sha256("one"));
    EXPECT_EQ(seal.files2
                  .value("Resources/Gr\xc3\xb6\xc3\x9f"
                         "e")
                  .sha256,
              sha256("other"));
    EXPECT_EQ(lines(make()), QStringList());
}

TEST_F(Seals, aFoldersIconIsSealedUnderItsName)
{
    write(u"Resources/Icon\r"_s);
    EXPECT_TRUE(make().contains("<key>Resources/Icon\r</key>"));
    EXPECT_TRUE(parts().files2.contains("Resources/Icon\r"));
    EXPECT_EQ(lines(make()), QStringList());
}

TEST_F(Seals, aNameThatNoPropertyListCanHoldIsRefused)
{
    write(u"Resources/a\u0001"_s);
    EXPECT_TRUE(errorOfMaking().endsWith(u"the name holds characters that a property list cannot hold"_s));
}

TEST_F(Seals, keysAreInTheOrderOfCodeUnits)
{
    const QByteArray beyond = "\xf0\x9f\x98\x80"; // U+1F600, whose code units are surrogates
    const QByteArray privateUse = "\xee\x80\x80"; // U+E000
    EXPECT_TRUE(seal::comesBefore(beyond, privateUse));
    EXPECT_FALSE(seal::comesBefore(privateUse, beyond));
    EXPECT_TRUE(seal::comesBefore("\xed\x9f\xbf", beyond));
    EXPECT_TRUE(seal::comesBefore("a", "ab"));
    EXPECT_FALSE(seal::comesBefore("ab", "a"));
    EXPECT_FALSE(seal::comesBefore("a", "a"));
}

TEST_F(Seals, attributesInAnAppleDoubleFileAreNoFile)
{
    write(u"Resources/file"_s);
    write(u"Resources/._file"_s, QByteArray("\x00\x05\x16\x07\x00", 5));
    write(u"Resources/._alone"_s, QByteArray("\x00\x05\x16\x07\x00", 5));
    write(u"Resources/._other"_s, "text");
    write(u"Resources/other"_s);
    QList<QByteArray> names = parts().files2.keys();
    std::sort(names.begin(), names.end());
    EXPECT_EQ(
        names,
        (QList<QByteArray>{"Resources/._alone", "Resources/._other", "Resources/file", "Resources/other"}));
}

TEST_F(Seals, aLongSealIsWrittenInBlocks)
{
    constexpr int files = 1'000;
    for (int number = 0; number < files; ++number)
        write(u"Resources/file %1"_s.arg(number), QByteArray::number(number));
    link(u"Resources/link"_s, "file 1");
    const auto made = seal::collectSeal(folder, seal::Digests::sha1AndSha256, describeAny);
    ASSERT_TRUE(made);
    QByteArray bytes;
    int blocks = 0;
    ASSERT_TRUE(made->write([&](QByteArrayView block) {
        ++blocks;
        bytes.append(block);
        return block.size() < 100'000;
    }));
    EXPECT_GT(blocks, 3);
    EXPECT_EQ(bytes, make(seal::Digests::sha1AndSha256));
    const auto read = seal::readSeal(bytes);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->files2.size(), files + 1);
    EXPECT_FALSE(made->write([](QByteArrayView) { return false; })) << "a sink that takes nothing";
}

TEST_F(Seals, aThousandFilesAreDigestedOnAllCores)
{
    std::vector<seal::DigestJob> jobs;
    for (int number = 0; number < 1'000; ++number) {
        const QByteArray name = QByteArray::number(number);
        write(QString::fromLatin1(name), name);
        jobs.push_back({name, number % 2 == 0, true, {}, {}, {}});
    }
    seal::digestFiles(folder.base, jobs);
    for (const seal::DigestJob &job : jobs) {
        ASSERT_EQ(job.sha256, sha256(job.path));
        ASSERT_EQ(job.sha1, job.wantsSha1 ? sha1(job.path) : QByteArray());
    }
}
