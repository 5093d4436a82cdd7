#include "altool/receipts.h"

#include "formats/keychain/privatefile.h"
#include "formats/statefolder.h"

#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using platform::Outcome;

namespace toolchain {

namespace {

QString folder(const QString &name)
{
    return notaryFolder() + u'/' + name;
}

QString receiptPath(const QString &id)
{
    return folder(u"receipts"_s) + u'/' + id.toLower() + u".json"_s;
}

} // namespace

Outcome keepReceipt(const QString &id, const Receipt &receipt)
{
    const Outcome made = makePrivateFolder(folder(u"receipts"_s));
    if (!made)
        return made;
    const QJsonObject form{{u"name"_s, receipt.name},
                           {u"sha256"_s, QString::fromLatin1(receipt.sha256)},
                           {u"bundleIdentifier"_s, receipt.bundleIdentifier},
                           {u"uploaded"_s, QDateTime::currentDateTimeUtc().toString(Qt::ISODate)}};
    return writePrivateFile(receiptPath(id), QJsonDocument(form).toJson());
}

Receipt receiptOf(const QString &id)
{
    QFile file(receiptPath(id));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonObject form = QJsonDocument::fromJson(file.readAll()).object();
    return {form[u"name"].toString(), form[u"sha256"].toString().toLatin1(),
            form[u"bundleIdentifier"].toString()};
}

QString keepLog(const QString &id, const QByteArray &log)
{
    const QString path = folder(u"logs"_s) + u'/' + id.toLower() + u".json"_s;
    const bool isKept = makePrivateFolder(folder(u"logs"_s)) && writePrivateFile(path, log);
    return isKept ? path : QString();
}

} // namespace toolchain
