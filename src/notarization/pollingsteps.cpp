#include "notarization/pollingsteps.h"

#include "app/preferencekeys.h"
#include "document/documentextensions.h"
#include "document/mainwincontroller.h"
#include "document/workingfoldernames.h"
#include "notarization/servicelog.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/notifications.h"
#include "platform/preferences.h"
#include "platform/timer.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 unknownRequestStatus = 239;
constexpr quint64 ordinaryFailureBudget = 3;
constexpr double delayAfterOrdinaryFailure = 15.0;
constexpr quint64 early239Failures = 3;
constexpr double earlyDelayAfter239 = 30.0;
constexpr double lateDelayAfter239 = 60.0;
constexpr double timerTolerance = 10.0;

/// What is no UTF-8 is no text.
QString textOfLog(const QByteArray &log)
{
    return orNull(decodedUtf8(log).value_or(QString()));
}

} // namespace

QString queryFailureLine(const SLWTaskResponse &response)
{
    const QString status = QString::number(response.status());
    const QString error = response.errorString();
    return error.isNull() ? u"Error %1 fetching info."_s.arg(status)
                          : u"Error %1 fetching info: %2"_s.arg(status, error);
}

double delayAfter239(quint64 count)
{
    return count < early239Failures ? earlyDelayAfter239 : lateDelayAfter239;
}

void PollingSteps::armTimer(const PollingInfo &info, double delay)
{
    const quint64 failures = document.infoFailureCount() + document.info239FailureCount();
    document.dispatchToMain([this, delay, failures] { document.stepList.pollIn(delay, failures); });
    const auto timer = document.host().timers.schedule(
        delay, timerTolerance,
        [this, held = document.shared_from_this(), info] { staplingTimerFired(info); });
    document.staplingTimer.set(timer);
}

void PollingSteps::staplingTimerFired(const PollingInfo &info)
{
    document.staplingTimer.set(nullptr);
    document.stepList.pollNow();
    document.dispatchToWorker([this, info] { continueStaplingWithInfo(info); });
}

void PollingSteps::continueStaplingWithInfo(const PollingInfo &info)
{
    const auto response = document.logged(
        document.runAltool(document.taskRunner(), altoolarguments::info(info.requestUUID, info.credentials)));
    if (response->status() != 0)
        return retryAfterFailure(*response, info);
    const QString report = response->text();
    if (report.isNull())
        return pollOrCancelWithInfo(info, info.pollingDelay); // no news, and no cost
    const QString word = verdict(report);
    if (word == "success"_L1)
        return acceptVerdict(report);
    if (word == "in progress"_L1)
        return pollOrCancelWithInfo(info, info.pollingDelay);
    refuseVerdict(report);
}

void PollingSteps::retryAfterFailure(const SLWTaskResponse &response, const PollingInfo &info)
{
    const QString line = queryFailureLine(response);
    if (response.status() == unknownRequestStatus)
        retryAfter239(line, info);
    else
        retryAfterOrdinaryFailure(line, info);
}

void PollingSteps::retryAfter239(const QString &line, const PollingInfo &info)
{
    // As unsigned values: a negative limit never ends the wait.
    const auto limit =
        static_cast<quint64>(document.host().preferences.integer(key::prefRetryLimitFor239Failure));
    const quint64 count = document.info239FailureCount();
    if (count > limit)
        return giveUp(line);
    document.logBoldString(
        u"Apple's servers are responding incorrectly, claiming they don't recognize the UUID they have provided. Typically they correct themselves in time, but it can take a while — potentially several hours. Sealwright will keep polling for about %1 more minutes."_s
            .arg(limit - count));
    document.info239FailureCount.increment();
    const double delay = delayAfter239(document.info239FailureCount());
    document.logToFile(line + u" Will try again in %1 seconds."_s.arg(delay, 0, 'f', 6));
    pollOrCancelWithInfo(info, delay);
}

void PollingSteps::retryAfterOrdinaryFailure(const QString &line, const PollingInfo &info)
{
    if (document.infoFailureCount() >= ordinaryFailureBudget)
        return giveUp(line);
    document.infoFailureCount.increment();
    document.logToFile(line + u" Will try again shortly."_s);
    pollOrCancelWithInfo(info, delayAfterOrdinaryFailure);
}

void PollingSteps::giveUp(const QString &line)
{
    document.reportFailure(u"Failed to Retrieve Info"_s, line);
}

void PollingSteps::acceptVerdict(const QString &report)
{
    document.dispatchToMain([this] { document.isPolling.set(false); });
    logIssues(report);
    document.logBoldString(u"The submission has been notarized and will now be stapled..."_s);
    document.changeStatus(status::stapling);
    document.host().userNotifications.deliver(
        {.title = u"Notarization Successful"_s,
         .informativeText = u"Now stapling the submission"_s,
         .userInfo = {{platform::showWhenActiveKey.toString(),
                       document.host().preferences.boolean(key::userInfoShowWhenActive)}}});
    document.beginStep(Step::staple);
    document.steps().stapling.runStaplerAndFinish();
}

void PollingSteps::logIssues(const QString &report)
{
    const auto log = contentsOfLogFile(document.host().urls, report);
    if (!log)
        return;
    document.logToFile(u"LogFileURL full contents: "_s + textOfLog(*log));
    const auto summary = issuesSummary(*log);
    if (!summary)
        return;
    document.logBoldString(
        u"Apple's servers reported one or more issues with this submission, which may or may not affect how it is treated by Gatekeeper. It will still be notarized, but you should check the result carefully before distributing it. Here is a summary of the issues:"_s);
    document.logString(*summary, true);
}

void PollingSteps::refuseVerdict(const QString &report)
{
    QString explanation = report;
    if (const auto log = contentsOfLogFile(document.host().urls, report))
        explanation += u'\n' + textOfLog(*log);
    auto &files = document.host().files;
    const QString item = itempath::fromUrl(document.appletURL());
    files.removeItem(item).ignore(); // what the service refused is not kept
    if (const QString submitted = document.submitFilePath(); submitted != item)
        files.removeItem(submitted).ignore();
    document.reportFailureAndRename(u"Notarization Failed"_s, explanation);
}

void PollingSteps::pollOrCancelWithInfo(const PollingInfo &info, double pollingDelay)
{
    if (document.cancelPressed()) {
        document.logBoldString(u"Process cancelled..."_s);
        // This report is the one that the cancel swallows; what it leaves is the cleared flag.
        document.reportFailure(
            u"Process Cancelled"_s,
            u"Process cancelled. The app has been uploaded, but notarizing has not been confirmed. Once you get a confirmation email on your Apple ID email account, you can staple the app using the Staple Only button."_s);
        return;
    }
    document.logBoldString(u"Awaiting result from Apple..."_s);
    armTimer(info, pollingDelay);
}
