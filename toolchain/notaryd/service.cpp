#include "notaryd/service.h"

#include "notaryd/apicalls.h"
#include "notaryd/control.h"
#include "notaryd/replies.h"
#include "notaryd/storage.h"
#include "notaryd/tickets.h"
#include "notaryd/verdict.h"

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

constexpr qsizetype mostRecorded = 20'000;

std::unique_ptr<Handler> answering(const Response &response)
{
    return std::make_unique<WholeBodyHandler>([response](const QByteArray &) { return response; });
}

} // namespace

Service::Service(QString notaryFolder)
    : m_submissions(std::move(notaryFolder), decide,
                    [this](const NotaryRequest &request) { m_webhook.tell(request); })
{
}

std::unique_ptr<Handler> Service::handlerFor(const Request &request)
{
    const QByteArray &path = request.path;
    if (path.startsWith("/s3/"))
        return storageHandler(*this, request);
    if (path == "/notary/v2/submissions" || path.startsWith("/notary/v2/submissions/"))
        return apiHandler(*this, request);
    if (path.startsWith("/artifacts/"))
        return artifactHandler(*this, request);
    if (path == ticketLookupPath)
        return ticketHandler(*this, request);
    if (path == "/timestamp")
        return timestampHandler(*this, request);
    if (path.startsWith("/control/") && facts().hasControl)
        return controlHandler(*this, request);
    return answering(statusReply(404));
}

QDateTime Service::now(const Request &request)
{
    const auto fault = m_faults.holding(u"clock"_s, u"clock"_s, request);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    return fault ? now.addSecs(qint64(fault->number(0))) : now;
}

qint64 Service::countQuestion(const QString &kind, const QString &thing)
{
    const std::scoped_lock lock(m_recordMutex);
    return ++m_questions[kind + u' ' + thing];
}

void Service::setFaults(const QList<Fault> &faults)
{
    m_faults.replace(faults);
    const std::scoped_lock lock(m_recordMutex);
    m_questions.clear();
}

qint64 Service::recordQuestion(const Request &request)
{
    const std::scoped_lock lock(m_recordMutex);
    if (request.path.startsWith("/control/"))
        return 0;
    if (m_recorded.size() >= mostRecorded)
        m_recorded.erase(m_recorded.begin());
    m_recorded.insert(++m_lastRecorded,
                      {{u"method"_s, QString::fromUtf8(request.method)},
                       {u"path"_s, QString::fromUtf8(request.path)},
                       {u"status"_s, QJsonValue::Null},
                       {u"time"_s, QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)}});
    return m_lastRecorded;
}

void Service::recordAnswer(qint64 number, int status)
{
    const std::scoped_lock lock(m_recordMutex);
    const auto question = m_recorded.find(number);
    if (question != m_recorded.end())
        question->insert(u"status"_s, status);
}

QJsonArray Service::recorded()
{
    const std::scoped_lock lock(m_recordMutex);
    QJsonArray list;
    for (const QJsonObject &question : m_recorded)
        list.append(question);
    return list;
}

void Service::forgetRecorded()
{
    const std::scoped_lock lock(m_recordMutex);
    m_recorded = {};
}

bool WholeBodyHandler::take(const char *bytes, qint64 length)
{
    m_isTooLarge = m_isTooLarge || m_body.size() + length > m_largest;
    if (!m_isTooLarge)
        m_body.append(bytes, length);
    return true;
}

Response WholeBodyHandler::end()
{
    return m_isTooLarge ? statusReply(413, u"html"_s) : m_answer(m_body);
}

} // namespace notaryd
