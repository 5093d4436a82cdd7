#pragma once

#include "notaryd/query.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QPair>

#include <algorithm>

namespace notaryd {

/// A request whose headers have been read.
struct Request {
    QByteArray method;
    QByteArray
        path; ///< in percent form, without the query; that of a bucket's own host begins with its bucket
    QByteArray askedPath; ///< as it stands in the request line
    Query query;
    QMap<QByteArray, QByteArray> headers; ///< names in lower case
    bool isFromLoopback = false;

    [[nodiscard]] bool asks(const QByteArray &name) const
    {
        return std::any_of(query.begin(), query.end(),
                           [&name](const auto &part) { return part.first == name; });
    }
    [[nodiscard]] QByteArray queryValue(const QByteArray &name) const
    {
        for (const auto &[key, value] : query) {
            if (key == name)
                return value;
        }
        return {};
    }
};

struct Response {
    int status = 200;
    QByteArray body;
    QByteArray type = "application/json";
    QList<QPair<QByteArray, QByteArray>> headers;
};

/// What deals with one request. Calls come from the connection's own thread and may block.
class Handler {
public:
    Handler() = default;
    virtual ~Handler() = default;
    Handler(const Handler &) = delete;
    Handler &operator=(const Handler &) = delete;

    /// Before any of the body has been read; a status other than 0 is the answer, and the body is not wanted.
    virtual Response begin() { return {.status = 0, .body = {}, .type = {}, .headers = {}}; }
    /// A part of the body. False if no more is wanted; the answer is then that of `end`.
    virtual bool take(const char *bytes, qint64 length) = 0;
    /// The body is whole.
    virtual Response end() = 0;
};

} // namespace notaryd
