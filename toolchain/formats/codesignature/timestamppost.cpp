#include "formats/codesignature/timestamppost.h"

#include <QFile>

#include <curl/curl.h>

#include <algorithm>
#include <memory>

#include "formats/cryptography.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

using Transfer = std::unique_ptr<CURL, Freed<curl_easy_cleanup>>;
using Headers = std::unique_ptr<curl_slist, Freed<curl_slist_free_all>>;

constexpr qsizetype mostBytes = 1 << 18;
constexpr double connectSeconds = 10;
constexpr double wholeSeconds = 30;

size_t takeBytes(char *bytes, size_t, size_t count, void *target)
{
    auto *body = static_cast<QByteArray *>(target);
    if (body->size() + static_cast<qsizetype>(count) > mostBytes)
        return 0;
    body->append(bytes, static_cast<qsizetype>(count));
    return count;
}

/// Tests shorten every wait.
long milliseconds(double seconds)
{
    bool isNumber = false;
    const double scale = qgetenv("SEALWRIGHT_WAIT_SCALE").toDouble(&isNumber);
    const double factor = isNumber ? std::clamp(scale, 0.0, 1.0) : 1.0;
    constexpr double thousand = 1000;
    constexpr long least = 10'000; // a busy machine, which may have to make a key first, is not dead
    return std::max(least, static_cast<long>(seconds * factor * thousand));
}

void setAddress(CURL *transfer, const TimestampService &service)
{
    curl_easy_setopt(transfer, CURLOPT_URL, service.url.toUtf8().constData());
    curl_easy_setopt(transfer, CURLOPT_PROTOCOLS_STR, "http,https");
    if (!service.ca.isEmpty())
        curl_easy_setopt(transfer, CURLOPT_CAINFO, QFile::encodeName(service.ca).constData());
    curl_easy_setopt(transfer, CURLOPT_CONNECTTIMEOUT_MS, milliseconds(connectSeconds));
    curl_easy_setopt(transfer, CURLOPT_TIMEOUT_MS, milliseconds(wholeSeconds));
    curl_easy_setopt(transfer, CURLOPT_NOSIGNAL, 1L);
}

void setBody(CURL *transfer, const QByteArray &query, curl_slist *headers, QByteArray *reply)
{
    curl_easy_setopt(transfer, CURLOPT_POSTFIELDSIZE, static_cast<long>(query.size()));
    curl_easy_setopt(transfer, CURLOPT_POSTFIELDS, query.constData());
    curl_easy_setopt(transfer, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(transfer, CURLOPT_WRITEFUNCTION, takeBytes);
    curl_easy_setopt(transfer, CURLOPT_WRITEDATA, reply);
}

QString problemOf(CURL *transfer, CURLcode result)
{
    if (result == CURLE_WRITE_ERROR)
        return u"the answer is longer than any time stamp"_s;
    if (result != CURLE_OK)
        return QString::fromUtf8(curl_easy_strerror(result));
    long status = 0;
    curl_easy_getinfo(transfer, CURLINFO_RESPONSE_CODE, &status);
    return status == 200 ? QString() : u"HTTP status %1"_s.arg(status);
}

} // namespace

Result<QByteArray> postTimestampQuery(const TimestampService &service, const QByteArray &query)
{
    const Transfer transfer(curl_easy_init());
    const Headers headers(curl_slist_append(
        curl_slist_append(nullptr, "Content-Type: application/timestamp-query"), "Expect:"));
    QByteArray reply;
    setAddress(transfer.get(), service);
    setBody(transfer.get(), query, headers.get(), &reply);
    const QString problem = problemOf(transfer.get(), curl_easy_perform(transfer.get()));
    return problem.isEmpty() ? Result<QByteArray>(reply) : Error{problem};
}

} // namespace toolchain
