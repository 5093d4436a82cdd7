#include "notarization/requestinfo.h"

#include "document/mainwincontroller.h"
#include "notarization/credentialcheck.h"
#include "notarization/pollinginfo.h"
#include "notarization/servicelog.h"
#include "platform/applicationhost.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/pasteboard.h"
#include "platform/propertylist/propertylist.h"
#include "tools/failureline.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

bool isRequestUUID(const QString &text)
{
    static const QRegularExpression form(
        uR"(\A[0-9a-h]{8}-[0-9a-h]{4}-[0-9a-h]{4}-[0-9a-h]{4}-[0-9a-h]{12}\z)"_s);
    return form.match(text).hasMatch();
}

std::optional<QString> newestRequestUUID(const QString &history)
{
    const QVariantMap reply = platform::propertyListFromData(history.toUtf8()).value.toMap();
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

// Commands

void RequestInfo::doInfoForUUIDInFile()
{
    document.askForItem(
        {.message = u"Choose the RequestUUID.txt file"_s,
         .allowedFileTypes = {u"txt"_s},
         .canChooseFiles = true,
         .canChooseDirectories = false,
         .shouldEnable = &MainWinController::shouldEnableURL},
        [this](const QUrl &chosen) { lookUpRequestInFile(itempath::fromUrl(chosen)); },
        [this] { document.endBeforeStart(); });
}

void RequestInfo::lookUpRequestInFile(const QString &path)
{
    document.changeStatus(status::fetching);
    const auto bytes = document.host().files.readFile(path);
    const auto text = bytes ? decodedUtf8(*bytes) : std::nullopt;
    if (text)
        return infoForRequestUUID(text->trimmed());
    document.host().application.beep();
    document.endBeforeStart();
}

void RequestInfo::doInfoForUUIDOfLastUpload()
{
    infoForRequestUUID(std::nullopt);
}

void RequestInfo::doInfoForUUIDOnClipboard()
{
    const QString text = document.host().pasteboard.firstString();
    if (!isRequestUUID(text))
        return document.host().application.beep();
    infoForRequestUUID(text);
}

void RequestInfo::infoForRequestUUID(const std::optional<QString> &requestUUID)
{
    const auto credentials = beginQuery(u"Interface is blocked."_s);
    if (credentials)
        document.dispatchToWorker([this, requestUUID, asked = *credentials] { lookUp(requestUUID, asked); });
}

// The job

void RequestInfo::lookUp(const std::optional<QString> &requestUUID, const Credentials &credentials)
{
    const auto identifier = requestUUID ? requestUUID : findNewestRequest(credentials);
    if (identifier)
        fetchInfo(*identifier, credentials);
}

std::optional<QString> RequestInfo::findNewestRequest(const Credentials &credentials)
{
    document.logBoldString(fetchingHistory);
    const auto response = ask(altoolarguments::history(u"0"_s, credentials, OutputFormat::xml));
    const QString error = response->errorString();
    if (response->status() != 0) {
        reportHistoryFailure(lookupFailureMessage(error), error);
        return std::nullopt;
    }
    const QString history = response->outputString();
    const auto identifier = newestRequestUUID(history);
    if (!identifier)
        document.reportFailure(u"Request UUID Not Found"_s,
                               u"Unable to parse history:\n"_s + orNull(history));
    return identifier;
}

void RequestInfo::fetchInfo(const QString &requestUUID, const Credentials &credentials)
{
    document.logBoldString(u"Fetching notarizing info for Request UUID %1...\n"_s.arg(requestUUID));
    const auto response = ask(altoolarguments::info(requestUUID, credentials));
    if (response->status() != 0)
        return document.reportFailure(u"Failed to Retrieve Info"_s, lookupFailureLine(*response));
    const QString report = response->text();
    if (report.isNull())
        document.logBoldString(
            u"Fetching notarizing info for Request UUID %1 failed. Try again.\n"_s.arg(requestUUID));
    else
        showReport(report);
    finishQuery();
}

void RequestInfo::showReport(const QString &report)
{
    const QString word = verdict(report);
    if (word == "in progress"_L1)
        return document.logString(report);
    const bool isApproved = word == "success"_L1;
    document.logString(report, !isApproved);
    const auto log = textOfLogFile(report);
    if (!log)
        return;
    document.logBoldString(u"Contents of LogFileURL:"_s);
    document.logString(*log);
    if (!isApproved)
        document.logBoldString(u"Notarization Failed"_s);
}

std::optional<QString> RequestInfo::textOfLogFile(const QString &report)
{
    const auto bytes = contentsOfLogFile(document.host().urls, report);
    return bytes ? decodedUtf8(*bytes) : std::nullopt;
}
