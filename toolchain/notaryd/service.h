#pragma once

#include "notaryd/faults.h"
#include "notaryd/submissions.h"
#include "notaryd/vouching.h"
#include "notaryd/webhook.h"

#include <QJsonArray>

#include <atomic>
#include <future>
#include <memory>

namespace notaryd {

/// What a request needs of the service as a whole.
struct ServiceFacts {
    QString origin; ///< "https://127.0.0.1:43211"
    QByteArray logSecret; ///< signs the addresses of logs
    bool hasControl = false;
};

/// The service behind its sockets. Any thread may call.
class Service {
public:
    explicit Service(QString notaryFolder);

    /// Once, when the sockets are known. What is asked before waits for it.
    void setFacts(const ServiceFacts &facts) { m_promisedFacts.set_value(facts); }
    [[nodiscard]] const ServiceFacts &facts() const { return m_facts.get(); }

    /// What deals with a request, by its path and method.
    [[nodiscard]] std::unique_ptr<Handler> handlerFor(const Request &request);

    /// The service's clock, which a fault may have put wrong.
    [[nodiscard]] QDateTime now(const Request &request);

    [[nodiscard]] Faults &faults() { return m_faults; }
    [[nodiscard]] Submissions &submissions() { return m_submissions; }

    /// How often this has been asked about a thing, this time included, since the faults were set.
    [[nodiscard]] qint64 countQuestion(const QString &kind, const QString &thing);

    /// Replaces those before; what they had counted is forgotten.
    void setFaults(const QList<Fault> &faults);

    [[nodiscard]] Vouching &vouching() { return m_vouching; }

    /// Keeps what is asked, without its query and its headers; the oldest go first. Answers the number by
    /// which its end is told.
    [[nodiscard]] qint64 recordQuestion(const Request &request);
    /// The status of the reply, 0 where the connection is torn down instead. Before its sender knows.
    void recordAnswer(qint64 number, int status);
    [[nodiscard]] QJsonArray recorded();
    void forgetRecorded();

    /// When the service ends, whoever waits in a request has to let go.
    std::atomic<bool> isEnding = false;

private:
    std::promise<ServiceFacts> m_promisedFacts;
    const std::shared_future<ServiceFacts> m_facts = m_promisedFacts.get_future().share();
    Faults m_faults;
    Vouching m_vouching;
    Webhook m_webhook;
    Submissions m_submissions;
    std::mutex m_recordMutex;
    QHash<QString, qint64> m_questions;
    QMap<qint64, QJsonObject> m_recorded; ///< by their numbers
    qint64 m_lastRecorded = 0;
};

/// Deals with a request whose body is small; answers 413 to a larger one.
class WholeBodyHandler : public Handler {
public:
    using Answering = std::function<Response(const QByteArray &body)>;
    explicit WholeBodyHandler(Answering answer, qint64 largest = 1 << 20)
        : m_answer(std::move(answer))
        , m_largest(largest)
    {
    }
    bool take(const char *bytes, qint64 length) override;
    Response end() override;

private:
    const Answering m_answer;
    const qint64 m_largest;
    QByteArray m_body;
    bool m_isTooLarge = false;
};

} // namespace notaryd
