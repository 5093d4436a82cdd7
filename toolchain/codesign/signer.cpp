#include "codesign/signer.h"

#include "formats/codesignature/cms.h"
#include "formats/codesignature/timestampclient.h"
#include "formats/notary/localservice.h"
#include "formats/signingidentity.h"

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;
using platform::Error;
using platform::Result;

namespace toolchain::codesign {

namespace {

CodeCmsOrder cmsOrder(const QByteArray &contentDigest,
                      const QList<codesignature::DirectoryDigest> &directories)
{
    CodeCmsOrder order;
    order.contentDigest = contentDigest;
    for (const codesignature::DirectoryDigest &directory : directories)
        order.directories.append({int(directory.type), directory.digest});
    return order;
}

/// Without an address it is the authority of the service that is set up; that of this machine is started if
/// need be.
Result<Stamper> stamperFor(const std::optional<QString> &timestamp)
{
    if (!timestamp || *timestamp == u"none"_s)
        return Stamper();
    if (!timestamp->isEmpty())
        return timestampClient({*timestamp, {}});
    const auto service = notary::ensureService();
    if (!service)
        return Error{u"The timestamp service is not available. "_s + service.error()};
    return timestampClient({service->timestamp, service->ca});
}

} // namespace

Result<Signer> signerFor(const QString &identity, const std::optional<QString> &timestamp)
{
    if (identity == u"-"_s)
        return Signer();
    const auto found = findSigningIdentity(identity, IdentityKind::application);
    if (!found)
        return found.failure();
    Signer signer;
    signer.team = found->team;
    signer.facts = {found->chain, found->anchor == Anchor::apple, found->anchor == Anchor::thisMachine};
    const auto stamper = stamperFor(timestamp);
    if (!stamper)
        return stamper.failure();
    signer.makeCms = [identity = *found, stamper = *stamper](const QByteArray &contentDigest,
                                                             const auto &directories) {
        return makeCodeCms(identity, cmsOrder(contentDigest, directories), stamper);
    };
    return signer;
}

} // namespace toolchain::codesign
