#include "notarization/servicequery.h"

#include "document/documentextensions.h"
#include "document/mainwincontroller.h"

using namespace Qt::StringLiterals;

const QString fetchingHistory = u"\nFetching notarizing history..."_s;

QString historyFailureLine(const QString &message, const QString &errorString)
{
    return u"%1\nError message: %2\nCheck that both the app-specific pasword and Apple ID are correct."_s.arg(
        message, orNull(errorString));
}

std::optional<Credentials> ServiceQuery::beginQuery(const QString &blockedText)
{
    if (!document.finishEditing(blockedText))
        return std::nullopt;
    document.changeStatus(status::fetching);
    document.isBusy.set(true);
    document.progressIndicator.startAnimation();
    if (!document.steps().credentials.checkFields())
        return std::nullopt;
    document.clearLogUnlessKept();
    return document.steps().credentials.entered();
}

SLWTaskResponsePtr ServiceQuery::ask(const QStringList &arguments)
{
    return document.runAltool(document.taskRunner(), arguments);
}

void ServiceQuery::reportHistoryFailure(const QString &message, const QString &errorString)
{
    document.reportFailure(u"Cannot Fetch History"_s, historyFailureLine(message, errorString));
}

void ServiceQuery::finishQuery(const std::function<void()> &answer)
{
    // In one turn of the main thread: a command that follows at once finds no half of it.
    document.dispatchToMain([this, answer] {
        if (answer)
            answer();
        document.changeStatus(status::ready);
        makeIdle();
    });
}

void ServiceQuery::makeIdle()
{
    document.isScripted.set(false);
    document.suppressDialogs.set(false);
    document.isBusy.set(false);
    document.progressIndicator.stopAnimation();
}
