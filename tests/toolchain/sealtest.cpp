#include "formats/package/expansion.h"
#include "formats/resourceseal/bundleseal.h"
#include "formats/resourceseal/filedigests.h"
#include "formats/resourceseal/sealcheck.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace toolchain;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;
using seal::Coverage;
using seal::Layout;
using seal::ProblemKind;

namespace {

const QByteArray cdHash(20, 'c');

platform::Result<seal::NestedCode> describeAny(const QString &)
{
    return seal::NestedCode{cdHash, u"identifier \"nested\""_s};
}

QString acceptAny(const QString &, const seal::Entry &)
{
    return {};
}

class Seals : public ToolFixture {
protected:
    void write(const QString &name, const QByteArray &bytes = "bytes") const
    {
        writeFile(folder.base + u'/' + name, bytes);
    }
    void link(const QString &name, const QByteArray &target) const
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(folder.base + u'/' + name).path()));
        ASSERT_TRUE(QFile::link(QString::fromUtf8(target), folder.base + u'/' + name));
    }

    [[nodiscard]] QByteArray make(seal::Digests digests = seal::Digests::sha256) const
    {
        const auto result = seal::makeSeal(folder, digests, describeAny);
        EXPECT_TRUE(result) << result.error().toStdString();
        return result ? *result : QByteArray();
    }
    [[nodiscard]] seal::CodeSeal parts(seal::Digests digests = seal::Digests::sha256) const
    {
        const auto result = seal::readSeal(make(digests));
        EXPECT_TRUE(result) << result.error().toStdString();
        return result ? *result : seal::CodeSeal();
    }
    [[nodiscard]] QStringList lines(const QByteArray &bytes,
                                    seal::Strictness strictness = seal::Strictness::usual) const
    {
        QStringList result;
        for (const seal::Problem &problem : seal::checkSeal(bytes, folder, strictness, acceptAny))
            result.append(problem.line().isNull() ? problem.text : problem.line());
        return result;
    }
    [[nodiscard]] QString errorOfMaking() const
    {
        return seal::makeSeal(folder, seal::Digests::sha256, describeAny).error();
    }

    seal::SealedFolder folder{path(u"App.app/Contents"_s), Layout::withResources, "MacOS/App"};
};

QByteArray sha256(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}
QByteArray sha1(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
}

} // namespace

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

TEST_F(Seals, theCheckTellsAllThatDiffers)
{
    write(u"Resources/changed"_s);
    write(u"Resources/gone"_s);
    write(u"Resources/same"_s);
    link(u"Resources/link"_s, "same");
    const QByteArray bytes = make();
    EXPECT_EQ(lines(bytes), QStringList());
    write(u"Resources/changed"_s, "other");
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/gone"_s));
    write(u"Resources/added"_s);
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/link"_s));
    link(u"Resources/link"_s, "changed");
    EXPECT_EQ(lines(bytes),
              (QStringList{u"file added: "_s + folder.base + u"/Resources/added"_s,
                           u"file modified: "_s + folder.base + u"/Resources/changed"_s,
                           u"file missing: "_s + folder.base + u"/Resources/gone"_s,
                           u"file modified: "_s + folder.base + u"/Resources/link"_s}));
}

TEST_F(Seals, aFileThatBecameALinkOrAFolderIsModified)
{
    write(u"Resources/file"_s);
    write(u"Resources/same"_s);
    const QByteArray bytes = make();
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/file"_s));
    link(u"Resources/file"_s, "same");
    EXPECT_EQ(lines(bytes), QStringList{u"file modified: "_s + folder.base + u"/Resources/file"_s});
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/file"_s));
    write(u"Resources/file/inner"_s);
    EXPECT_EQ(lines(bytes),
              (QStringList{u"file missing: "_s + folder.base + u"/Resources/file"_s,
                           u"file added: "_s + folder.base + u"/Resources/file/inner"_s}));
}

TEST_F(Seals, nestedCodeIsJudgedByTheOneWhoCan)
{
    write(u"MacOS/helper"_s);
    const QByteArray bytes = make();
    const auto problems = seal::checkSeal(bytes, folder, seal::Strictness::usual,
                                          [&](const QString &path, const seal::Entry &entry) {
                                              EXPECT_EQ(path, folder.base + u"/MacOS/helper"_s);
                                              EXPECT_EQ(entry.cdHash, cdHash);
                                              return u"nested code is modified or invalid"_s;
                                          });
    ASSERT_EQ(problems.size(), 1);
    EXPECT_EQ(problems[0].kind, ProblemKind::nested);
    EXPECT_EQ(problems[0].text, u"nested code is modified or invalid"_s);
    EXPECT_TRUE(problems[0].line().isNull());
}

TEST_F(Seals, aStrictCheckNamesObsoleteSealsAndBadLinks)
{
    write(u"Resources/file"_s);
    link(u"Resources/link"_s, "file");
    QByteArray bytes = make();
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/link"_s));
    link(u"Resources/link"_s, "/etc/passwd");
    bytes.replace("<string>file</string>", "<string>/etc/passwd</string>");
    EXPECT_EQ(lines(bytes), QStringList());
    EXPECT_EQ(lines(bytes, seal::Strictness::strict),
              QStringList{u"invalid destination for symbolic link in bundle"_s});
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/link"_s));
    QByteArray custom = make();
    custom.replace("<key>^PkgInfo$</key>", "<key>^Resources/ignored$</key>");
    EXPECT_EQ(lines(custom), QStringList());
    EXPECT_EQ(lines(custom, seal::Strictness::strict),
              QStringList{u"resource envelope is obsolete (custom omit rules)"_s});
    QByteArray old = make();
    old.replace("<key>files2</key>", "<key>other2</key>");
    EXPECT_EQ(lines(old), QStringList());
    EXPECT_EQ(lines(old, seal::Strictness::strict),
              QStringList{u"resource envelope is obsolete (version 1 signature)"_s});
}

TEST_F(Seals, aSealThatIsNoneIsToldAndNotBelieved)
{
    write(u"Resources/file"_s);
    const QByteArray bytes = make();
    for (qsizetype length = 0; length < bytes.size() - 12; length += 37) {
        const auto problems =
            seal::checkSeal(bytes.first(length), folder, seal::Strictness::usual, acceptAny);
        ASSERT_FALSE(problems.isEmpty()) << length;
        EXPECT_EQ(problems[0].kind, ProblemKind::badSeal) << length;
    }
}

TEST_F(Seals, tenThousandRulesAreRefused)
{
    write(u"Resources/file"_s);
    QByteArray rules;
    for (int number = 0; number < 10'000; ++number)
        rules += "<key>^(a|b)*" + QByteArray::number(number) + "$</key><true/>";
    QByteArray bytes = make();
    bytes.replace("<key>rules2</key>\n\t<dict>", "<key>rules2</key>\n\t<dict>" + rules);
    const auto problems = seal::checkSeal(bytes, folder, seal::Strictness::usual, acceptAny);
    ASSERT_EQ(problems.size(), 1);
    EXPECT_EQ(problems[0].text, u"the sealed resource directory is invalid"_s);
    EXPECT_EQ(problems[0].detail, u"more than 1000 rules"_s);
}

TEST_F(Seals, aRuleThatTakesForEverIsGivenUp)
{
    write(u"Resources/"_s + QString(200, u'a') + u"cb"_s);
    QByteArray bytes = make();
    bytes.replace("<key>rules2</key>\n\t<dict>",
                  "<key>rules2</key>\n\t<dict><key>(a+)+(a+)+(a+)+b$</key><dict><key>weight</key><real>9000</"
                  "real></dict>");
    const auto problems = seal::checkSeal(bytes, folder, seal::Strictness::usual, acceptAny);
    ASSERT_EQ(problems.size(), 1);
    EXPECT_EQ(problems[0].kind, ProblemKind::badSeal);
    EXPECT_TRUE(problems[0].detail.endsWith(u"a resource rule takes too long on this name"_s));
}

TEST_F(Seals, theBuiltInMatchersAgreeWithTheirExpressions)
{
    QList<QByteArray> paths;
    const QList<QByteArray> words{"Resources",
                                  "Base.lproj",
                                  "de.lproj",
                                  ".lproj",
                                  "locversion.plist",
                                  "locversionXplist",
                                  "version.plist",
                                  "versionXplist",
                                  "version\xc3\xa4plist",
                                  "Info.plist",
                                  "PkgInfo",
                                  ".DS_Store",
                                  "x.dSYM",
                                  "Frameworks",
                                  "Library",
                                  "LoginItems",
                                  "MacOS",
                                  "embedded.provisionprofile",
                                  "versionversion.plist",
                                  "a"};
    for (const QByteArray &first : words) {
        paths.append(first);
        for (const QByteArray &second : words) {
            paths.append(first + '/' + second);
            paths.append(first + second);
            for (const QByteArray &third : words)
                paths.append(first + '/' + second + '/' + third);
        }
    }
    for (const Layout layout : {Layout::withResources, Layout::flat}) {
        for (const auto *set : {&seal::firstRules(layout), &seal::secondRules(layout)}) {
            for (const seal::Rule &rule : set->rules()) {
                const auto one = seal::RuleSet::fromRules({rule});
                const QRegularExpression expression(rule.pattern);
                seal::Rule sealing = rule;
                sealing.coverage = Coverage::sealed;
                const auto only = seal::RuleSet::fromRules({sealing});
                for (const QByteArray &path : paths)
                    EXPECT_EQ(*only->coverageOf(path) == Coverage::sealed,
                              expression.match(QString::fromUtf8(path)).hasMatch())
                        << rule.pattern.toStdString() << ' ' << path.toStdString();
            }
        }
    }
}

TEST_F(Seals, theSealsFileIsReadOnlyWhereItIsOne)
{
    EXPECT_EQ(seal::readSealFile(folder.base).error(), u"code object is not signed at all"_s);
    write(u"_CodeSignature/CodeResources"_s, "seal");
    EXPECT_EQ(*seal::readSealFile(folder.base), "seal");
    ASSERT_TRUE(QFile::remove(folder.base + u"/_CodeSignature/CodeResources"_s));
    const QByteArray name = QFile::encodeName(folder.base + u"/_CodeSignature/CodeResources"_s);
    ASSERT_EQ(mkfifo(name.constData(), 0600), 0);
    EXPECT_TRUE(seal::readSealFile(folder.base).error().endsWith(u"not a regular file, or too large"_s));
    ASSERT_TRUE(QFile::remove(QFile::decodeName(name)));
    ASSERT_TRUE(QFile::link(u"/dev/zero"_s, QFile::decodeName(name)));
    EXPECT_FALSE(seal::readSealFile(folder.base));
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
