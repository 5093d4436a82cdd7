#include "formats/codesignature/cmsreader.h"
#include "formats/codesignature/trust.h"
#include "formats/package/packagejudgement.h"
#include "formats/statefolder.h"
#include "formats/timestampauthority.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/httpanswers.h"
#include "toolchain/keychainfixture.h"
#include "toolchain/xarbuilder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace toolchain;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;
using package::PackageJudgement;

namespace {

class PackageSigning : public KeychainFixture {
protected:
    static inline const QString productsign = u"/usr/bin/productsign"_s;
    static inline const QString pkgutil = u"/usr/sbin/pkgutil"_s;
    static inline const QString installer = u"Developer ID Installer: Example Corp (A1B2C3D4E5)"_s;

    void SetUp() override
    {
        KeychainFixture::SetUp();
        KeychainFixture::makeIdentity(IdentityKind::installer);
        xarbuilder::writeArchive(package(), files);
    }
    void TearDown() override
    {
        qunsetenv("SEALWRIGHT_NOTARY_TIMESTAMP");
        qunsetenv("SEALWRIGHT_WAIT_SCALE");
        KeychainFixture::TearDown();
    }

    [[nodiscard]] QString package() const { return path(u"in.pkg"_s); }
    [[nodiscard]] QString signedPackage() const { return path(u"out.pkg"_s); }

    [[nodiscard]] ToolResult sign(const QString &timestamp, const std::function<void()> &inChild = {}) const
    {
        QStringList arguments{u"--sign"_s, installer, package(), signedPackage()};
        if (!timestamp.isNull())
            arguments.insert(2, timestamp);
        return run(productsign, arguments, {}, inChild);
    }

    [[nodiscard]] static PackageJudgement judged(const QString &path)
    {
        const auto archive = xar::Archive::open(path);
        EXPECT_TRUE(archive) << archive.error().toStdString();
        return archive ? package::judgePackage(*archive) : PackageJudgement();
    }

    const QList<xarbuilder::XarFile> files{{u"PackageInfo"_s, "<pkg-info/>"},
                                           {u"Payload"_s, QByteArray("payload ").repeated(2'000)}};
};

xar::Archive opened(const QString &path)
{
    auto archive = xar::Archive::open(path);
    EXPECT_TRUE(archive) << archive.error().toStdString();
    return std::move(*archive);
}

/// The time-stamp authority of this machine behind an address.
class StampServer {
public:
    StampServer()
        : m_authority(*TimestampAuthority::open(keychainFolder()))
        , m_server([this](const QByteArray &query) { return m_authority.answer(query, {}); })
    {
    }
    [[nodiscard]] QString url() const { return m_server.url(); }

private:
    const TimestampAuthority m_authority;
    HttpAnswers m_server;
};

} // namespace

TEST_F(PackageSigning, bothSignaturesAreMadeWithAChainAndATimestamp)
{
    const StampServer authority;
    const ToolResult result = sign(u"--timestamp="_s + authority.url());
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(result.output.section(u'\n', 0, 0), u"productsign: using timestamp authority for signature"_s);
    const PackageJudgement judgement = judged(signedPackage());
    EXPECT_TRUE(judgement.isGood()) << judgement.problem.toStdString();
    EXPECT_EQ(judgement.trust.anchor, Anchor::thisMachine);
    EXPECT_EQ(judgement.trust.chain.size(), 3);
    ASSERT_TRUE(judgement.timestamp);
    EXPECT_LT(std::abs(judgement.timestamp->secsTo(QDateTime::currentDateTimeUtc())), 60);
    const xar::Archive archive = opened(signedPackage());
    EXPECT_EQ(archive.toc().signature->certificates.size(), 3);
    EXPECT_EQ(archive.toc().secondSignature->certificates, archive.toc().signature->certificates);
}

TEST_F(PackageSigning, opensslVerifiesTheCms)
{
    ASSERT_EQ(sign(u"--timestamp=none"_s).status, 0);
    const xar::Archive archive = opened(signedPackage());
    EXPECT_TRUE(opensslVerifies(archive.heapBytes(archive.toc().secondSignature->place), archive.checksum()));
}

TEST_F(PackageSigning, theSettingsAuthorityIsAskedWithoutAnOption)
{
    const StampServer authority;
    qputenv("SEALWRIGHT_NOTARY_TIMESTAMP", authority.url().toUtf8());
    ASSERT_EQ(sign({}).status, 0);
    EXPECT_TRUE(judged(signedPackage()).timestamp);
}

TEST_F(PackageSigning, anAuthorityThatIsAwayFailsAndLeavesWhatWasThere)
{
    writeFile(signedPackage(), "before");
    qputenv("SEALWRIGHT_WAIT_SCALE", "0.05");
    const HttpAnswers silent([](const QByteArray &) { return QByteArray(); }, HttpAnswers::Manner::refusing);
    for (const QString &url : {u"http://127.0.0.1:1/"_s, silent.url()}) {
        const ToolResult result = sign(u"--timestamp="_s + url);
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.error.contains(u"The timestamp service is not available."_s))
            << result.error.toStdString();
        EXPECT_EQ(readFile(signedPackage()), "before");
    }
}

TEST_F(PackageSigning, longerChecksumsAreSignedWithTheirOwnDigest)
{
    const StampServer authority;
    const xarbuilder::XarOptions kinds[] = {{u"sha256"_s, QCryptographicHash::Sha256, 3},
                                            {u"sha512"_s, QCryptographicHash::Sha512, 4}};
    for (const auto &kind : kinds) {
        xarbuilder::writeArchive(package(), files, kind);
        ASSERT_EQ(sign(u"--timestamp="_s + authority.url()).status, 0);
        const PackageJudgement judgement = judged(signedPackage());
        EXPECT_TRUE(judgement.isGood()) << judgement.problem.toStdString();
        EXPECT_TRUE(judgement.timestamp);
        const xar::Archive archive = opened(signedPackage());
        EXPECT_TRUE(
            opensslVerifies(archive.heapBytes(archive.toc().secondSignature->place), archive.checksum()));
    }
}

TEST_F(PackageSigning, aPackageSignedByAnotherIsSignedAgain)
{
    writeFile(package(), readFile(QStringLiteral(PACKAGE_FILE)));
    ASSERT_EQ(sign(u"--timestamp=none"_s).status, 0);
    const PackageJudgement judgement = judged(signedPackage());
    EXPECT_TRUE(judgement.isGood()) << judgement.problem.toStdString();
    EXPECT_EQ(judgement.trust.anchor, Anchor::thisMachine);
    EXPECT_EQ(judgement.ticket.verdict, ticket::TicketJudgement::Verdict::none);
}

TEST_F(PackageSigning, theReportSaysWhoseAuthorityItIs)
{
    ASSERT_EQ(sign(u"--timestamp=none"_s).status, 0);
    const ToolResult report = run(pkgutil, {u"--check-signature"_s, signedPackage()});
    EXPECT_EQ(report.status, 0) << report.error.toStdString();
    EXPECT_TRUE(report.output.contains(
        u"   Status: signed by a developer certificate of this machine for distribution\n"_s));
    EXPECT_FALSE(report.output.contains(u"Apple for"_s));
}

TEST_F(PackageSigning, anotherMachinesAuthorityIsNotTrusted)
{
    ASSERT_EQ(sign(u"--timestamp=none"_s).status, 0);
    ASSERT_TRUE(QFile::rename(statePath(u"keychain"_s), statePath(u"gone"_s)));
    EXPECT_EQ(judged(signedPackage()).verdict, PackageJudgement::Verdict::untrusted);
    const ToolResult report = run(pkgutil, {u"--check-signature"_s, signedPackage()});
    EXPECT_EQ(report.status, 1);
    EXPECT_TRUE(report.output.contains(u"   Status: signed by untrusted certificate\n"_s));
}

TEST_F(PackageSigning, everyChangedBitThatASignatureCoversIsNoticed)
{
    ASSERT_EQ(sign(u"--timestamp=none"_s).status, 0);
    const QByteArray whole = readFile(signedPackage());
    QRandomGenerator random(7);
    for (int round = 0; round < 1'000; ++round) {
        QByteArray changed = whole;
        const qsizetype place = random.bounded(int(whole.size()));
        changed[place] = char(changed[place] ^ (1 << random.bounded(8)));
        writeFile(path(u"changed.pkg"_s), changed);
        const auto archive = xar::Archive::open(path(u"changed.pkg"_s));
        EXPECT_FALSE(archive && package::judgePackage(*archive).isGood()) << place;
    }
}

/// No attribute covers what frames the signature: versions, the kinds of digests, the signer's name, which
/// libcrypto compares without regard to upper and lower case.
TEST_F(PackageSigning, everyChangedByteOfTheCmsIsNoticed)
{
    const StampServer authority;
    ASSERT_EQ(sign(u"--timestamp="_s + authority.url()).status, 0);
    const xar::Archive archive = opened(signedPackage());
    const QByteArray cms = archive.heapBytes(archive.toc().secondSignature->place);
    const TrustStore store = TrustStore::ofThisMachine();
    const SignedContent content{[&archive](QCryptographicHash::Algorithm algorithm) {
                                    return QCryptographicHash::hash(archive.checksum(), algorithm);
                                },
                                {}};
    const auto isGood = [&](const QByteArray &bytes) {
        const auto read = readCms(bytes);
        return read && judgeCms(*read, content, TrustPurpose::packageSigning, store).isGood();
    };
    ASSERT_TRUE(isGood(cms));
    const qsizetype stamp = cms.indexOf(QByteArray::fromHex("060b2a864886f70d010910020e"));
    ASSERT_GT(stamp, 0);
    for (qsizetype place = 0; place < stamp; place += 5) {
        QByteArray changed = cms;
        changed[place] = char(changed[place] ^ (1 << place % 8));
        EXPECT_FALSE(isGood(changed)) << place;
    }
}

TEST_F(PackageSigning, aKillAtAnyWriteLeavesTheOldFileOrTheNewOne)
{
    ASSERT_EQ(sign(u"--timestamp=none"_s).status, 0);
    const qint64 size = QFileInfo(signedPackage()).size();
    writeFile(signedPackage(), "before");
    for (const rlim_t limit : {rlim_t(0), rlim_t(10), rlim_t(4'096), rlim_t(size / 2), rlim_t(size - 1)}) {
        const ToolResult result = sign(u"--timestamp=none"_s, [limit] {
            const rlimit most{limit, limit};
            setrlimit(RLIMIT_FSIZE, &most);
        });
        EXPECT_NE(result.status, 0) << limit;
        EXPECT_EQ(readFile(signedPackage()), "before") << limit;
        for (const QString &name : QDir(path(u"."_s)).entryList({u".out.pkg*"_s}, QDir::Files | QDir::Hidden))
            EXPECT_TRUE(QFile::remove(path(name)));
    }
}
