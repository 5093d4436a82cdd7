#include "formats/keychain/secretservice.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::secretservice {

namespace {

/// The helper lies in the tool root beside the folder of this program, or of one of the folders above.
QString helperPath()
{
    QDir folder(QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).absolutePath());
    do {
        const QString path = folder.filePath(u"usr/libexec/sealwright-secrets"_s);
        if (QFileInfo(path).isExecutable())
            return path;
    } while (folder.cdUp());
    return {};
}

Result<QByteArray> ask(const QString &verb, const QString &entry, const QByteArray &secret)
{
    const QString helper = helperPath();
    if (helper.isEmpty())
        return Error{u"sealwright-secrets, which speaks with the Secret Service, is not in the tool root"_s};
    QProcess process;
    process.start(helper, {verb, entry});
    process.write(secret.toHex());
    process.closeWriteChannel();
    const bool hasEnded = process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit;
    if (!hasEnded)
        return Error{helper + u": "_s + process.errorString()};
    if (process.exitCode() != 0)
        return Error{QString::fromUtf8(process.readAllStandardError()).trimmed()};
    return QByteArray::fromHex(process.readAllStandardOutput().trimmed());
}

} // namespace

Result<QByteArray> read(const QString &entry)
{
    return ask(u"read"_s, entry, {});
}

Outcome store(const QString &entry, const QByteArray &secret)
{
    const auto answer = ask(u"store"_s, entry, secret);
    return answer ? Outcome::success() : answer.failure();
}

Outcome remove(const QString &entry)
{
    const auto answer = ask(u"remove"_s, entry, {});
    return answer ? Outcome::success() : answer.failure();
}

} // namespace toolchain::secretservice
