#include "formats/codesignature/trust.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "formats/authority.h"
#include "formats/certificatefile.h"
#include "formats/codesignature/anchors.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

QString serviceCaFile()
{
    const QString chosen = qEnvironmentVariable("SEALWRIGHT_NOTARY_CA");
    if (!chosen.isEmpty())
        return chosen;
    QFile settings(notaryFolder() + u"/service.json"_s);
    if (!settings.open(QIODevice::ReadOnly))
        return {};
    constexpr qint64 mostBytes = 1 << 16;
    return QJsonDocument::fromJson(settings.read(mostBytes)).object().value(u"ca"_s).toString();
}

} // namespace

TrustStore TrustStore::ofThisMachine()
{
    const Authority authority(keychainFolder());
    TrustStore store{appleRoots(), {}, {}, appleIntermediates()};
    if (const QByteArray root = authority.root(); !root.isEmpty())
        store.thisMachine.append(root);
    store.service = readCertificateFile(serviceCaFile());
    store.intermediates += authority.certificates();
    return store;
}

TrustStore TrustStore::forTickets()
{
    TrustStore store = ofThisMachine();
    store.apple = appleTicketAnchors();
    return store;
}

} // namespace toolchain
