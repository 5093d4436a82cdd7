#include "notarization/submitworkflow.h"

#include "app/appdelegate.h"
#include "document/documentextensions.h"
#include "document/mainwincontroller.h"
#include "document/workingfoldernames.h"
#include "platform/bundle.h"
#include "platform/itempath.h"

#include <QUuid>

using namespace Qt::StringLiterals;

ItemKind itemKind(const QString &path)
{
    static const QHash<QString, ItemKind> kinds{{u"app"_s, ItemKind::app},
                                                {u"pkg"_s, ItemKind::pkg},
                                                {u"fmplugin"_s, ItemKind::fmplugin},
                                                {u"plugin"_s, ItemKind::plugin},
                                                {u"dmg"_s, ItemKind::dmg}};
    return kinds.value(itempath::lowerExtension(path), ItemKind::other);
}

bool isBundleKind(ItemKind kind)
{
    return kind == ItemKind::app || kind == ItemKind::fmplugin || kind == ItemKind::plugin;
}

const QStringList &submittableExtensions()
{
    static const QStringList extensions{u"app"_s, u"dmg"_s, u"pkg"_s, u"fmplugin"_s, u"plugin"_s};
    return extensions;
}

QString fallbackIdentifier(const QString &itemPath)
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toLower() + itempath::extension(itemPath);
}

// Commands and entries

void SubmitWorkflow::doSubmit()
{
    submitByPerson({});
}

void SubmitWorkflow::doDirectSubmit()
{
    _cancelDirectSubmitUI();
    submitByPerson(document.originalAppletURL());
}

void SubmitWorkflow::doCancelDirectSubmit()
{
    _cancelDirectSubmitUI();
    document.stepList.plan({});
}

void SubmitWorkflow::submitByPerson(const QUrl &url)
{
    setStartedByPerson();
    submitURL(url);
}

void SubmitWorkflow::scriptedSubmit(const QUrl &url)
{
    document.isScripted.set(true);
    submitURL(url);
}

void SubmitWorkflow::doSubmitAgain()
{
    if (!recoverOriginal(workingfolder::notarized))
        return reportFileNotFound(itempath::fromUrl(document.originalAppletURL()));
    submitByPerson(document.originalAppletURL());
}

// Checks

void SubmitWorkflow::submitURL(const QUrl &url)
{
    if (!url.isEmpty())
        setOriginal(url, submitAction);
    if (!beginSubmitting())
        return;
    document.info239FailureCount.set(0);
    if (!checkFields(url))
        return;
    if (url.isEmpty())
        chooseItem();
    else
        startWithOriginal();
}

bool SubmitWorkflow::checkFields(const QUrl &url)
{
    if (!document.steps().credentials.checkFields())
        return false;
    const QString identity = document.identitiesPopup.titleOfSelectedItem();
    if (!checkIdentity(identity))
        return false;
    const QString path = itempath::fromUrl(url);
    if (itemKind(path) == ItemKind::pkg && !document.appDelegate().installerIdentities().contains(identity))
        return refuse(
            u"Installer Identity Not Found"_s,
            u"Packages require a 'Developer ID Installer' certificate that matches the identity you have chosen (%1)."_s
                .arg(identity));
    return true;
}

bool SubmitWorkflow::checkKind()
{
    const QString path = itempath::fromUrl(document.originalAppletURL());
    if (itemKind(path) != ItemKind::other)
        return true;
    return refuse(u"Cannot Submit Item"_s,
                  u"'%1' is not an app, plugin, fmplugin, flat package or disk image."_s.arg(path));
}

void SubmitWorkflow::chooseItem()
{
    document.askForItem(
        {.message = u"Choose an app, plugin, fmplugin, flat package or disk image to copy and submit"_s,
         .allowedFileTypes = submittableExtensions(),
         .canChooseFiles = true,
         .canChooseDirectories = false,
         .shouldEnable = &MainWinController::shouldEnableURL},
        [this](const QUrl &chosen) {
            document.changeStatus(status::submitting);
            setOriginal(chosen, submitAction);
            startWithOriginal();
        },
        [this] { document.endBeforeStart(); });
}

void SubmitWorkflow::startWithOriginal()
{
    if (!checkKind())
        return;
    showItem(document.originalFileName());
    planSteps();
    submitAsync(document.steps().credentials.entered(), document.identitiesPopup.titleOfSelectedItem());
}

void SubmitWorkflow::planSteps()
{
    document.stepList.plan(submitSteps(itemKind(document.originalFileName()), stepOptions()));
}

void SubmitWorkflow::submitAsync(const Credentials &credentials, const QString &identity)
{
    const ItemKind kind = itemKind(document.originalFileName());
    document.canCancel.set(true);
    const bool dontSignEnclosures = document.dontSignEnclosuresCheckbox.isOn();
    document.submitFilePath.set({});
    const auto entitlements = document.steps().entitlements.assembleEntitlements();
    if (!entitlements)
        return;
    document.dispatchToWorker(
        [this,
         submission = Submission{.credentials = credentials,
                                 .identity = identity,
                                 .entitlements = *entitlements,
                                 .kind = kind,
                                 .dontSignEnclosures = dontSignEnclosures}] { runChain(submission); });
}

// The background chain

void SubmitWorkflow::runChain(const Submission &submission)
{
    QString identifier = fallbackIdentifier(itempath::fromUrl(document.originalAppletURL()));
    document.beginStep(Step::checkCredentials);
    if (!goesOn(document.steps().credentials.checkAltool(submission.credentials)))
        return;
    document.beginStep(Step::makeWorkingCopy);
    if (!goesOn(document.createWorkingFolderAndLog()))
        return;
    if (prepareItem(submission, identifier))
        upload(submission, identifier);
}

bool SubmitWorkflow::prepareItem(const Submission &submission, QString &identifier)
{
    if (submission.kind == ItemKind::pkg)
        return preparePackage(submission);
    if (submission.kind == ItemKind::dmg)
        return prepareDiskImage(submission, identifier);
    return prepareBundle(submission, identifier);
}

bool SubmitWorkflow::preparePackage(const Submission &submission)
{
    document.beginStep(Step::signPackage);
    if (!goesOn(document.steps().packages.checkPkgAndSignWithID(submission.identity)))
        return false;
    document.submitFilePath.set(itempath::fromUrl(document.appletURL()));
    return true;
}

bool SubmitWorkflow::prepareBundle(const Submission &submission, QString &identifier)
{
    auto &steps = document.steps();
    document.beginStep(Step::saveEntitlements);
    if (!goesOn(steps.entitlements.saveEntitlementsDictionary(submission.entitlements)))
        return false;
    document.beginStep(Step::clearAttributes);
    if (!goesOn(steps.signing.clearXattrs()))
        return false;
    if (submission.kind == ItemKind::app) {
        document.beginStep(Step::lockScript);
        if (!goesOn(steps.signing.lockMainScpt()))
            return false;
    }
    if (!submission.dontSignEnclosures) {
        document.beginStep(Step::signContents);
        if (!goesOn(steps.signing.codesignMembersWithID(submission.identity, true)))
            return false;
    }
    document.beginStep(Step::signMainFile);
    if (!goesOn(steps.signing.signAndCheckAppWithID(submission.identity, true)))
        return false;
    // Before the archive is made: that may put a disk image in the bundle's place.
    const QString own =
        platform::bundleIdentifier(document.host().files, itempath::fromUrl(document.appletURL()));
    if (!own.isEmpty())
        identifier = own;
    return goesOn(steps.archive.makeArchiveForUploading());
}

bool SubmitWorkflow::prepareDiskImage(const Submission &submission, QString &identifier)
{
    auto &steps = document.steps();
    document.beginStep(Step::signMainFile);
    if (!goesOn(steps.signing.signAndCheckAppWithID(submission.identity, false)))
        return false;
    document.beginStep(Step::findIdentifier);
    const QString own = steps.archive.primaryBundleID();
    if (!own.isEmpty())
        identifier = own;
    document.submitFilePath.set(itempath::fromUrl(document.appletURL()));
    return true; // a cancel in this gap does not stop the upload
}

void SubmitWorkflow::upload(const Submission &submission, const QString &identifier)
{
    document.dispatchToMain([this] { document.canCancel.set(false); }); // uploading is not to be interrupted
    document.beginStep(Step::upload);
    const bool isPolling = document.steps().upload.uploadForNotarizing(submission.credentials, identifier);
    if (goesOn(isPolling))
        document.dispatchToMain([this] { document.canCancel.set(true); });
}
