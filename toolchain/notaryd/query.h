#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>

namespace notaryd {

/// Names and values of a request's query, decoded, in the order of the request line.
using Query = QList<QPair<QByteArray, QByteArray>>;

/// Takes apart what stands behind the question mark of a request line (RFC 3986, section 3.4; a plus is a
/// blank).
[[nodiscard]] Query queryIn(const QByteArray &text);

} // namespace notaryd
