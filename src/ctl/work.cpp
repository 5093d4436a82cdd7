#include "ctl/work.h"

#include "ctl/canceller.h"
#include "ctl/logfollower.h"
#include "ctl/output.h"
#include "scripting/dbus/busnames.h"

#include <QDBusVariant>
#include <QJsonArray>
#include <QJsonObject>

#include <memory>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int longestQuestion = 5000; // milliseconds, of what is asked after the answer

QStringList resultLines(const Answer &answer, Work::Show show)
{
    const QStringList lines = answer ? output::lines(answer.values.value(0)) : QStringList();
    return show == Work::Show::filesAsPaths ? output::filesAsPaths(lines) : lines;
}

QJsonValue orNothing(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonValue error(const Answer &answer)
{
    if (answer)
        return {};
    const QJsonValue number =
        answer.scriptError ? QJsonValue(answer.scriptError->toLongLong()) : QJsonValue();
    return QJsonObject{{u"number"_s, number},
                       {u"text"_s, answer.errorText.isNull() ? answer.error : answer.errorText}};
}

} // namespace

Work::Work(const Request &request, const Client &client)
    : m_request(request)
    , m_client(client)
{
}

QString Work::documentPath() const
{
    return m_request.document.isEmpty() ? QString() : Client::documentPath(m_request.document);
}

/// A document of its own for a pause of its own: a command makes its document with what is set.
Answer Work::giveToolPause(const LogFollower &follower) const
{
    const QVariantMap pause{{u"ToolPause"_s, m_request.toolPause}};
    if (const QString document = documentPath(); !document.isEmpty())
        return m_client.call(
            Client::setProperty(document, bus::documentInterface, pause.firstKey(), pause.first()));
    const Answer made = m_client.call(Client::method(bus::applicationPath, bus::applicationInterface,
                                                     u"MakeDocument"_s, {pause}, Client::Start::onDemand));
    if (!made && !follower.documentPath().isEmpty())
        closeDocument(follower.documentPath());
    return made;
}

QDBusMessage Work::message(const QString &document, const QString &name, const QVariantMap &arguments) const
{
    if (!document.isEmpty())
        return Client::method(document, bus::documentInterface, name, {arguments});
    return Client::method(bus::applicationPath, bus::applicationInterface, name, {arguments},
                          Client::Start::onDemand);
}

Answer Work::carryOut(const QString &name, const QVariantMap &arguments, Show show) const
{
    QStringList log;
    LogFollower follower(m_client, documentPath(), [&](const QString &entry) {
        if (m_request.json)
            log.append(entry);
        if (m_request.follow)
            output::printError(entry);
    });
    if (m_request.toolPause >= 0) {
        if (const Answer given = giveToolPause(follower); !given)
            return given;
    }
    const QString document = m_request.toolPause >= 0 ? follower.documentPath() : documentPath();
    std::unique_ptr<Canceller> canceller;
    if (m_request.follow)
        canceller = std::make_unique<Canceller>(m_client, follower,
                                                name == "StapleOnly"_L1 ? Canceller::Effect::isIgnored
                                                                        : Canceller::Effect::cancels);
    const Answer answer = m_client.call(message(document, name, arguments), m_request.timeout);
    if (m_request.follow || m_request.json || m_request.close)
        follower.finish();
    if (m_request.json)
        output::printJson(described(answer, follower.documentPath(), log, show));
    else if (const QStringList lines = resultLines(answer, show); show == Show::filesAsPaths)
        output::print(lines);
    else if (!lines.isEmpty())
        output::printText(lines.first());
    const bool isOver = answer.status != ExitStatus::noAnswer;
    if (m_request.close && isOver && !follower.documentPath().isEmpty())
        closeDocument(follower.documentPath());
    return answer;
}

QJsonObject Work::described(const Answer &answer, const QString &document, const QStringList &log,
                            Show show) const
{
    QString status;
    if (!document.isEmpty()) {
        const auto property = Client::getProperty(document, bus::documentInterface, u"DocStatus"_s);
        status = output::lines(m_client.call(property, longestQuestion).values.value(0)).value(0);
    }
    const QStringList result = resultLines(answer, show);
    return {{u"document"_s, orNothing(document.section(u'/', -1))},
            {u"status"_s, orNothing(status)},
            {u"result"_s, result.isEmpty() ? QJsonValue() : QJsonValue(result.first())},
            {u"log"_s, QJsonArray::fromStringList(log)},
            {u"error"_s, error(answer)}};
}

void Work::closeDocument(const QString &path) const
{
    [[maybe_unused]] const Answer closed =
        m_client.call(Client::method(path, bus::documentInterface, u"Close"_s), longestQuestion);
}

} // namespace sealwright
