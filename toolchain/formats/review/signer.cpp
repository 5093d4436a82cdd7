#include "formats/review/signer.h"

#include "formats/codesignature/cmsreader.h"
#include "formats/codesignature/signaturereader.h"

#include <openssl/x509.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace toolchain::review {

namespace {

struct FreedCertificate {
    void operator()(X509 *certificate) const { X509_free(certificate); }
};

QString commonName(const QByteArray &der)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(der.constData());
    const std::unique_ptr<X509, FreedCertificate> certificate(d2i_X509(nullptr, &bytes, long(der.size())));
    char name[256] = {};
    if (certificate)
        X509_NAME_get_text_by_NID(X509_get_subject_name(certificate.get()), NID_commonName, name,
                                  sizeof name);
    return QString::fromUtf8(name);
}

SignedContent contentOf(const codesignature::SignedPart &part)
{
    SignedContent content;
    const QByteArray directory = part.primary().bytes();
    content.digest = [directory](QCryptographicHash::Algorithm algorithm) {
        return QCryptographicHash::hash(directory, algorithm);
    };
    for (const auto &each : part.directories)
        content.directories.append(
            {int(each.fields().hashType),
             codesignature::digestOf(each.bytes(),
                                     each.fields().hashType == codesignature::HashType::sha256Truncated
                                         ? codesignature::HashType::sha256
                                         : each.fields().hashType)});
    return content;
}

} // namespace

QStringList commonNames(const QList<QByteArray> &certificates)
{
    QStringList names;
    for (const QByteArray &certificate : certificates)
        names.append(commonName(certificate));
    return names;
}

SignerFacts signerFacts(const codesignature::SignedPart &part, const TrustStore &store)
{
    SignerFacts facts;
    const auto cms = readCms(part.cms());
    if (!cms) {
        facts.problem = cms.error();
        return facts;
    }
    const CmsJudgement judgement = judgeCms(*cms, contentOf(part), TrustPurpose::codeSigning, store);
    facts.names = commonNames(judgement.trust.chain);
    facts.isDeveloperId = judgement.trust.isGood() && isDeveloperIdForCode(judgement.trust.chain);
    facts.timestamp = judgement.timestamp ? judgement.timestamp->toUTC() : QDateTime();
    facts.problem = judgement.problem;
    return facts;
}

} // namespace toolchain::review
