#include "ctl/looks.h"

#include "ctl/lookforms.h"
#include "ctl/lookreport.h"
#include "ctl/output.h"
#include "ctl/propertyvalue.h"
#include "scripting/dbus/busnames.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QString textIn(const Answer &answer)
{
    return answer.values.value(0).value<QDBusVariant>().variant().toString();
}

/// An item that cannot be looked at is another thing than one that would be refused.
Answer asNotLookedAt(Answer answer)
{
    if (answer.status == ExitStatus::error)
        answer.status = ExitStatus::notLookedAt;
    return answer;
}

Answer withStatus(ExitStatus status)
{
    Answer answer;
    answer.status = status;
    return answer;
}

void print(const Request &request, const QString &json, const QStringList &lines)
{
    if (request.json)
        output::printText(json);
    else
        output::print(lines);
}

} // namespace

Answer examine(const Request &request, const Client &client)
{
    QVariantMap arguments{{u"at"_s, fileUrl(request.operands.first())}};
    if (!request.document.isEmpty())
        arguments.insert(u"document"_s,
                         QVariant::fromValue(QDBusObjectPath(Client::documentPath(request.document))));
    const Answer answer = client.call(Client::method(bus::applicationPath, bus::applicationInterface,
                                                     u"Examine"_s, {arguments}, Client::Start::onDemand));
    if (!answer)
        return asNotLookedAt(answer);
    const QString json = textIn(answer);
    const QJsonObject examination = QJsonDocument::fromJson(json.toUtf8()).object();
    if (request.junit)
        output::printText(lookforms::junitOfExamination(examination));
    else if (request.sarif)
        output::printText(lookforms::sarifOfExamination(examination));
    else
        print(request, json, lookreport::examinationLines(examination));
    return withStatus(examination.value("refused"_L1).toBool() ? ExitStatus::error : ExitStatus::done);
}

Answer issues(const Request &request, const Client &client)
{
    const Answer answer = client.call(Client::getProperty(Client::documentPath(request.operands.first()),
                                                          bus::documentInterface, u"Issues"_s));
    if (!answer)
        return answer;
    const QString json = textIn(answer);
    const QJsonArray found = QJsonDocument::fromJson(json.toUtf8()).array();
    if (request.junit)
        output::printText(lookforms::junitOfIssues(request.operands.first(), found));
    else if (request.sarif)
        output::printText(lookforms::sarifOfIssues(found));
    else
        print(request, json, lookreport::issueLines(found));
    return answer;
}

Answer compare(const Request &request, const Client &client)
{
    const QVariantMap arguments{{u"old"_s, fileUrl(request.operands[0])},
                                {u"new"_s, fileUrl(request.operands[1])}};
    const Answer answer = client.call(Client::method(bus::applicationPath, bus::applicationInterface,
                                                     u"Compare"_s, {arguments}, Client::Start::onDemand));
    if (!answer)
        return asNotLookedAt(answer);
    const QString json = textIn(answer);
    const QJsonArray differences =
        QJsonDocument::fromJson(json.toUtf8()).object().value("differences"_L1).toArray();
    print(request, json, lookreport::differenceLines(differences));
    return withStatus(differences.isEmpty() ? ExitStatus::done : ExitStatus::error);
}

} // namespace sealwright
