#include "formats/signingidentity.h"

#include <openssl/obj_mac.h>

#include "formats/keychaincontents.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

bool hasTeam(const Trust &trust)
{
    return trust.anchor == Anchor::apple
        || (trust.anchor == Anchor::thisMachine
            && (isDeveloperIdForCode(trust.chain) || isDeveloperIdForPackages(trust.chain)));
}

Result<SigningIdentity> opened(const KeychainContents &contents, const Identity &identity)
{
    const Certificate leaf = certificateFrom(identity.certificate);
    const auto key = contents.openKeyOf(leaf.get());
    if (!key)
        return key.failure();
    const QString team =
        hasTeam(identity.trust) ? subjectEntryOf(leaf.get(), NID_organizationalUnitName) : QString();
    return SigningIdentity{identity.trust.chain, identity.commonName, team, identity.trust.anchor, *key};
}

} // namespace

Result<SigningIdentity> findSigningIdentity(const QString &wanted, IdentityKind kind)
{
    const KeychainContents contents = readKeychain(keychainFolder());
    const auto identity = chooseIdentity(contents, wanted, kind);
    return identity ? opened(contents, *identity) : identity.failure();
}

} // namespace toolchain
