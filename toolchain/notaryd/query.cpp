#include "notaryd/query.h"

namespace notaryd {

namespace {

QByteArray decoded(QByteArray text)
{
    return QByteArray::fromPercentEncoding(text.replace('+', "%20"));
}

} // namespace

Query queryIn(const QByteArray &text)
{
    Query query;
    for (const QByteArray &part : text.split('&')) {
        const qsizetype sign = part.indexOf('=');
        if (!part.isEmpty())
            query.append({decoded(sign < 0 ? part : part.left(sign)),
                          sign < 0 ? QByteArray() : decoded(part.mid(sign + 1))});
    }
    return query;
}

} // namespace notaryd
