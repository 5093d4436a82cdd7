// libcrypto 3 calls engines deprecated; its successor for tokens, a provider, is not in Debian 12.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "formats/keychain/tokens.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <openssl/engine.h>
#include <openssl/err.h>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

/// What the engine's command LOAD_CERT_CTRL takes and fills in.
struct CertificateRequest {
    const char *uri;
    X509 *certificate;
};

/// The value of an attribute of the URI; empty if it has none.
QString attributeOf(const QString &uri, const QString &name)
{
    const QString start = name + u'=';
    const QString rest = uri.mid(uri.indexOf(u':') + 1);
    for (const QString &part : rest.split(u';')) {
        for (const QString &piece : part.split(u'?')) {
            for (const QString &attribute : piece.split(u'&')) {
                if (attribute.startsWith(start))
                    return QUrl::fromPercentEncoding(attribute.mid(start.size()).toUtf8());
            }
        }
    }
    return {};
}

/// The engine stays loaded until the process ends, since keys of its are in use.
ENGINE *startEngine(const QString &uri)
{
    ENGINE_load_builtin_engines();
    ENGINE *engine = ENGINE_by_id("pkcs11");
    const QByteArray module = QFile::encodeName(attributeOf(uri, u"module-path"_s));
    const bool isSet = engine
        && (module.isEmpty() || ENGINE_ctrl_cmd_string(engine, "MODULE_PATH", module.constData(), 0) == 1);
    if (!isSet || ENGINE_init(engine) != 1)
        return nullptr;
    ENGINE_ctrl_cmd_string(engine, "QUIET", nullptr, 0); // what goes wrong is told in one line of ours
    return engine;
}

ENGINE *engineFor(const QString &uri)
{
    static ENGINE *engine = startEngine(uri);
    return engine;
}

bool setPin(ENGINE *engine, const QByteArray &pin)
{
    return ENGINE_ctrl_cmd_string(engine, "PIN", pin.constData(), 0) == 1;
}

} // namespace

QMap<QString, QString> readTokenKeys(const QString &keychainFolder)
{
    QMap<QString, QString> uris;
    const QDir folder(keychainFolder + u"/tokens"_s);
    const QString ending = u".json"_s;
    for (const QString &name : folder.entryList({u'*' + ending}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        constexpr qint64 mostBytes = 1 << 16;
        if (file.open(QIODevice::ReadOnly))
            uris.insert(name.chopped(ending.size()),
                        QJsonDocument::fromJson(file.read(mostBytes)).object().value(u"uri"_s).toString());
    }
    return uris;
}

Result<SharedKey> openTokenKey(const QString &uri, const Vault &vault)
{
    auto secrets = vault.read();
    if (!secrets)
        return secrets.failure();
    const PasswordItem *pin = secrets->find(tokenPinItem(uri));
    return pin ? loadTokenKey(uri, pin->password)
               : Error{uri + u": the token's PIN is not in the keychain; import-token asks for it"_s};
}

Result<SharedKey> loadTokenKey(const QString &uri, const QByteArray &pin)
{
    ENGINE *engine = engineFor(uri);
    if (!engine) {
        ERR_clear_error();
        return Error{
            u"tokens need the PKCS #11 engine of OpenSSL (Debian's package libengine-pkcs11-openssl)"_s};
    }
    EVP_PKEY *key = setPin(engine, pin)
        ? ENGINE_load_private_key(engine, uri.toUtf8().constData(), nullptr, nullptr)
        : nullptr;
    ERR_clear_error();
    return key ? Result<SharedKey>(SharedKey(Key(key)))
               : Error{uri + u": no such key in a token that is there, or a wrong PIN"_s};
}

Certificate loadTokenCertificate(const QString &uri, const QByteArray &pin)
{
    ENGINE *engine = engineFor(uri);
    QString name = uri;
    const QByteArray certificateUri = name.replace(u"type=private"_s, u"type=cert"_s).toUtf8();
    CertificateRequest request{certificateUri.constData(), nullptr};
    if (engine && setPin(engine, pin))
        ENGINE_ctrl_cmd(engine, "LOAD_CERT_CTRL", 0, &request, nullptr, 0);
    ERR_clear_error();
    return Certificate(request.certificate);
}

QString tokenPinItem(const QString &uri)
{
    return u"PIN of "_s + uri;
}

} // namespace toolchain
