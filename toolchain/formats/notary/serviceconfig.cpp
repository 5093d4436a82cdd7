#include "formats/notary/serviceconfig.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <arpa/inet.h>
#include <sys/stat.h>

#include <array>
#include <utility>

#include "formats/keychain/privatefile.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::notary {

namespace {

const QString lookupPath = u"/database/1/com.apple.gk.ticket-delivery/production/public/records/lookup"_s;
constexpr qint64 largestFile = 1 << 20;

struct Entry {
    const char16_t *key;
    QString ServiceConfig::*field;
    const char *variable; ///< null where there is none
};

constexpr std::array entries{
    Entry{u"api", &ServiceConfig::api, "SEALWRIGHT_NOTARY_API"},
    Entry{u"upload", &ServiceConfig::upload, "SEALWRIGHT_NOTARY_UPLOAD"},
    Entry{u"region", &ServiceConfig::region, "SEALWRIGHT_NOTARY_REGION"},
    Entry{u"tickets", &ServiceConfig::tickets, "SEALWRIGHT_NOTARY_TICKETS"},
    Entry{u"timestamp", &ServiceConfig::timestamp, "SEALWRIGHT_NOTARY_TIMESTAMP"},
    Entry{u"ca", &ServiceConfig::ca, "SEALWRIGHT_NOTARY_CA"},
    Entry{u"proxy", &ServiceConfig::proxy, nullptr},
};

ServiceConfig localService()
{
    ServiceConfig config;
    config.region = u"us-west-2"_s;
    config.isLocal = true;
    return config;
}

QString withoutSlash(QString address)
{
    while (address.endsWith(u'/'))
        address.chop(1);
    return address;
}

/// The first address that must not be asked; empty if there is none. Time stamps are signed by themselves,
/// and Apple's authority speaks no https.
QString objectionTo(const ServiceConfig &config)
{
    for (const QString &address : {config.api, config.upload, config.tickets}) {
        QString plain = address;
        plain.replace(u"{bucket}"_s, u"bucket"_s).replace(u"{object}"_s, u"object"_s);
        if (!address.isEmpty() && !isAcceptable(QUrl(plain)))
            return address;
    }
    return {};
}

Result<ServiceConfig> checked(const ServiceConfig &config)
{
    const QString refused = objectionTo(config);
    if (!refused.isEmpty())
        return Error{u"The notary service's address '%1' is not an https one."_s.arg(refused)};
    return config;
}

Result<ServiceConfig> fileConfig()
{
    QFile file(serviceFile());
    if (!file.exists())
        return localService();
    if (!file.open(QIODevice::ReadOnly))
        return Error{serviceFile() + u": "_s + file.errorString()};
    const auto config = serviceConfigFrom(file.read(largestFile));
    return config ? config : Error{serviceFile() + u": "_s + config.error()};
}

void applyEnvironment(ServiceConfig &config)
{
    for (const Entry &entry : entries) {
        const QString value = entry.variable ? qEnvironmentVariable(entry.variable) : QString();
        if (value.isEmpty())
            continue;
        config.*entry.field = value;
        if (entry.field == &ServiceConfig::api)
            config.isLocal = false;
    }
    config.api = withoutSlash(config.api);
}

/// The addresses that the service of this machine has written down, if it ever ran.
ServiceConfig serviceOfThisMachine()
{
    QFile file(serviceFolder() + u"/address.json"_s);
    if (!file.open(QIODevice::ReadOnly))
        return localService();
    const auto config = serviceConfigFrom(file.read(largestFile));
    return config && config->isLocal ? *config : localService();
}

/// No secret has its place in an address, and no query in that of a service.
bool canBeChosen(const QUrl &address)
{
    return address.isValid() && !address.host().isEmpty() && address.port() != 0 && isAcceptable(address)
        && address.userInfo().isEmpty() && !address.hasQuery() && !address.hasFragment();
}

/// What a person has typed in the place of an address, without what may be a secret in it.
QString harmless(const QString &typed)
{
    static const QRegularExpression secrets(u"(?<=//)[^/]*@|[?#].*"_s,
                                            QRegularExpression::DotMatchesEverythingOption);
    return QString(typed).remove(secrets);
}

/// A service that a variable alone names has the layout that its address suggests.
void fillIn(ServiceConfig &config)
{
    if (config.isLocal || config.api.isEmpty())
        return;
    const QUrl api(config.api);
    const ServiceConfig like = api.host() == QUrl(appleService().api).host()
        ? appleService()
        : serviceAt(api.toString(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment));
    for (const Entry &entry : entries) {
        if ((config.*entry.field).isEmpty() && entry.field != &ServiceConfig::ca)
            config.*entry.field = like.*entry.field;
    }
}

} // namespace

QString serviceFolder()
{
    return notaryFolder() + u"/service"_s;
}

QString serviceFile()
{
    return notaryFolder() + u"/service.json"_s;
}

Result<ServiceConfig> readServiceConfig()
{
    auto config = fileConfig();
    if (!config)
        return config;
    applyEnvironment(*config);
    fillIn(*config);
    return checked(*config);
}

Result<ServiceConfig> serviceConfigFrom(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        return Error{u"not a JSON object"_s};
    const QJsonObject form = document.object();
    ServiceConfig config;
    for (const Entry &entry : entries)
        config.*entry.field = form[QStringView(entry.key)].toString();
    config.isLocal = form[u"service"].toString() == u"local"_s;
    config.api = withoutSlash(config.api);
    if (config.region.isEmpty())
        config.region = u"us-west-2"_s;
    if (!config.isLocal && config.api.isEmpty())
        config.api = appleService().api;
    fillIn(config);
    return checked(config);
}

QByteArray jsonOf(const ServiceConfig &config)
{
    QJsonObject form;
    if (config.isLocal)
        form.insert(u"service"_s, u"local"_s);
    for (const Entry &entry : entries) {
        if (!(config.*entry.field).isEmpty())
            form.insert(QString::fromUtf16(entry.key), config.*entry.field);
    }
    return QJsonDocument(form).toJson();
}

ServiceConfig appleService()
{
    // https://developer.apple.com/documentation/notaryapi; the upload's is the accelerated one, by virtual
    // host only.
    return {.api = u"https://appstoreconnect.apple.com/notary/v2"_s,
            .upload = u"https://{bucket}.s3-accelerate.amazonaws.com/{object}"_s,
            .region = u"us-west-2"_s,
            .tickets = u"https://api.apple-cloudkit.com"_s + lookupPath,
            .timestamp = u"http://timestamp.apple.com/ts01"_s,
            .ca = {},
            .proxy = {},
            .isLocal = false};
}

ServiceConfig serviceAt(const QString &origin)
{
    return {.api = origin + u"/notary/v2"_s,
            .upload = origin + u"/s3/{bucket}/{object}"_s,
            .region = u"us-west-2"_s,
            .tickets = origin + lookupPath,
            .timestamp = origin + u"/timestamp"_s,
            .ca = {},
            .proxy = {},
            .isLocal = false};
}

Outcome chooseService(const QString &choice)
{
    const auto before = readServiceConfig();
    const ServiceConfig own = serviceOfThisMachine();
    ServiceConfig config = own;
    if (choice == u"apple"_s) {
        config = appleService();
    } else if (choice != u"local"_s) {
        const QUrl address =
            QUrl(withoutSlash(choice), QUrl::StrictMode).adjusted(QUrl::NormalizePathSegments);
        if (!canBeChosen(address))
            return Error{u"'%1' is neither apple nor local nor the https address of a service"_s.arg(
                harmless(choice))};
        config = serviceAt(address.toString(QUrl::RemovePath));
        if (!address.path().isEmpty())
            config.api = address.toString();
        if (hostAndPort(config.api) == hostAndPort(own.api))
            config.ca = own.ca;
    }
    config.proxy = before ? before->proxy : QString();
    const Outcome made = makePrivateFolder(notaryFolder());
    return made ? writePrivateFile(serviceFile(), jsonOf(config)) : made;
}

bool isLoopback(const QString &host)
{
    in_addr four = {};
    in6_addr six = {};
    const QByteArray text = host.toLatin1();
    if (inet_pton(AF_INET, text.constData(), &four) == 1)
        return ntohl(four.s_addr) >> 24 == IN_LOOPBACKNET;
    if (inet_pton(AF_INET6, text.constData(), &six) == 1)
        return IN6_IS_ADDR_LOOPBACK(&six);
    return host == u"localhost"_s;
}

bool isAcceptable(const QUrl &address)
{
    return address.scheme() == u"https"_s || (address.scheme() == u"http"_s && isLoopback(address.host()));
}

QString hostAndPort(const QString &address)
{
    const QUrl url(address);
    const QString host = url.host().contains(u':') ? u'[' + url.host() + u']' : url.host();
    return u"%1:%2"_s.arg(host, QString::number(url.port(url.scheme() == u"http"_s ? 80 : 443)));
}

} // namespace toolchain::notary
