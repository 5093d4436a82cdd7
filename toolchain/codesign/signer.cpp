#include "codesign/signer.h"

#include "formats/codesignature/cms.h"
#include "formats/codesignature/timestampclient.h"
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

Stamper stamperFor(const std::optional<QString> &timestamp)
{
    const bool hasAddress = timestamp && !timestamp->isEmpty() && *timestamp != u"none"_s;
    return hasAddress ? timestampClient({*timestamp, {}}) : Stamper();
}

} // namespace

Result<Signer> signerFor(const QString &identity, const std::optional<QString> &timestamp)
{
    if (identity == u"-"_s)
        return Signer();
    const auto found = findSigningIdentity(identity, IdentityKind::Application);
    if (!found)
        return found.failure();
    Signer signer;
    signer.team = found->team;
    signer.facts = {found->chain, found->anchor == Anchor::Apple, found->anchor == Anchor::ThisMachine};
    const Stamper stamper = stamperFor(timestamp);
    signer.makeCms = [identity = *found, stamper](const QByteArray &contentDigest, const auto &directories) {
        return makeCodeCms(identity, cmsOrder(contentDigest, directories), stamper);
    };
    return signer;
}

} // namespace toolchain::codesign
