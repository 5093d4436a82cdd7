#include "formats/authority.h"

#include <QDir>
#include <QFile>

#include <openssl/x509v3.h>

#include "formats/certificatefile.h"
#include "formats/issuing.h"
#include "formats/keychain/vault.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

constexpr long rootDays = 20L * 365;
constexpr long intermediateDays = 15L * 365;
constexpr long leafDays = 5L * 365;
constexpr long serverDays = 390;

const QString organisationName = u"Sealwright"_s;
const QString unitName = u"Certification Authority of this machine"_s;

/// What the certificate between root and leaf is called, and Apple's marker that it bears.
struct IntermediateKind {
    const char *fileName;
    QString commonName;
    QList<MarkerExtension> markers;
};

IntermediateKind intermediateFor(LeafPurpose purpose)
{
    switch (purpose) {
    case LeafPurpose::application:
    case LeafPurpose::installer:
        return {"developer-id",
                u"Developer ID Certification Authority of this machine"_s,
                {{"1.2.840.113635.100.6.2.6", Criticality::notCritical}}};
    case LeafPurpose::timestamp:
        return {"timestamp", u"Timestamp Certification Authority of this machine"_s, {}};
    case LeafPurpose::ticket:
        return {"tickets", u"Ticket Certification Authority of this machine"_s, {}};
    case LeafPurpose::server:
        break;
    }
    return {"servers", u"Server Certification Authority of this machine"_s, {}};
}

QList<NameEntry> authorityName(const QString &commonName)
{
    return {{"CN", commonName}, {"OU", unitName}, {"O", organisationName}};
}

CertificatePlan authorityPlan(const QString &commonName, const QList<MarkerExtension> &markers, long days)
{
    return {
        authorityName(commonName), "critical,CA:TRUE", "critical,keyCertSign,cRLSign", {}, {}, markers, days};
}

/// The extended key usages and markers of Developer ID certificates, as Apple's Developer ID Certification
/// Practice Statement lists them.
CertificatePlan developerPlan(LeafPurpose purpose, const QList<NameEntry> &subject)
{
    const bool isInstaller = purpose == LeafPurpose::installer;
    const char *marker = isInstaller ? "1.2.840.113635.100.6.1.14" : "1.2.840.113635.100.6.1.13";
    return {subject,
            "critical,CA:FALSE",
            "critical,digitalSignature",
            isInstaller ? "critical,1.2.840.113635.100.4.13" : "critical,codeSigning",
            {},
            {{marker, Criticality::critical}},
            leafDays};
}

bool isAddress(const QString &host)
{
    const std::unique_ptr<ASN1_OCTET_STRING, Freed<ASN1_OCTET_STRING_free>> address(
        a2i_IPADDRESS(host.toLatin1().constData()));
    return address != nullptr;
}

std::string alternativeNamesOf(const QStringList &hosts)
{
    QStringList names;
    for (const QString &host : hosts)
        names.append((isAddress(host) ? u"IP:"_s : u"DNS:"_s) + host);
    return names.join(u',').toStdString();
}

CertificatePlan servicePlan(LeafPurpose purpose, const QStringList &hosts)
{
    const std::string noCa = "critical,CA:FALSE";
    const std::string signing = "critical,digitalSignature";
    if (purpose == LeafPurpose::timestamp)
        return {authorityName(u"Timestamp Signer of this machine"_s),
                noCa,
                signing,
                "critical,timeStamping",
                {},
                {},
                leafDays};
    if (purpose == LeafPurpose::ticket)
        return {authorityName(u"Software Ticket Signing of this machine"_s), noCa,    signing, {}, {},
                {{"1.2.840.113635.100.6.1.30", Criticality::notCritical}},   leafDays};
    return {authorityName(u"Local service of this machine"_s),
            noCa,
            signing,
            "serverAuth",
            alternativeNamesOf(hosts),
            {},
            serverDays};
}

Key newKeyFor(LeafPurpose purpose)
{
    constexpr unsigned int bits = 2048;
    const bool isElliptic = purpose == LeafPurpose::ticket || purpose == LeafPurpose::server;
    return Key(isElliptic ? EVP_EC_gen("P-256") : EVP_RSA_gen(bits));
}

/// The authority while the vault is open for a change.
class OpenAuthority {
public:
    OpenAuthority(QString folder, VaultSecrets &secrets)
        : m_folder(std::move(folder))
        , m_secrets(secrets)
    {
    }

    /// A certificate and its key; both are kept.
    Result<IssuedKey> intermediate(LeafPurpose purpose)
    {
        const IntermediateKind kind = intermediateFor(purpose);
        const auto top = root();
        if (!top)
            return top;
        return certified(QString::fromLatin1(kind.fileName),
                         authorityPlan(kind.commonName, kind.markers, intermediateDays), *top);
    }

    Result<IssuedKey> root()
    {
        return certified(u"root"_s, authorityPlan(u"Sealwright Root CA of this machine"_s, {}, rootDays), {});
    }

    /// What a file of the folder holds, or a new key with a certificate of this plan.
    Result<IssuedKey> certified(const QString &name, const CertificatePlan &plan, const IssuedKey &issuer)
    {
        const auto kept = readKept(name, issuer);
        if (kept)
            return *kept;
        const auto made = issue(plan, Key(EVP_EC_gen("P-256")), issuer);
        return made ? keep(name, *made) : made;
    }

    std::optional<IssuedKey> readKept(const QString &name, const IssuedKey &issuer) const
    {
        const Certificate certificate = certificateFrom(readCertificateFile(pathOf(name)).value(0));
        if (!certificate)
            return std::nullopt;
        SharedKey key(keyFrom(m_secrets.keys.value(publicKeyId(certificate.get()))));
        if (!key)
            return std::nullopt;
        return IssuedKey{key, QList{derOf(certificate.get())} + issuer.chain};
    }

    Result<IssuedKey> keep(const QString &name, const IssuedKey &issued)
    {
        const platform::Outcome written = writeCertificateFile(pathOf(name), {issued.chain.first()});
        if (!written)
            return written.failure();
        m_secrets.keys.insert(publicKeyId(issued.key.get()), derOf(issued.key.get()));
        return issued;
    }

    static Result<IssuedKey> issue(const CertificatePlan &plan, Key key, const IssuedKey &issuer)
    {
        const Certificate above = certificateFrom(issuer.chain.value(0));
        const auto leaf = issueCertificate(plan, key.get(), {above.get(), issuer.key.get()});
        if (!leaf)
            return leaf.failure();
        return IssuedKey{SharedKey(std::move(key)), QList{derOf(leaf->get())} + issuer.chain};
    }

private:
    [[nodiscard]] QString pathOf(const QString &name) const { return m_folder + u'/' + name + u".pem"_s; }

    QString m_folder;
    VaultSecrets &m_secrets;
};

/// Whether a kept service certificate may go on being used.
bool isFresh(const QByteArray &der, const QStringList &hosts)
{
    constexpr long monthInSeconds = 30L * 24 * 60 * 60;
    const Certificate certificate = certificateFrom(der);
    time_t later = time(nullptr) + monthInSeconds;
    if (!certificate || X509_cmp_time(X509_get0_notAfter(certificate.get()), &later) <= 0)
        return false;
    return certificateAnswersFor(certificate.get(), hosts);
}

} // namespace

Authority::Authority(QString keychainFolder)
    : m_keychain(std::move(keychainFolder))
{
}

QByteArray Authority::root() const
{
    return readCertificateFile(m_keychain + u"/authority/root.pem"_s).value(0);
}

QList<QByteArray> Authority::certificates() const
{
    QList<QByteArray> all;
    const QDir folder(m_keychain + u"/authority"_s);
    for (const QString &name : folder.entryList({u"*.pem"_s}, QDir::Files, QDir::Name))
        all += readCertificateFile(folder.filePath(name));
    return all;
}

Result<IssuedKey> Authority::issueDeveloper(LeafPurpose purpose, const QString &commonName,
                                            const QString &team, const QString &organisation) const
{
    const QList<NameEntry> subject{
        {"UID", team}, {"CN", commonName}, {"OU", team}, {"O", organisation}, {"C", u"US"_s}};
    Result<IssuedKey> issued = Error{};
    const auto changed = Vault(m_keychain).change([&](VaultSecrets &secrets) -> Outcome {
        OpenAuthority authority(m_keychain + u"/authority"_s, secrets);
        const auto above = authority.intermediate(purpose);
        issued =
            above ? OpenAuthority::issue(developerPlan(purpose, subject), newKeyFor(purpose), *above) : above;
        if (!issued)
            return issued.failure();
        secrets.keys.insert(publicKeyId(issued->key.get()), derOf(issued->key.get()));
        return Outcome::success();
    });
    return changed ? issued : changed.failure();
}

Result<IssuedKey> Authority::serviceKey(LeafPurpose purpose, const QStringList &hosts) const
{
    const QString name = QString::fromLatin1(intermediateFor(purpose).fileName) + u"-leaf"_s;
    Result<IssuedKey> issued = Error{};
    const auto changed = Vault(m_keychain).change([&](VaultSecrets &secrets) -> Outcome {
        OpenAuthority authority(m_keychain + u"/authority"_s, secrets);
        const auto above = authority.intermediate(purpose);
        if (!above)
            return above.failure();
        const auto kept = authority.readKept(name, *above);
        if (kept && isFresh(kept->chain.first(), hosts)) {
            issued = *kept;
            return Outcome::success();
        }
        const auto made = OpenAuthority::issue(servicePlan(purpose, hosts), newKeyFor(purpose), *above);
        issued = made ? authority.keep(name, *made) : made;
        return issued ? Outcome::success() : issued.failure();
    });
    return changed ? issued : changed.failure();
}

} // namespace toolchain
