#include "notarization/requestinfo.h"

#include "notarization/altoolarguments.h"
#include "notarization/credentialcheck.h"
#include "notarization/history.h"
#include "notarization/pollinginfo.h"
#include "notarization/servicelog.h"
#include "platform/propertylist/propertylist.h"
#include "tools/failureline.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

std::optional<QString> textOfLogFile(Run &run, const QString &report)
{
    const auto bytes = contentsOfLogFile(run.host.urls, report);
    return bytes ? decodedUtf8(*bytes) : std::nullopt;
}

void showReport(Run &run, const QString &report)
{
    const QString word = verdict(report);
    if (word == "in progress"_L1)
        return run.log.logString(report);
    const bool isApproved = word == "success"_L1;
    isApproved ? run.log.logString(report) : run.log.logError(report);
    const auto log = textOfLogFile(run, report);
    if (!log)
        return;
    run.log.logBoldString(u"Contents of LogFileURL:"_s);
    run.log.logString(*log);
    if (!isApproved)
        run.log.logBoldString(u"Notarization Failed"_s);
}

StepResult findNewestRequest(Run &run)
{
    run.requestUUID = run.inputs().requestUUID.value_or(QString());
    if (run.inputs().requestUUID)
        return Done{};
    run.log.logBoldString(fetchingHistory);
    const auto response =
        run.tools.askService(altoolarguments::history(u"0"_s, run.inputs().credentials, OutputFormat::xml));
    const QString error = response->errorString();
    if (response->status() != 0)
        return historyFailure(lookupFailureMessage(error), error);
    const QString history = response->outputString();
    const auto identifier = newestRequestUUID(history);
    if (!identifier)
        return Failure{u"Request UUID Not Found"_s, u"Unable to parse history:\n"_s + orNull(history),
                       FolderFate::keepsItsName};
    run.requestUUID = *identifier;
    return Done{};
}

StepResult fetchInfo(Run &run)
{
    run.log.logBoldString(u"Fetching notarizing info for Request UUID %1...\n"_s.arg(run.requestUUID));
    const auto response =
        run.tools.askService(altoolarguments::info(run.requestUUID, run.inputs().credentials));
    if (response->status() != 0)
        return Failure{u"Failed to Retrieve Info"_s, lookupFailureLine(*response), FolderFate::keepsItsName};
    const QString report = response->text();
    if (report.isNull())
        run.log.logBoldString(
            u"Fetching notarizing info for Request UUID %1 failed. Try again.\n"_s.arg(run.requestUUID));
    else
        showReport(run, report);
    return Done{};
}

constexpr Step findRequest{.name = {}, .work = &findNewestRequest, .cancelTest = CancelTest::isLeftOut};
constexpr Step fetch{.name = {}, .work = &fetchInfo, .cancelTest = CancelTest::isLeftOut};

} // namespace

Workflow requestInfoWorkflow()
{
    return {findRequest, fetch};
}

bool isRequestUUID(const QString &text)
{
    static const QRegularExpression form(
        uR"(\A[0-9a-h]{8}-[0-9a-h]{4}-[0-9a-h]{4}-[0-9a-h]{4}-[0-9a-h]{12}\z)"_s);
    return form.match(text).hasMatch();
}

std::optional<QString> newestRequestUUID(const QString &history)
{
    const QVariantMap reply = platform::propertyListFromData(history.toUtf8()).valueOr({}).toMap();
    const QVariantList items = reply.value(u"notarization-history"_s).toMap().value(u"items"_s).toList();
    const QVariant identifier = items.value(0).toMap().value(u"RequestUUID"_s);
    return identifier.typeId() == QMetaType::QString ? std::optional(identifier.toString()) : std::nullopt;
}

QString lookupFailureMessage(const QString &errorString)
{
    return errorString.isNull() ? invalidCredentialMessage : credentialMessage(errorString);
}

QString lookupFailureLine(const SLWTaskResponse &response)
{
    return toolFailureLine(response, u"fetching info"_s);
}

} // namespace sealwright
