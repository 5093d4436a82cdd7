#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

#include <atomic>
#include <optional>
#include <variant>

#include "formats/notary/apikey.h"
#include "formats/notary/httpclient.h"
#include "formats/notary/replyreader.h"
#include "formats/notary/retries.h"
#include "formats/notary/serviceerror.h"

namespace toolchain::notary {

/// The service's clock as its replies show it. Any thread.
class ServiceClock {
public:
    void learn(const HttpReply &reply);
    /// The service's time.
    [[nodiscard]] QDateTime now() const { return QDateTime::currentDateTimeUtc().addSecs(m_offset); }
    /// Seconds that the service is ahead of this machine.
    [[nodiscard]] qint64 offset() const { return m_offset; }

private:
    std::atomic<qint64> m_offset = 0;
};

template <typename T>
using Answer = std::variant<T, ServiceFailure>;

/// The service's calls (https://developer.apple.com/documentation/notaryapi), each with its own retries.
/// Blocks. For one thread at a time.
class NotaryApi {
public:
    NotaryApi(const ServiceConfig &config, ApiKey key);

    [[nodiscard]] Answer<UploadPlace> submit(const QString &name, const QByteArray &sha256);
    /// Newest first. A team without any submission has an empty list.
    [[nodiscard]] Answer<QList<Submission>> history();
    /// Nothing if the service does not know the request.
    [[nodiscard]] Answer<std::optional<Submission>> status(const QString &id);
    /// The log's own bytes, known to be JSON of that request.
    [[nodiscard]] Answer<QByteArray> log(const QString &id);

    [[nodiscard]] const ServiceClock &clock() const { return m_clock; }
    [[nodiscard]] ServiceClock &clock() { return m_clock; }
    [[nodiscard]] HttpClient &http() { return m_http; }

private:
    using IsUsable = bool (*)(const QByteArray &body);
    [[nodiscard]] HttpReply call(const QByteArray &method, const QString &path, IsUsable isUsable,
                                 const QByteArray &body = {});
    [[nodiscard]] NextStep judge(const HttpReply &reply, IsUsable isUsable);
    [[nodiscard]] Answer<QByteArray> fetchLog(const QByteArray &url);

    const ServiceConfig m_config;
    const ApiKey m_key;
    HttpClient m_http;
    ServiceClock m_clock;
};

} // namespace toolchain::notary
