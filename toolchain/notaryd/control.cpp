#include "notaryd/control.h"

#include "notaryd/replies.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

Response said(int status, const QString &text)
{
    Response response = jsonReply({{status == 200 ? u"done"_s : u"error"_s, text}});
    response.status = status;
    return response;
}

Response replaceFaults(Service &service, const QByteArray &body)
{
    const auto faults = faultsFromJson(body);
    if (!faults)
        return said(400, faults.error());
    service.setFaults(*faults);
    return said(200, u"%1 faults"_s.arg(faults->size()));
}

Response requests(Service &service)
{
    return {.status = 200, .body = QJsonDocument(service.recorded()).toJson(), .headers = {}};
}

Response reset(Service &service)
{
    service.setFaults({});
    service.forgetRecorded();
    return said(200, u"reset"_s);
}

Response answer(Service &service, const Request &request, const QByteArray &body)
{
    if (!request.isFromLoopback)
        return said(403, u"this is for the machine of the service alone"_s);
    if (request.method == "POST" && request.path == "/control/faults")
        return replaceFaults(service, body);
    if (request.method == "GET" && request.path == "/control/requests")
        return requests(service);
    if (request.method == "POST" && request.path == "/control/reset")
        return reset(service);
    return said(404, u"there is no such call"_s);
}

} // namespace

std::unique_ptr<Handler> controlHandler(Service &service, const Request &request)
{
    return std::make_unique<WholeBodyHandler>(
        [&service, request](const QByteArray &body) { return answer(service, request, body); });
}

} // namespace notaryd
