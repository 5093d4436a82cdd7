#include "formats/package/packagejudgement.h"

#include "formats/codesignature/berreader.h"
#include "formats/codesignature/cms.h"
#include "formats/codesignature/cmsreader.h"
#include "formats/zeros.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::package {

namespace {

constexpr qsizetype hashSize = 20;

/// What is kept for a signature and not filled by it is zero.
bool isPaddedWithZeros(const QByteArray &bytes)
{
    const auto value = readBer(bytes);
    const QByteArrayView rest = QByteArrayView(bytes).sliced(value ? value->whole.size() : 0);
    return isZero(rest);
}

/// Whether the certificates beside a CMS signature, which the table's checksum covers, are those in it, which
/// nothing else covers.
bool namesTheSame(const QList<QByteArray> &beside, const CmsSignature &cms)
{
    if (beside.isEmpty())
        return true;
    const bool isAlike = beside.size() != cms.certificates.size()
        || std::all_of(beside.begin(), beside.end(), [&cms](const QByteArray &certificate) {
                             return cms.certificates.contains(certificate);
                         });
    return beside.first() == cms.leaf && isAlike;
}

class Judge {
public:
    explicit Judge(const xar::Archive &archive)
        : m_archive(archive)
    {
    }

    PackageJudgement judge()
    {
        const xar::Toc &toc = m_archive.toc();
        if (!toc.signature && !toc.secondSignature)
            return m_result;
        m_result.ticket =
            ticket::judgeTicket(m_archive.ticket(), {{1, m_archive.checksum().first(hashSize)}});
        const QString damaged = m_archive.damagedFile();
        if (!damaged.isEmpty())
            return damage(u"the file \"%1\" is damaged"_s.arg(damaged));
        if (toc.signature && !isRsaGood(*toc.signature))
            return damage(u"the RSA signature is invalid"_s);
        return toc.secondSignature ? judgeCmsOf(*toc.secondSignature) : judgeLeafOf(*toc.signature);
    }

private:
    PackageJudgement damage(const QString &problem)
    {
        m_result.verdict = PackageJudgement::Verdict::damaged;
        m_result.problem = problem;
        return m_result;
    }

    PackageJudgement judgeBy(const Trust &trust)
    {
        m_result.trust = trust;
        m_result.problem = trust.text();
        m_result.verdict =
            trust.isGood() ? PackageJudgement::Verdict::good : PackageJudgement::Verdict::untrusted;
        return m_result;
    }

    [[nodiscard]] bool isRsaGood(const xar::TocSignature &signature) const
    {
        return !signature.certificates.isEmpty()
            && packageSignatureFits(m_archive.heapBytes(signature.place), signature.certificates.first(),
                                    m_archive.checksum(), m_archive.checksumAlgorithm());
    }

    /// Of a package of before the time of the second signature.
    PackageJudgement judgeLeafOf(const xar::TocSignature &signature)
    {
        return judgeBy(trustOf(signature.certificates.first(), signature.certificates,
                               TrustPurpose::packageSigning, {}, TrustStore::ofThisMachine()));
    }

    PackageJudgement judgeCmsOf(const xar::TocSignature &signature)
    {
        const QByteArray bytes = m_archive.heapBytes(signature.place);
        const auto cms = readCms(bytes);
        if (!cms)
            return damage(u"the CMS signature is invalid: "_s + cms.error());
        if (!isPaddedWithZeros(bytes))
            return damage(u"there is something behind the CMS signature"_s);
        const auto digest = [this](QCryptographicHash::Algorithm algorithm) {
            return QCryptographicHash::hash(m_archive.checksum(), algorithm);
        };
        const CmsJudgement judgement =
            judgeCms(*cms, {digest, {}}, TrustPurpose::packageSigning, TrustStore::ofThisMachine());
        if (!judgement.problem.isEmpty())
            return damage(u"the CMS signature is invalid: "_s + judgement.problem);
        if (!namesTheSame(signature.certificates, *cms))
            return damage(u"the table names another signer than the CMS signature"_s);
        m_result.timestamp = judgement.timestamp;
        m_result.timestampAnchor = judgement.timestampAnchor;
        m_result.signingTime = judgement.signingTime;
        judgeBy(judgement.trust);
        if (m_result.isGood() && !judgement.timestampProblem.isEmpty())
            return damage(u"the time stamp is invalid: "_s + judgement.timestampProblem);
        return m_result;
    }

    const xar::Archive &m_archive;
    PackageJudgement m_result;
};

} // namespace

PackageJudgement judgePackage(const xar::Archive &archive)
{
    return Judge(archive).judge();
}

} // namespace toolchain::package
