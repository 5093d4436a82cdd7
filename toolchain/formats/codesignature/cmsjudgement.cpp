#include "formats/codesignature/cmsreader.h"

#include "formats/codesignature/timestamptoken.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

void judgeTimestamp(const CmsSignature &signature, const TrustStore &store, CmsJudgement &judgement)
{
    if (signature.timestampToken.isEmpty())
        return;
    const auto stamp = checkTimestamp(signature.timestampToken, signature.value, store);
    if (!stamp) {
        judgement.timestampProblem = stamp.error();
        return;
    }
    judgement.timestamp = stamp->time;
    judgement.timestampAnchor = stamp->anchor;
}

} // namespace

CmsJudgement judgeCms(const CmsSignature &signature, const SignedContent &content, TrustPurpose purpose,
                      const TrustStore &store)
{
    CmsJudgement judgement;
    judgement.problem = objectionTo(signature, content);
    judgement.signingTime = signature.signingTime;
    judgeTimestamp(signature, store, judgement);
    judgement.trust = trustOf(signature.leaf, signature.certificates, purpose,
                              judgement.timestamp.value_or(QDateTime()), store);
    if (judgement.problem.isEmpty() && !bringsItsChain(signature.certificates, judgement.trust))
        judgement.problem = u"the certificates in the signature have been changed"_s;
    return judgement;
}

} // namespace toolchain
