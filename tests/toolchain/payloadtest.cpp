#include "formats/package/payload.h"
#include "formats/package/expansion.h"
#include "toolchain/bom.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/cpiobuilder.h"
#include "toolchain/toolfixture.h"
#include "toolchain/xarbuilder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

using namespace Qt::StringLiterals;
using namespace toolchain;
using bundlebuilder::readFile;
using cpiobuilder::CpioItem;
using package::CpioEntry;

namespace {

const QString realPackage = QStringLiteral(PACKAGE_FILE);

/// "d 755 a", "- 644 a/b content", one line an item, or the error.
QByteArray listing(const QByteArray &bytes, qsizetype block = 1'000'000)
{
    QByteArray result;
    const package::CpioVisitor visitor{[&](const CpioEntry &entry) {
                                           const char types[] = {'-', 'd', 'l', '?'};
                                           result += QByteArray(1, types[int(entry.type)]) + ' '
                                               + QByteArray::number(entry.mode, 8) + ' ' + entry.path + ' ';
                                           if (entry.size == 0)
                                               result += '\n';
                                           return platform::Outcome();
                                       },
                                       [&](QByteArrayView content) {
                                           result.append(content);
                                           if (content.endsWith('.'))
                                               result += '\n';
                                           return platform::Outcome();
                                       }};
    package::PayloadReader reader(visitor);
    for (qsizetype from = 0; from < bytes.size()
         && reader.add(QByteArrayView(bytes).sliced(from, std::min(block, bytes.size() - from)));
         from += block)
        continue;
    const auto outcome = reader.finish();
    return outcome ? result : outcome.error().toUtf8();
}

const QList<CpioItem> items{{".", 040755, {}},
                            {"./a", 040700, {}},
                            {"./a/tool", 0100755, "content."},
                            {"./a/link", 0120755, "tool."},
                            {"./empty", 0100644, {}}};
const QByteArray listed = "d 755  \nd 700 a \n- 755 a/tool content.\nl 755 a/link tool.\n- 644 empty \n";

class Expansions : public ToolFixture {
protected:
    static inline const QString pkgutil = u"/usr/sbin/pkgutil"_s;

    /// A package whose scripts are this archive, expanded; the error, or nothing.
    [[nodiscard]] QString expandScripts(const QByteArray &scripts) const
    {
        xarbuilder::writeArchive(path(u"in.pkg"_s),
                                 {{u"PackageInfo"_s, "<pkg-info/>"}, {u"Scripts"_s, scripts}});
        const auto archive = xar::Archive::open(path(u"in.pkg"_s));
        EXPECT_TRUE(archive) << archive.error().toStdString();
        return package::expandPackage(*archive, path(u"out"_s), package::Depth::archive).error();
    }
    [[nodiscard]] QStringList leftovers() const
    {
        return QDir(path(u"."_s))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
};

} // namespace

TEST(Payloads, bothFormsOfCpioAreRead)
{
    EXPECT_EQ(listing(cpiobuilder::portable(items)), listed);
    EXPECT_EQ(listing(cpiobuilder::newer(items)), listed);
}

TEST(Payloads, theyMayComeByteByByte)
{
    EXPECT_EQ(listing(cpiobuilder::portable(items), 1), listed);
    EXPECT_EQ(listing(cpiobuilder::newer(items), 1), listed);
    EXPECT_EQ(listing(cpiobuilder::pbzx(cpiobuilder::portable(items), 100), 1), listed);
}

TEST(Payloads, chunksOfXzAreUnpackedAndPlainOnesTaken)
{
    const QByteArray archive = cpiobuilder::portable(items);
    for (const qsizetype chunk : {16, 200, 100'000})
        EXPECT_EQ(listing(cpiobuilder::pbzx(archive, chunk)), listed) << chunk;
}

TEST(Payloads, aPayloadThatIsCutOrChangedIsDamaged)
{
    const QByteArray good = cpiobuilder::pbzx(cpiobuilder::portable(items), 200);
    for (qsizetype length = 0; length < good.size(); ++length)
        EXPECT_NE(listing(good.first(length)), listed) << length;
    QByteArray wrong = good;
    qToBigEndian(quint64(1) << 62, wrong.data() + 12);
    EXPECT_EQ(listing(wrong), "damaged");
    qToBigEndian(quint64(150), wrong.data() + 12);
    EXPECT_EQ(listing(wrong), "damaged") << "a chunk that gives more than it tells";
}

TEST(Payloads, namesThatLeadOutAreRefused)
{
    for (const QByteArray name : {"../x", "a/../../x", "/etc/x", "..", "a/.."})
        EXPECT_EQ(listing(cpiobuilder::portable({{name, 0100644, "x"}})),
                  name + ": the name leads out of the archive's folder");
}

TEST(Payloads, whatIsNoArchiveIsRefused)
{
    for (const QByteArray &bytes : {QByteArray("hello, world"), QByteArray(), QByteArray(200, '0'),
                                    QByteArray("070707").leftJustified(100, '9')})
        EXPECT_NE(listing(bytes), listed);
    QByteArray archive = cpiobuilder::portable(items);
    EXPECT_EQ(listing(archive.replace(59, 6, "777777")), "no cpio archive, or a damaged one");
}

TEST(Payloads, thatOfARealPackageAgreesWithItsBill)
{
    const auto archive = xar::Archive::open(realPackage);
    ASSERT_TRUE(archive);
    const auto bom = package::readBom(*archive->contentOf(*archive->toc().file(u"Bom"), 1 << 20));
    ASSERT_TRUE(bom) << bom.error().toStdString();
    QMap<QByteArray, quint64> billed;
    for (const package::BomEntry &entry : *bom)
        billed.insert(entry.path, entry.type == package::BomType::file ? entry.size : 0);
    QMap<QByteArray, quint64> found;
    const package::CpioVisitor visitor{
        [&](const CpioEntry &entry) {
            // a bill gives attributes, which the payload has as AppleDouble files, no size
            const bool hasSize = entry.type == package::CpioType::file && !entry.path.contains("/._");
            found.insert(entry.path.isEmpty() ? QByteArray(".") : "./" + entry.path,
                         hasSize ? entry.size : 0);
            return platform::Outcome();
        },
        [](QByteArrayView) { return platform::Outcome(); }};
    const auto payloads = package::payloadsOf(*archive);
    ASSERT_EQ(payloads.size(), 1);
    const auto outcome = package::readPayload(*archive, *payloads.first(), visitor);
    ASSERT_TRUE(outcome) << outcome.error().toStdString();
    EXPECT_EQ(found, billed);
    EXPECT_GT(found.size(), 30);
}

TEST_F(Expansions, aRealPackageIsExpanded)
{
    ASSERT_EQ(run(pkgutil, {u"--expand"_s, realPackage, path(u"out"_s)}).status, 0);
    EXPECT_EQ(QDir(path(u"out"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name),
              (QStringList{u"Bom"_s, u"PackageInfo"_s, u"Payload"_s, u"Scripts"_s}));
    EXPECT_TRUE(QFileInfo(path(u"out/Scripts/postinstall"_s)).isExecutable());
    EXPECT_EQ(QFileInfo(path(u"out/Payload"_s)).size(), 1'993'484);
}

TEST_F(Expansions, payloadsAreUnpackedWhereTheyAreWanted)
{
    ASSERT_EQ(run(pkgutil, {u"--expand-full"_s, realPackage, path(u"out"_s)}).status, 0);
    EXPECT_TRUE(QFileInfo(path(u"out/Payload/Applications"_s)).isDir());
}

TEST_F(Expansions, whatAPackageInstallsIsListed)
{
    const ToolResult result = run(pkgutil, {u"--payload-files"_s, realPackage});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.startsWith(u".\n./"_s)) << result.output.left(100).toStdString();
    EXPECT_TRUE(result.output.contains(
        u"\n./Applications/.Karabiner-VirtualHIDDevice-Manager.app/Contents/Info.plist\n"_s));
}

TEST_F(Expansions, aFolderThatIsThereIsLeftAlone)
{
    ASSERT_TRUE(QDir().mkpath(path(u"out"_s)));
    const ToolResult result = run(pkgutil, {u"--expand"_s, realPackage, path(u"out"_s)});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.contains(u"File exists"_s));
    EXPECT_TRUE(QDir(path(u"out"_s)).isEmpty());
}

TEST_F(Expansions, deviceNodesAndLinksOutAreRefusedAndNothingIsLeft)
{
    EXPECT_EQ(expandScripts(cpiobuilder::portable({{"./disk", 0060644, {}}})),
              u"Scripts: Scripts/disk: neither a file, a folder nor a symbolic link"_s);
    for (const QByteArray target : {"/etc", "../../..", "a/../../../x"})
        EXPECT_EQ(expandScripts(cpiobuilder::portable({{"./l", 0120777, target}})),
                  u"Scripts: Scripts/l: a link that leads out of its folder"_s)
            << target.toStdString();
    EXPECT_EQ(leftovers(), QStringList{u"in.pkg"_s});
}

TEST_F(Expansions, aLinkIsNeverWrittenThrough)
{
    const QString error = expandScripts(
        cpiobuilder::portable({{"./d", 040755, {}}, {"./l", 0120777, "d"}, {"./l/x", 0100644, "evil"}}));
    EXPECT_TRUE(error.startsWith(u"Scripts: Scripts/l/x: "_s)) << error.toStdString();
    EXPECT_EQ(leftovers(), QStringList{u"in.pkg"_s});
}

TEST_F(Expansions, aNameThatStandsThereTwiceIsRefused)
{
    const QString error =
        expandScripts(cpiobuilder::portable({{"./a", 0100644, "one"}, {"./a", 0100644, "other"}}));
    EXPECT_TRUE(error.contains(u"Scripts/a: File exists"_s)) << error.toStdString();
}

TEST_F(Expansions, aFileThatIsShorterThanItSaysLeavesNothingBehind)
{
    QByteArray archive = cpiobuilder::portable({{"./huge", 0100644, "x"}});
    archive.replace(65, 11, "77777777777");
    EXPECT_FALSE(expandScripts(archive).isEmpty());
    EXPECT_EQ(leftovers(), QStringList{u"in.pkg"_s});
}

TEST_F(Expansions, wrongUseIsToldApart)
{
    EXPECT_EQ(run(pkgutil, {u"--flatten"_s, path(u"a"_s), path(u"b"_s)}).status, 2);
    EXPECT_EQ(run(pkgutil, {u"--expand"_s, path(u"a"_s)}).status, 64);
    EXPECT_EQ(run(pkgutil, {}).status, 64);
    EXPECT_EQ(run(pkgutil, {u"--payload-files"_s, path(u"none.pkg"_s)}).status, 1);
    EXPECT_TRUE(run(pkgutil, {u"--help"_s}).output.startsWith(u"Usage: pkgutil"_s));
}

TEST_F(Expansions, theSignatureOfARealPackageIsReported)
{
    const ToolResult result = run(pkgutil, {u"--check-signature"_s, realPackage});
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_TRUE(result.output.startsWith(uR"(Package "Karabiner-DriverKit-VirtualHIDDevice-7.3.0.pkg":
   Status: signed by a developer certificate issued by Apple for distribution
   Notarization: trusted by the Apple notary service
   Signed with a trusted timestamp on: 2026-06-17 12:07:00 +0000
   Certificate Chain:
    1. Developer ID Installer: Fumihiko Takayama (G43BCU2T37)
       Expires: 2027-02-01 22:12:15 +0000
       SHA256 Fingerprint:
           6B FA EF 82 19 7D 9E 77 22 A5 EC 20 7C B1 33 A5 9C 70 37 88 1D 30
           2B 04 DB 19 95 CA 44 04 FE B8
       ------------------------------------------------------------------------
    2. Developer ID Certification Authority
)"_s)) << result.output.toStdString();
    EXPECT_TRUE(result.output.contains(u"\n    3. Apple Root CA\n"_s));
}

TEST_F(Expansions, aChangedSignatureOfARealPackageIsReported)
{
    const QByteArray whole = readFile(realPackage);
    const qsizetype heap = 28 + 4'211;
    const struct {
        qsizetype place;
        QString status;
    } rows[]{{heap + 20 + 100, u"package is invalid (checksum did not verify)"_s}, // RSA
             {heap + 276 + 3'000, u"package is invalid (checksum did not verify)"_s}, // CMS
             {heap + 20'000, u"package is invalid (checksum did not verify)"_s}, // a file
             {whole.size() - 200,
              u"signed by a developer certificate issued by Apple for distribution"_s}}; // ticket
    for (const auto &row : rows) {
        QByteArray changed = whole;
        changed[row.place] = char(changed[row.place] ^ 1);
        bundlebuilder::writeFile(path(u"changed.pkg"_s), changed);
        const ToolResult result = run(pkgutil, {u"--check-signature"_s, path(u"changed.pkg"_s)});
        EXPECT_TRUE(result.output.contains(u"Status: "_s + row.status + u'\n'))
            << result.output.toStdString();
        EXPECT_FALSE(result.output.contains(u"Notarization"_s) && row.place > whole.size() - 300);
    }
}

TEST_F(Expansions, anUnsignedPackageIsReported)
{
    xarbuilder::writeArchive(path(u"in.pkg"_s), {{u"PackageInfo"_s, "<pkg-info/>"}});
    const ToolResult result = run(pkgutil, {u"--check-signature"_s, path(u"in.pkg"_s)});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, u"Package \"in.pkg\":\n   Status: no signature\n"_s);
}
