#include "document/stapleonlycommands.h"

#include "document/mainwincontroller.h"
#include "notarization/stapleonlyworkflow.h"
#include "platform/applicationhost.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/preferences.h"
#include "run/preferencekeys.h"
#include "run/workingfoldernames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString interfaceIsBlocked = u"Interface is blocked."_s;

} // namespace

// Commands and entries

Item StapleOnlyCommands::item() const
{
    return Item::fromUrl(document.appletURL());
}

QString StapleOnlyCommands::submittedFolder() const
{
    return workingfolder::name(item().base(), workingfolder::submitted);
}

void StapleOnlyCommands::doStapleOnly()
{
    stapleByPerson({});
}

void StapleOnlyCommands::doStapleAgain()
{
    const QString path = item().path();
    if (!document.host().files.isReachable(path))
        return reportFileNotFound(path);
    stapleByPerson(document.appletURL());
}

void StapleOnlyCommands::stapleByPerson(const QUrl &url)
{
    setStartedByPerson();
    stapleOnly(url);
}

void StapleOnlyCommands::scriptedStapleOnly(const QUrl &url)
{
    document.isScripted.set(true);
    stapleOnly(url);
}

void StapleOnlyCommands::stapleOnly(const QUrl &url)
{
    if (!document.finishEditing(interfaceIsBlocked))
        return;
    document.isBusy.set(true);
    document.loggingToFile.set(document.host().preferences.boolean(key::detailedLogToFile));
    if (url.isEmpty())
        return chooseItem();
    setItem(Item::fromUrl(url));
    showAppletURL();
    startStapling();
}

void StapleOnlyCommands::setItem(const Item &item)
{
    document.appletURL.set(item.url());
    document.originalFileName.set(item.fileName());
    document.lastAction.set(stapleAction);
}

void StapleOnlyCommands::chooseItem()
{
    document.askForItem(
        {.message = u"Choose an app, disk image, .pkg, .plugin or .fmplugin to try to staple"_s,
         .allowedFileTypes = submittableExtensions(),
         .canChooseFiles = true,
         .canChooseDirectories = false,
         .shouldEnable = &MainWinController::shouldEnableURL},
        [this](const QUrl &chosen) {
            setItem(Item::fromUrl(chosen));
            checkFolder();
        },
        [this] {
            document.changeStatus(status::ready);
            document.isBusy.set(false);
        });
}

void StapleOnlyCommands::checkFolder()
{
    if (item().isApp() && itempath::lastComponent(item().folder()) != submittedFolder())
        askWhetherToContinue();
    else
        startStapling();
}

void StapleOnlyCommands::askWhetherToContinue()
{
    document.host().application.beep();
    document.beginSheet(
        {u"Incorrect Application?"_s,
         u"Are you sure that is the version of the app copied and submitted for notarizing, and not the original un-signed version? It should normally be found inside a folder called '%1'.\n\nPress Continue if you think you have the correct version."_s
             .arg(submittedFolder()),
         {u"Cancel"_s, u"Continue"_s}},
        [this](int answer) {
            if (answer == platform::alertSecondButton)
                return startStapling();
            document.changeStatus(status::ready);
            document.isBusy.set(false);
        });
}

void StapleOnlyCommands::startStapling()
{
    document.changeStatus(status::stapling);
    continueStapleOnly();
}

void StapleOnlyCommands::continueStapleOnly()
{
    const Workflow workflow = stapleOnlyWorkflow();
    showAppletURL();
    document.stepList.plan(planOf(workflow));
    document.startRun(document.runInputs(), workflow, [this](Run &) { document.endStapling(); });
}

void StapleOnlyCommands::showAppletURL()
{
    showItem(item().fileName());
}

} // namespace sealwright
