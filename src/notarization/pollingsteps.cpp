#include "notarization/pollingsteps.h"

#include "notarization/altoolarguments.h"
#include "notarization/logging.h"
#include "notarization/pollinginfo.h"
#include "notarization/servicelog.h"
#include "platform/notifications.h"
#include "platform/preferences.h"
#include "run/preferencekeys.h"
#include "run/run.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qint64 unknownRequestStatus = 239;
constexpr quint64 ordinaryFailureBudget = 3;
constexpr double delayAfterOrdinaryFailure = 15.0;
constexpr quint64 early239Failures = 3;
constexpr double earlyDelayAfter239 = 30.0;
constexpr double lateDelayAfter239 = 60.0;

/// What is no UTF-8 is no text.
QString textOfLog(const QByteArray &log)
{
    return orNull(decodedUtf8(log).value_or(QString()));
}

/// The verdict is still to come.
Failure givenUp(const QString &line)
{
    Failure failure{u"Failed to Retrieve Info"_s, line, FolderFate::keepsItsName};
    failure.wait = WaitFate::staysOpen;
    return failure;
}

void countFailure(Run &run, quint64 WaitState::*failures)
{
    ++(run.polling.*failures);
    run.progress.countsFailures(run.polling.failures, run.polling.failures239);
}

StepResult retryAfter239(Run &run, const QString &line)
{
    // As unsigned values: a negative limit never ends the wait.
    const auto limit = static_cast<quint64>(run.host.preferences.integer(key::prefRetryLimitFor239Failure));
    const quint64 count = run.polling.failures239;
    if (count > limit)
        return givenUp(line);
    run.log.logBoldString(
        u"Apple's servers are responding incorrectly, claiming they don't recognize the UUID they have provided. Typically they correct themselves in time, but it can take a while — potentially several hours. Sealwright will keep polling for about %1 more minutes."_s
            .arg(limit - count));
    countFailure(run, &WaitState::failures239);
    const double delay = delayAfter239(run.polling.failures239);
    run.log.logToFile(line + u" Will try again in %1 seconds."_s.arg(delay, 0, 'f', 6));
    return Again{delay};
}

StepResult retryAfterOrdinaryFailure(Run &run, const QString &line)
{
    if (run.polling.failures >= ordinaryFailureBudget)
        return givenUp(line);
    countFailure(run, &WaitState::failures);
    run.log.logToFile(line + u" Will try again shortly."_s);
    return Again{delayAfterOrdinaryFailure};
}

StepResult retryAfterFailure(Run &run, const SLWTaskResponse &response)
{
    const QString line = queryFailureLine(response);
    return response.status() == unknownRequestStatus ? retryAfter239(run, line)
                                                     : retryAfterOrdinaryFailure(run, line);
}

void logIssues(Run &run, const QString &report)
{
    const auto log = contentsOfLogFile(run.host.urls, report);
    if (!log)
        return;
    run.log.logToFile(u"LogFileURL full contents: "_s + textOfLog(*log));
    run.progress.serviceSaid(issuesAsJson(*log));
    const auto summary = issuesSummary(*log);
    if (!summary)
        return;
    run.log.logBoldString(
        u"Apple's servers reported one or more issues with this submission, which may or may not affect how it is treated by Gatekeeper. It will still be notarized, but you should check the result carefully before distributing it. Here is a summary of the issues:"_s);
    run.log.logError(*summary);
}

void notify(const platform::Host &host)
{
    host.userNotifications.deliver({.title = u"Notarization Successful"_s,
                                    .informativeText = u"Now stapling the submission"_s,
                                    .userInfo = {{platform::showWhenActiveKey.toString(),
                                                  host.preferences.boolean(key::userInfoShowWhenActive)}}});
}

StepResult acceptVerdict(Run &run, const QString &report)
{
    run.progress.verdictHasCome();
    logIssues(run, report);
    run.log.logBoldString(u"The submission has been notarized and will now be stapled..."_s);
    run.progress.changedStatus(status::stapling);
    notify(run.host);
    return Done{};
}

/// What the service refused is not kept.
StepResult refuseVerdict(Run &run, const QString &report)
{
    QString explanation = report;
    if (const auto log = contentsOfLogFile(run.host.urls, report)) {
        explanation += u'\n' + textOfLog(*log);
        run.progress.serviceSaid(issuesAsJson(*log));
    }
    run.folder.removeItem();
    run.folder.removeUpload();
    return Failure{u"Notarization Failed"_s, explanation};
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

double beginWaiting(Run &run)
{
    run.polling.delay =
        limitedPollingDelay(static_cast<float>(run.host.preferences.number(key::pollingDelay)));
    run.log.logBoldString(
        u"Checking for the result of Apple's process. This usually takes several minutes, but could take even longer..."_s);
    run.progress.awaitsVerdict(run.requestUUID);
    return run.polling.delay;
}

StepResult askForVerdict(Run &run)
{
    const auto response =
        run.tools.askServiceAndLog(altoolarguments::info(run.requestUUID, run.inputs().credentials));
    if (response->status() != 0)
        return retryAfterFailure(run, *response);
    const QString report = response->text();
    if (report.isNull())
        return Again{run.polling.delay}; // no news, and no cost
    const QString word = verdict(report);
    qCDebug(notarizationLogging).noquote() << "the service says of" << run.requestUUID << word;
    if (word == "success"_L1)
        return acceptVerdict(run, report);
    if (word == "in progress"_L1)
        return Again{run.polling.delay};
    return refuseVerdict(run, report);
}

Failure cancelledWait()
{
    return {
        u"Process Cancelled"_s,
        u"Process cancelled. The app has been uploaded, but notarizing has not been confirmed. Once you get a confirmation email on your Apple ID email account, you can staple the app using the Staple Only button."_s,
        FolderFate::keepsItsName};
}

} // namespace sealwright
