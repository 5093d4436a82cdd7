#include "formats/codesignature/cms.h"
#include "formats/codesignature/cmsattributes.h"
#include "formats/codesignature/cmsreader.h"
#include "toolchain/keychainfixture.h"

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

/// A signature of codesign's and the digests of the code directories that it is over.
struct RealSignature {
    const char *name;
    const char *contentDigest;
    QList<DirectoryDigest> directories;
};

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

const RealSignature dart{"dart",
                         "d39b8821d5d65134cef53039541126cbbab887de3c68ed1d0bfcf695730c5067",
                         {{2, hex("d39b8821d5d65134cef53039541126cbbab887de3c68ed1d0bfcf695730c5067")}}};
const RealSignature node{"node",
                         "498632c73138f105dc16fb8d9b095df4c1b934f9a78115b6aa1122ab2536e938",
                         {{1, hex("82e2083db6c8eb4fbee36d64afd4c7f0050d08e1")},
                          {2, hex("fb7456d66f318cc57583575b7f4700fe117644c1f3d7c45f0e73bca61879792d")}}};
const RealSignature karabiner{"karabiner",
                              "b524c99d1512f4f6f9e53dbc926f9b67c959d38124467f73cf80e1e16b42bb68",
                              {{2, hex("b524c99d1512f4f6f9e53dbc926f9b67c959d38124467f73cf80e1e16b42bb68")}}};
const QList<RealSignature> realSignatures{dart, node, karabiner};

QByteArray fileOf(const RealSignature &real)
{
    return readTestData(u"signatures/"_s + QString::fromLatin1(real.name) + u".cms"_s);
}

SignedContent contentOf(const QByteArray &sha256, const QList<DirectoryDigest> &directories)
{
    return {[sha256](QCryptographicHash::Algorithm) { return sha256; }, directories};
}

SignedContent contentOf(const RealSignature &real)
{
    return contentOf(hex(real.contentDigest), real.directories);
}

class Cms : public KeychainFixture {
protected:
    static CodeCmsOrder order()
    {
        const QByteArray sha256 = QCryptographicHash::hash("directory", QCryptographicHash::Sha256);
        const QByteArray sha1 = QCryptographicHash::hash("directory", QCryptographicHash::Sha1);
        return {sha256, {{2, QByteArray(32, 'b')}, {1, sha1}}, {}};
    }

    static SignedContent content() { return contentOf(order().contentDigest, order().directories); }

    [[nodiscard]] QByteArray made() const
    {
        makeIdentity(IdentityKind::application);
        const auto signer = findSigningIdentity(u"Example Corp"_s, IdentityKind::application);
        EXPECT_TRUE(signer) << signer.error().toStdString();
        const auto cms = makeCodeCms(*signer, order(), {});
        EXPECT_TRUE(cms) << cms.error().toStdString();
        return *cms;
    }

    [[nodiscard]] static CmsJudgement judged(const QByteArray &cms, const SignedContent &content)
    {
        const auto signature = readCms(cms);
        EXPECT_TRUE(signature) << signature.error().toStdString();
        return judgeCms(*signature, content, TrustPurpose::codeSigning, TrustStore::ofThisMachine());
    }
};

} // namespace

TEST_F(Cms, signaturesOfCodesignHoldWithTheirTimeStampsAndEndInApplesRoot)
{
    for (const RealSignature &real : realSignatures) {
        const CmsJudgement judgement = judged(fileOf(real), contentOf(real));
        EXPECT_TRUE(judgement.isGood())
            << real.name << judgement.problem.toStdString() << judgement.timestampProblem.toStdString()
            << judgement.trust.text().toStdString();
        EXPECT_EQ(judgement.trust.anchor, Anchor::apple);
        EXPECT_EQ(judgement.timestampAnchor, Anchor::apple);
        EXPECT_TRUE(isDeveloperIdForCode(judgement.trust.chain));
    }
}

TEST_F(Cms, aTimeStampTellsItsMoment)
{
    const CmsJudgement judgement = judged(fileOf(node), contentOf(node));
    ASSERT_TRUE(judgement.timestamp);
    EXPECT_EQ(judgement.timestamp->toString(Qt::ISODate), u"2022-01-10T12:56:37Z"_s);
}

TEST_F(Cms, theSignedAttributesOfCodesignComeOutByteForByte)
{
    for (const RealSignature &real : realSignatures) {
        const auto signature = readCms(fileOf(real));
        ASSERT_TRUE(signature);
        const QByteArray rebuilt =
            codeAttributes({hex(real.contentDigest), real.directories, signature->signingTime}).join();
        EXPECT_EQ(signature->signedBytes.mid(4).toHex(), rebuilt.toHex()) << real.name;
    }
}

TEST_F(Cms, aSignatureOverOtherDirectoriesIsRefused)
{
    SignedContent other = contentOf(node);
    other.directories[1].digest[0] = 'x';
    EXPECT_EQ(judged(fileOf(node), other).problem, u"the signature is over other code directories"_s);
}

TEST_F(Cms, aSignatureOverOtherContentIsRefused)
{
    EXPECT_EQ(judged(fileOf(dart), contentOf(QByteArray(32, 'x'), {})).problem,
              u"the signature is over other content"_s);
}

TEST_F(Cms, whatIsMadeIsReadBackAndHolds)
{
    const CmsJudgement judgement = judged(made(), content());
    EXPECT_TRUE(judgement.isGood()) << judgement.problem.toStdString()
                                    << judgement.trust.text().toStdString();
    EXPECT_EQ(judgement.trust.anchor, Anchor::thisMachine);
    EXPECT_TRUE(isDeveloperIdForCode(judgement.trust.chain));
    EXPECT_FALSE(judgement.timestamp);
    EXPECT_LT(judgement.signingTime.secsTo(QDateTime::currentDateTimeUtc()), 600);
}

TEST_F(Cms, theOuterLevelsHaveIndefiniteLengths)
{
    const QByteArray cms = made();
    EXPECT_EQ(cms.left(2).toHex(), "3080");
    EXPECT_EQ(cms.right(6).toHex(), "000000000000");
    constexpr qsizetype beforeTheCertificatesLength = 53;
    EXPECT_EQ(cms.left(beforeTheCertificatesLength).toHex(),
              fileOf(dart).left(beforeTheCertificatesLength).toHex());
}

TEST_F(Cms, certificatesStandInTheOrderOfTheirBytesWithTheRootAmongThem)
{
    const auto signature = readCms(made());
    ASSERT_TRUE(signature);
    QList<QByteArray> sorted = signature->certificates;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(signature->certificates, sorted);
    EXPECT_EQ(sorted.size(), 3);
}

TEST_F(Cms, opensslVerifiesWhatIsMade)
{
    const QByteArray content = "the table's checksum";
    makeIdentity(IdentityKind::installer);
    const auto signer = findSigningIdentity(u"Example Corp"_s, IdentityKind::installer);
    ASSERT_TRUE(signer) << signer.error().toStdString();
    for (const auto algorithm :
         {QCryptographicHash::Sha1, QCryptographicHash::Sha256, QCryptographicHash::Sha512}) {
        const auto cms = makePackageCms(*signer, content, algorithm, {});
        ASSERT_TRUE(cms) << cms.error().toStdString();
        EXPECT_TRUE(opensslVerifies(*cms, content));
        EXPECT_FALSE(opensslVerifies(*cms, "something else"));
    }
}

TEST_F(Cms, aPackageHasAnRsaValueOverTheChecksumItself)
{
    makeIdentity(IdentityKind::installer);
    const auto signer = findSigningIdentity(u"Example Corp"_s, IdentityKind::installer);
    ASSERT_TRUE(signer);
    const QByteArray checksum(20, 'c');
    const auto value = makePackageSignature(*signer, checksum, QCryptographicHash::Sha1);
    ASSERT_TRUE(value) << value.error().toStdString();
    EXPECT_EQ(value->size(), 256);
    EXPECT_TRUE(packageSignatureFits(*value, signer->chain.first(), checksum, QCryptographicHash::Sha1));
    EXPECT_FALSE(
        packageSignatureFits(*value, signer->chain.first(), QByteArray(20, 'd'), QCryptographicHash::Sha1));
}

TEST_F(Cms, everyChangedByteThatTheSignatureCoversIsFound)
{
    const QByteArray cms = fileOf(dart);
    const auto whole = readCms(cms);
    ASSERT_TRUE(whole);
    const qsizetype attributesAt = cms.indexOf(whole->signedBytes.mid(1));
    ASSERT_GT(attributesAt, 0);
    for (qsizetype at = attributesAt; at < attributesAt + whole->signedBytes.size() - 1; at += 7) {
        QByteArray changed = cms;
        changed[at] = static_cast<char>(changed[at] ^ 1);
        const auto signature = readCms(changed);
        const bool isFound = !signature || !objectionTo(*signature, contentOf(dart)).isEmpty();
        EXPECT_TRUE(isFound) << "byte " << at;
    }
}

TEST_F(Cms, whatIsCutOrNoCmsIsRefused)
{
    const QByteArray cms = fileOf(dart);
    for (qsizetype size = 0; size < cms.size(); size += 97)
        EXPECT_FALSE(readCms(cms.left(size))) << size;
    EXPECT_FALSE(readCms("no CMS at all"));
    EXPECT_FALSE(readCms(QByteArray(100'000, '\x30')));
    EXPECT_FALSE(readCms(QByteArray("\x30\x80").repeated(10'000)));
}

TEST_F(Cms, zerosBehindTheSignatureAreNoFault)
{
    EXPECT_TRUE(readCms(fileOf(dart) + QByteArray(500, '\0')));
}

TEST_F(Cms, aTimeStampOfAnotherSignatureIsToldAsOne)
{
    const auto mine = readCms(fileOf(dart));
    const auto other = readCms(fileOf(node));
    ASSERT_TRUE(mine && other);
    CmsSignature mixed = *mine;
    mixed.timestampToken = other->timestampToken;
    const CmsJudgement judgement =
        judgeCms(mixed, contentOf(dart), TrustPurpose::codeSigning, TrustStore::ofThisMachine());
    EXPECT_EQ(judgement.timestampProblem, u"the time stamp is of something else"_s);
    EXPECT_FALSE(judgement.isGood());
}

TEST_F(Cms, withoutATimeStampAnExpiredCertificateIsExpired)
{
    auto signature = readCms(fileOf(node));
    ASSERT_TRUE(signature);
    signature->timestampToken.clear();
    const CmsJudgement judgement =
        judgeCms(*signature, contentOf(node), TrustPurpose::codeSigning, TrustStore::ofThisMachine());
    EXPECT_EQ(judgement.trust.problem, TrustProblem::expired);
    EXPECT_EQ(judgement.trust.anchor, Anchor::apple);
}
