#include "formats/keychain/tokens.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

QMap<QString, QString> readTokenKeys(const QString &keychainFolder)
{
    QMap<QString, QString> uris;
    const QDir folder(keychainFolder + u"/tokens"_s);
    for (const QString &name : folder.entryList({u"*.json"_s}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        constexpr qint64 mostBytes = 1 << 16;
        if (file.open(QIODevice::ReadOnly))
            uris.insert(name.chopped(5),
                        QJsonDocument::fromJson(file.read(mostBytes)).object().value(u"uri"_s).toString());
    }
    return uris;
}

Result<SharedKey> openTokenKey(const QString &uri, const Vault &)
{
    return Error{uri + u": keys in tokens cannot be used yet"_s};
}

} // namespace toolchain
