#include "formats/passwords.h"

#include <QFile>
#include <QUrl>

#include <sys/stat.h>

#include "formats/statefolder.h"
#include "support/wholefile.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

QString passwordFolder()
{
    return keychainFolder() + u"/passwords"_s;
}

/// A name may hold any character, so it is written in percent form.
QString itemPath(const QString &name)
{
    return passwordFolder() + u'/' + QString::fromLatin1(QUrl::toPercentEncoding(name)) + u".password"_s;
}

} // namespace

std::optional<QByteArray> readPassword(const QString &name)
{
    QFile file(itemPath(name));
    return file.open(QIODevice::ReadOnly) ? std::optional(file.readAll()) : std::nullopt;
}

QString storePassword(const QString &name, const QByteArray &password)
{
    const QString problem = makePrivateFolder(passwordFolder());
    if (!problem.isEmpty())
        return problem;
    const mode_t mask = umask(077);
    const std::string error =
        writeWholeFile(itemPath(name).toStdString(), {password.constData(), std::size_t(password.size())});
    umask(mask);
    return QString::fromStdString(error);
}

} // namespace toolchain
