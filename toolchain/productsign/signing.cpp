#include "productsign/signing.h"

#include <QFileInfo>

#include <openssl/evp.h>

using namespace Qt::StringLiterals;

namespace toolchain {

platform::Outcome checkPackage(const QString &path, const platform::Result<xar::Archive> &package)
{
    if (!QFileInfo::exists(path))
        return platform::Error{u"The package \"%1\" does not exist."_s.arg(path)};
    if (!package)
        return platform::Error{u"\"%1\" is no flat package: %2."_s.arg(path, package.error())};
    if (!package->isPackage())
        return platform::Error{
            u"\"%1\" is no package: neither a Distribution nor a PackageInfo is at its top."_s.arg(path)};
    const QString damaged = package->damagedFile();
    if (!damaged.isEmpty())
        return platform::Error{u"\"%1\" is damaged: %2."_s.arg(path, damaged)};
    return {};
}

platform::Outcome writeSignedPackage(const xar::Archive &package, const SigningIdentity &identity,
                                     const Stamper &stamper, const QString &output)
{
    const auto sign = [&](const QByteArray &checksum,
                          QCryptographicHash::Algorithm algorithm) -> platform::Result<xar::SignatureValues> {
        const auto rsa = makePackageSignature(identity, checksum, algorithm);
        if (!rsa)
            return rsa.failure();
        const auto cms = makePackageCms(identity, checksum, algorithm, stamper);
        if (!cms)
            return cms.failure();
        return xar::SignatureValues{*rsa, *cms};
    };
    return package.writeSigned(output,
                               {identity.chain, quint64(EVP_PKEY_get_size(identity.key.get())), sign});
}

} // namespace toolchain
