#include "notarization/stapleonlyworkflow.h"

#include "app/preferencekeys.h"
#include "document/documentextensions.h"
#include "document/mainwincontroller.h"
#include "document/workingfoldernames.h"
#include "platform/applicationhost.h"
#include "platform/itempath.h"
#include "platform/preferences.h"
#include "signing/signingarguments.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

const QString interfaceIsBlocked = u"Interface is blocked."_s;
const QString verifyingError = u"Error Verifying Signing"_s;

} // namespace

QString assessmentType(const QString &item)
{
    static const QHash<QString, QString> types{{u"dmg"_s, u"open"_s},
                                               {u"fmplugin"_s, u"open"_s},
                                               {u"plugin"_s, u"open"_s},
                                               {u"pkg"_s, u"install"_s}};
    return types.value(itempath::lowerExtension(item), u"execute"_s);
}

bool isAccepted(const QString &assessment)
{
    static const QRegularExpression verdict(u"(*ANY)(?m): accepted$"_s);
    return verdict.match(assessment).hasMatch();
}

QString assessmentFailureLine(const SLWTaskResponse &response)
{
    return u"Error %1 in spctl codesign verification: %2"_s.arg(QString::number(response.reference()),
                                                                orNull(response.errorString()));
}

// Commands and entries

void StapleOnlyWorkflow::doStapleOnly()
{
    stapleByPerson({});
}

void StapleOnlyWorkflow::doStapleAgain()
{
    const QString item = itempath::fromUrl(document.appletURL());
    if (!document.host().files.isReachable(item))
        return reportFileNotFound(item);
    stapleByPerson(document.appletURL());
}

void StapleOnlyWorkflow::stapleByPerson(const QUrl &url)
{
    setStartedByPerson();
    stapleOnly(url);
}

void StapleOnlyWorkflow::scriptedStapleOnly(const QUrl &url)
{
    document.isScripted.set(true);
    stapleOnly(url);
}

void StapleOnlyWorkflow::stapleOnly(const QUrl &url)
{
    if (!document.finishEditing(interfaceIsBlocked))
        return;
    document.isBusy.set(true);
    document.loggingToFile.set(document.host().preferences.boolean(key::detailedLogToFile));
    if (url.isEmpty())
        return chooseItem();
    setItem(url);
    showAppletURL();
    startStapling();
}

void StapleOnlyWorkflow::setItem(const QUrl &url)
{
    const QString path = itempath::fromUrl(url);
    document.appletURL.set(itempath::toUrl(path));
    document.originalFileName.set(itempath::lastComponent(path));
    document.lastAction.set(stapleAction);
}

void StapleOnlyWorkflow::chooseItem()
{
    document.askForItem(
        {.message = u"Choose an app, disk image, .pkg, .plugin or .fmplugin to try to staple"_s,
         .allowedFileTypes = submittableExtensions(),
         .canChooseFiles = true,
         .canChooseDirectories = false,
         .shouldEnable = &MainWinController::shouldEnableURL},
        [this](const QUrl &chosen) {
            setItem(chosen);
            checkFolder();
        },
        [this] {
            document.changeStatus(status::ready);
            document.isBusy.set(false);
        });
}

void StapleOnlyWorkflow::checkFolder()
{
    const bool isApp = itempath::lowerExtension(document.originalFileName()) == "app"_L1;
    if (isApp && !document.steps().stapling.isInSubmittedFolder())
        askWhetherToContinue();
    else
        startStapling();
}

void StapleOnlyWorkflow::askWhetherToContinue()
{
    document.host().application.beep();
    const QString folder = workingfolder::name(itempath::withoutExtension(document.originalFileName()),
                                               workingfolder::submitted);
    document.beginSheet(
        {u"Incorrect Application?"_s,
         u"Are you sure that is the version of the app copied and submitted for notarizing, and not the original un-signed version? It should normally be found inside a folder called '%1'.\n\nPress Continue if you think you have the correct version."_s
             .arg(folder),
         {u"Cancel"_s, u"Continue"_s}},
        [this](int answer) {
            if (answer == platform::alertSecondButton)
                return startStapling();
            document.changeStatus(status::ready);
            document.isBusy.set(false);
        });
}

void StapleOnlyWorkflow::startStapling()
{
    document.changeStatus(status::stapling);
    continueStapleOnly();
}

void StapleOnlyWorkflow::continueStapleOnly()
{
    showAppletURL();
    document.stepList.plan(stapleOnlySteps());
    document.dispatchToWorker([this] { runJob(); });
}

void StapleOnlyWorkflow::showAppletURL()
{
    showItem(itempath::lastComponent(itempath::fromUrl(document.appletURL())));
}

// The job

void StapleOnlyWorkflow::runJob()
{
    const QString item = itempath::fromUrl(document.appletURL());
    document.openLog(itempath::appending(itempath::folder(item), workingfolder::logName.toString()),
                     workingfolder::stapleOnlyBanner(item));
    document.beginStep(Step::checkSignature);
    if (!isAcceptable(item))
        return;
    document.beginStep(Step::staple);
    document.steps().stapling.runStaplerAndFinish();
}

bool StapleOnlyWorkflow::isAcceptable(const QString &item)
{
    document.logBoldString(u"Checking code signature..."_s);
    const auto response =
        document.runAndLog(signingarguments::spctlTool, signingarguments::spctl(assessmentType(item), item));
    const QString text = response->text();
    if (response->status() != 0)
        document.reportFailure(verifyingError, assessmentFailureLine(*response));
    else if (text.isNull())
        document.reportFailure(verifyingError, u"Error in spctl: returned 0 but no output received."_s);
    else if (!isAccepted(text))
        document.reportFailure(u"Error Verifying Code Signing"_s,
                               u"Code signing could not be verified: %1"_s.arg(text));
    else
        return true;
    return false;
}
