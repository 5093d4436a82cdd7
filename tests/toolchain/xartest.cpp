#include "formats/xar/archive.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"
#include "toolchain/xarbuilder.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace toolchain;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

const QString realPackage = QStringLiteral(PACKAGE_FILE);
const QList<QByteArray> certificates{QByteArray(1'000, 'l'), QByteArray(54, 'i')};

xar::ArchiveSigner signerWith(qsizetype cmsSize, QByteArray *signedChecksum = nullptr)
{
    return {certificates, 256,
            [=](const QByteArray &checksum,
                QCryptographicHash::Algorithm) -> platform::Result<xar::SignatureValues> {
                if (signedChecksum != nullptr)
                    *signedChecksum = checksum;
                return xar::SignatureValues{QByteArray(256, 'r'), QByteArray(cmsSize, 'c')};
            }};
}

xar::Archive opened(const QString &path)
{
    auto archive = xar::Archive::open(path);
    EXPECT_TRUE(archive) << archive.error().toStdString();
    return *archive;
}

QByteArray contentOf(const xar::Archive &archive, QStringView path)
{
    const xar::TocFile *file = archive.toc().file(path);
    const auto content = file ? archive.contentOf(*file, 64 << 20)
                              : platform::Result<QByteArray>(platform::Error{u"not there"_s});
    EXPECT_TRUE(content) << content.error().toStdString();
    return content.valueOr({});
}

/// The table of contents as XML; qUncompress wants its length in front.
QByteArray tocIn(const QString &path)
{
    const QByteArray bytes = readFile(path);
    const auto length = qFromBigEndian<quint64>(bytes.constData() + 8);
    QByteArray packed(4, '\0');
    qToBigEndian(quint32(qFromBigEndian<quint64>(bytes.constData() + 16)), packed.data());
    return qUncompress(packed + bytes.mid(28, qsizetype(length)));
}

class XarArchives : public ToolFixture {
protected:
    [[nodiscard]] QString refusal(const QByteArray &toc) const
    {
        xarbuilder::writeArchive(path(u"bad.xar"_s), toc, {{u"a"_s, "content of a"}});
        const auto archive = xar::Archive::open(path(u"bad.xar"_s));
        return archive ? u"none"_s : archive.error();
    }
    [[nodiscard]] QByteArray goodToc() const { return xarbuilder::tocOf({{u"a"_s, "content of a"}}); }

    const QList<xarbuilder::XarFile> files{{u"PackageInfo"_s, "<pkg-info/>"}, {u"Payload"_s, "payload"}};
};

} // namespace

TEST_F(XarArchives, aPackageOfApplesToolsIsReadAndSound)
{
    const xar::Archive archive = opened(realPackage);
    EXPECT_TRUE(archive.isPackage());
    EXPECT_EQ(archive.damagedFile(), QString());
    EXPECT_EQ(archive.toc().files.size(), 4);
    EXPECT_EQ(archive.toc().signature->style, u"RSA"_s);
    EXPECT_EQ(archive.toc().secondSignature->style, u"CMS"_s);
    EXPECT_EQ(archive.toc().signature->certificates.size(), 3);
    EXPECT_EQ(archive.checksum().toHex(), "d3ec39419fe578ba9651704ec98140fbff0684a7");
    EXPECT_TRUE(contentOf(archive, u"PackageInfo").startsWith("<?xml"));
    EXPECT_EQ(contentOf(archive, u"Bom").size(), 63'751);
    EXPECT_EQ(contentOf(archive, u"Payload").size(), 1'993'484);
    EXPECT_EQ(archive.ticket().size(), 1'779);
}

TEST_F(XarArchives, aTableWithTheSameCertificatesComesOutByteForByte)
{
    const xar::Archive archive = opened(realPackage);
    const QByteArray xml = tocIn(realPackage);
    const auto again =
        xar::tocWithSignatures(xml, archive.toc(), {archive.toc().signature->certificates, 256, 9'216});
    ASSERT_TRUE(again) << again.error().toStdString();
    EXPECT_EQ(again->xml, xml);
    EXPECT_EQ(again->rsa, archive.toc().signature->place);
    EXPECT_EQ(again->cms, archive.toc().secondSignature->place);
}

TEST_F(XarArchives, aSignedCopyHoldsBothSignaturesAndTheSameFiles)
{
    xarbuilder::writeArchive(path(u"in.pkg"_s), files);
    QByteArray checksum;
    ASSERT_TRUE(opened(path(u"in.pkg"_s)).writeSigned(path(u"out.pkg"_s), signerWith(9'000, &checksum)));
    const xar::Archive archive = opened(path(u"out.pkg"_s));
    EXPECT_EQ(archive.checksum(), checksum);
    EXPECT_EQ(archive.heapBytes(archive.toc().signature->place), QByteArray(256, 'r'));
    EXPECT_EQ(archive.heapBytes(archive.toc().secondSignature->place),
              QByteArray(9'000, 'c').leftJustified(9'216, '\0'));
    EXPECT_EQ(archive.toc().signature->certificates, certificates);
    EXPECT_EQ(archive.damagedFile(), QString());
    EXPECT_EQ(contentOf(archive, u"Payload"), "payload");
    EXPECT_EQ(run(u"7z"_s, {u"t"_s, u"-txar"_s, path(u"out.pkg"_s)}).status, 0);
}

TEST_F(XarArchives, signingAgainReplacesBothSignaturesAndDropsTheTicket)
{
    ASSERT_TRUE(opened(realPackage).writeSigned(path(u"again.pkg"_s), signerWith(100)));
    const xar::Archive archive = opened(path(u"again.pkg"_s));
    EXPECT_EQ(archive.ticket(), QByteArray());
    EXPECT_EQ(archive.toc().signature->certificates, certificates);
    EXPECT_EQ(archive.damagedFile(), QString());
    EXPECT_EQ(contentOf(archive, u"Payload"), contentOf(opened(realPackage), u"Payload"));
    EXPECT_EQ(QFileInfo(path(u"again.pkg"_s)).size(), QByteArray(readFile(path(u"again.pkg"_s))).size());
}

TEST_F(XarArchives, aCmsThatIsTooLongForTheUsualRoomGetsMore)
{
    xarbuilder::writeArchive(path(u"in.pkg"_s), files);
    ASSERT_TRUE(opened(path(u"in.pkg"_s)).writeSigned(path(u"out.pkg"_s), signerWith(20'000)));
    const xar::Archive archive = opened(path(u"out.pkg"_s));
    EXPECT_EQ(archive.toc().secondSignature->place.size, 20'480U);
    EXPECT_EQ(contentOf(archive, u"Payload"), "payload");
}

TEST_F(XarArchives, longerChecksumsOfTheTableAreKept)
{
    const xarbuilder::XarOptions kinds[] = {{u"sha256"_s, QCryptographicHash::Sha256, 3},
                                            {u"sha512"_s, QCryptographicHash::Sha512, 4}};
    for (const auto &kind : kinds) {
        xarbuilder::writeArchive(path(u"in.pkg"_s), files, kind);
        ASSERT_TRUE(opened(path(u"in.pkg"_s)).writeSigned(path(u"out.pkg"_s), signerWith(100)));
        const xar::Archive archive = opened(path(u"out.pkg"_s));
        EXPECT_EQ(archive.checksumAlgorithm(), kind.algorithm);
        EXPECT_EQ(archive.toc().signature->place.offset,
                  quint64(QCryptographicHash::hashLength(kind.algorithm)));
        EXPECT_EQ(contentOf(archive, u"Payload"), "payload");
    }
}

TEST_F(XarArchives, filesBeyondFourGigabytesAreReachedAndMoved)
{
    const QList<xarbuilder::XarFile> far{{u"PackageInfo"_s, "near"},
                                         {u"Payload"_s, "far away", quint64(5) << 30}};
    xarbuilder::writeArchive(path(u"in.pkg"_s), far);
    const xar::Archive archive = opened(path(u"in.pkg"_s));
    EXPECT_EQ(contentOf(archive, u"Payload"), "far away");
    EXPECT_EQ(archive.damagedFile(), QString());
    ASSERT_TRUE(archive.writeSigned(path(u"out.pkg"_s), signerWith(100)));
    EXPECT_EQ(contentOf(opened(path(u"out.pkg"_s)), u"Payload"), "far away");
    EXPECT_LT(QFileInfo(path(u"out.pkg"_s)).size(), 100'000) << "what no file claims is left behind";
}

TEST_F(XarArchives, aTicketStandsBehindTheHeapBetweenTwoTrailers)
{
    xarbuilder::writeArchive(path(u"in.pkg"_s), files);
    const QByteArray before = readFile(path(u"in.pkg"_s));
    ASSERT_TRUE(opened(path(u"in.pkg"_s)).attachTicket("ticket"));
    const QByteArray first("t8lr\x01\0\x01\0\0\0\0\0\0\0\0\0", 16);
    const QByteArray last("t8lr\x01\0\x02\0\x06\0\0\0\0\0\0\0", 16);
    EXPECT_EQ(readFile(path(u"in.pkg"_s)), before + first + "ticket" + last);
    EXPECT_EQ(opened(path(u"in.pkg"_s)).ticket(), "ticket");
    ASSERT_TRUE(opened(path(u"in.pkg"_s)).attachTicket("longer ticket"));
    EXPECT_EQ(opened(path(u"in.pkg"_s)).ticket(), "longer ticket");
    EXPECT_EQ(QFileInfo(path(u"in.pkg"_s)).size(), before.size() + 32 + 13);
}

TEST_F(XarArchives, aTicketBehindAChangedTrailerIsNone)
{
    const QByteArray whole = bundlebuilder::readFile(QStringLiteral(PACKAGE_FILE));
    const qsizetype first = whole.lastIndexOf("t8lr", whole.lastIndexOf("t8lr") - 1);
    ASSERT_GT(first, 0);
    for (const qsizetype place : {first, first + 5, first + 7, first + 8, first + 15, whole.size() - 1}) {
        QByteArray changed = whole;
        changed[place] = char(changed[place] ^ 0x20);
        bundlebuilder::writeFile(path(u"changed.pkg"_s), changed);
        const auto archive = xar::Archive::open(path(u"changed.pkg"_s));
        ASSERT_TRUE(archive);
        EXPECT_TRUE(archive->ticket().isEmpty()) << place;
    }
}

TEST_F(XarArchives, theTicketOfARealPackageIsPutBackByteForByte)
{
    const QByteArray whole = readFile(realPackage);
    const QByteArray ticket = opened(realPackage).ticket();
    writeFile(path(u"bare.pkg"_s), whole.chopped(ticket.size() + 32));
    EXPECT_EQ(opened(path(u"bare.pkg"_s)).ticket(), QByteArray());
    ASSERT_TRUE(opened(path(u"bare.pkg"_s)).attachTicket(ticket));
    EXPECT_EQ(readFile(path(u"bare.pkg"_s)), whole);
}

TEST_F(XarArchives, namesThatLeadElsewhereAreRefused)
{
    for (const QByteArray name : {"..", ".", "a/b", "/etc/passwd", ""}) {
        const QString error = refusal(goodToc().replace("<name>a</name>", "<name>" + name + "</name>"));
        EXPECT_TRUE(error.contains(u"name"_s)) << name.toStdString() << error.toStdString();
    }
}

TEST_F(XarArchives, placesThatAreNoneAreRefused)
{
    for (const QByteArray number : {"-1", "99999999999999999999", "1152921504606846975", "x", ""}) {
        EXPECT_NE(refusal(goodToc().replace("<offset>20</offset>", "<offset>" + number + "</offset>")),
                  u"none"_s);
        EXPECT_NE(refusal(goodToc().replace("<length>12</length>", "<length>" + number + "</length>")),
                  u"none"_s);
    }
}

TEST_F(XarArchives, aFileInThePlaceOfTheChecksumIsNotSigned)
{
    xarbuilder::writeArchive(path(u"bad.xar"_s),
                             goodToc().replace("<offset>20</offset>", "<offset>4</offset>"),
                             {{u"a"_s, "content of a"}});
    const auto outcome = opened(path(u"bad.xar"_s)).writeSigned(path(u"out.pkg"_s), signerWith(100));
    EXPECT_EQ(outcome.error(), u"a file lies where the checksum of the table does"_s);
    EXPECT_FALSE(QFileInfo::exists(path(u"out.pkg"_s)));
}

TEST_F(XarArchives, aTableThatUnpacksToMoreThanItSaysIsRefused)
{
    xarbuilder::writeArchive(path(u"bad.xar"_s), files);
    QByteArray bytes = readFile(path(u"bad.xar"_s));
    for (const quint64 size : {quint64(1), quint64(60) << 20, quint64(1) << 40}) {
        qToBigEndian(size, bytes.data() + 16);
        writeFile(path(u"bad.xar"_s), bytes);
        EXPECT_FALSE(xar::Archive::open(path(u"bad.xar"_s))) << size;
    }
}

TEST_F(XarArchives, aThousandFoldersInOneAnotherAreRefused)
{
    const QByteArray nested =
        QByteArray("<file><name>d</name>").repeated(1'000) + QByteArray("</file>").repeated(1'000);
    EXPECT_TRUE(
        refusal(goodToc().replace(" </toc>", nested + " </toc>")).contains(u"too many files or folders"_s));
}

TEST_F(XarArchives, whatIsCutShortOrChangedIsNotedNotBelieved)
{
    xarbuilder::writeArchive(path(u"whole.xar"_s), files);
    const QByteArray whole = readFile(path(u"whole.xar"_s));
    for (qsizetype length = 0; length < whole.size(); length += 3) {
        writeFile(path(u"bad.xar"_s), whole.first(length));
        EXPECT_FALSE(xar::Archive::open(path(u"bad.xar"_s))) << length;
    }
    QByteArray changed = whole;
    changed.back() = '!';
    writeFile(path(u"bad.xar"_s), changed);
    EXPECT_EQ(opened(path(u"bad.xar"_s)).damagedFile(), u"Payload"_s);
}

TEST_F(XarArchives, aPipeIsNotWaitedFor)
{
    ASSERT_EQ(mkfifo(QFile::encodeName(path(u"pipe"_s)).constData(), 0600), 0);
    EXPECT_FALSE(xar::Archive::looksLikeOne(path(u"pipe"_s)));
    EXPECT_EQ(xar::Archive::open(path(u"pipe"_s)).error(), u"not a file"_s);
}

TEST_F(XarArchives, aBombStopsAtTheSizeThatTheTableTells)
{
    const QByteArray bomb = xarbuilder::packed(QByteArray(50 << 20, '\0'));
    QByteArray toc = xarbuilder::tocOf({{u"a"_s, bomb}});
    toc.replace("application/octet-stream", "application/x-gzip");
    const QByteArray size = "<size>" + QByteArray::number(bomb.size()) + "</size>";
    xarbuilder::writeArchive(path(u"bomb.xar"_s), toc.replace(size, "<size>1000</size>"), {{u"a"_s, bomb}});
    const xar::Archive archive = opened(path(u"bomb.xar"_s));
    qsizetype received = 0;
    const auto outcome = archive.unpack(*archive.toc().file(u"a"), [&received](QByteArrayView bytes) {
        received += bytes.size();
        return true;
    });
    EXPECT_EQ(outcome.error(), u"a: damaged"_s);
    EXPECT_LE(received, 1'000);
}
