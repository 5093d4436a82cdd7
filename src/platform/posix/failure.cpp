#include "platform/posix/failure.h"

#include <QFile>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace platform {

QString failureText(const QString &verb, const QString &path)
{
    const QString reason = qt_error_string(errno);
    return u"Cannot "_s + verb + u" '"_s + path + u"': "_s + reason;
}

Outcome failure(const QString &verb, const QString &path)
{
    return Outcome::failure(failureText(verb, path));
}

Outcome failure(const QString &verb, const QString &path, const QString &target)
{
    return Outcome::failure(failureText(verb, path + u"' to '"_s + target));
}

QByteArray nativePath(const QString &path)
{
    if (path.contains(QChar::Null))
        return {};
    QByteArray native = QFile::encodeName(path);
    while (native.size() > 1 && native.endsWith('/'))
        native.chop(1);
    return native;
}

} // namespace platform
