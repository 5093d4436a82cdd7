#include "support/singlesteps.h"

#include "document/entitlementswitches.h"
#include "notarization/archivesteps.h"
#include "notarization/credentialcheck.h"
#include "notarization/submitworkflow.h"
#include "notarization/uploadstep.h"
#include "run/workingcopy.h"
#include "signing/entitlements.h"
#include "signing/packagesteps.h"
#include "signing/signingsteps.h"

namespace {

Driver::State drive(MainWinController &document, const RunInputs &inputs, const Workflow &workflow)
{
    return std::make_shared<Driver>(document.makeRun(inputs, {}), workflow)->proceed();
}

bool works(MainWinController &document, const RunInputs &inputs, Workflow workflow)
{
    for (Step &step : workflow)
        step.cancelTest =
            CancelTest::isLeftOut; // whatever has been pressed, it is the step that is asked for
    return drive(document, inputs, workflow) == Driver::State::ended;
}

bool works(MainWinController &document, const Step &step)
{
    return works(document, document.runInputs(), {step});
}

RunInputs inputsWith(MainWinController &document, const QString &identity)
{
    RunInputs inputs = document.runInputs();
    inputs.identity = identity;
    return inputs;
}

} // namespace

bool SingleSteps::Signing::clearXattrs() const
{
    return works(document, step::clearAttributes);
}

bool SingleSteps::Signing::lockMainScpt() const
{
    return works(document, step::lockScript);
}

bool SingleSteps::Signing::codesignMembersWithID(const QString &identity, bool skipMain) const
{
    return works(document, inputsWith(document, identity),
                 {skipMain ? step::signContents : step::signAllContents});
}

bool SingleSteps::Signing::signAndCheckAppWithID(const QString &identity, bool needsEntitlements) const
{
    return works(document, inputsWith(document, identity),
                 needsEntitlements ? mainFileSteps({}) : Workflow{step::signDiskImage});
}

bool SingleSteps::Packages::checkPkgAndSignWithID(const QString &identity) const
{
    return works(document, inputsWith(document, identity), {step::signPackage});
}

std::optional<QVariantMap> SingleSteps::Entitlements::assembleEntitlements() const
{
    const auto all = withExtraEntitlements(entitlementsFromSettings(document),
                                           document.extraEntitlementsURL(), document.host().files);
    return all ? std::optional(*all) : std::nullopt;
}

bool SingleSteps::Entitlements::saveEntitlementsDictionary(const QVariantMap &entitlements) const
{
    RunInputs inputs = document.runInputs();
    inputs.entitlements = entitlements;
    inputs.extraEntitlements = document.extraEntitlementsURL().toLocalFile();
    return works(document, inputs, {step::saveEntitlements});
}

bool SingleSteps::Archive::makeArchiveForUploading() const
{
    return works(document, archiveRow(ArchiveKind::zip));
}

QString SingleSteps::Archive::primaryBundleID() const
{
    const RunPtr run = document.makeRun(document.runInputs(), {});
    (void)findPrimaryBundleID(*run);
    return run->identifier;
}

bool SingleSteps::Credential::checkAltool(const Credentials &credentials) const
{
    RunInputs inputs = document.runInputs();
    inputs.credentials = credentials;
    return works(document, inputs, {step::checkCredentials});
}

bool SingleSteps::Upload::uploadForNotarizing(const Credentials &credentials, const QString &bundleID) const
{
    RunInputs inputs = document.runInputs();
    inputs.credentials = credentials;
    const RunPtr run = document.makeRun(inputs, {});
    run->identifier = bundleID;
    const Workflow workflow = Workflow{step::upload} + verdictWorkflow();
    return std::make_shared<Driver>(run, workflow)->proceed() == Driver::State::waits;
}

void SingleSteps::Stapling::runStaplerAndFinish() const
{
    const RunPtr run =
        document.makeRun(document.runInputs(), [&document = document](Run &) { document.endStapling(); });
    std::make_shared<Driver>(run, Workflow{verdictWorkflow().last()})->proceed();
}

bool SingleSteps::Folder::create() const
{
    return works(document, step::makeWorkingCopy);
}

void SingleSteps::Folder::renameTo(const QString &suffix) const
{
    document.makeRun(document.runInputs(), {})->folder.renameTo(suffix).ignore();
}

void SingleSteps::Folder::moveOriginalIn() const
{
    document.makeRun(document.runInputs(), {})->folder.moveOriginalIn();
}

SLWTaskResponsePtr SingleSteps::Tools::run(const QString &path, const QStringList &args) const
{
    return document.makeRun(document.runInputs(), {})->tools.run(path, args);
}

SLWTaskResponsePtr SingleSteps::Tools::askService(const QStringList &args) const
{
    return document.makeRun(document.runInputs(), {})->tools.askService(args);
}

SLWTaskResponsePtr SingleSteps::Tools::upload(const QStringList &args) const
{
    return document.makeRun(document.runInputs(), {})->tools.uploadAndLog(args);
}

SLWTaskResponsePtr SingleSteps::Tools::runAndLog(const QString &path, const QStringList &args) const
{
    return document.makeRun(document.runInputs(), {})->tools.runAndLog(path, args);
}

void SingleSteps::Scanner::parseDirectory(const QString &directory, OrderedPathSet &signableSet,
                                          QSet<QString> &setToSubtract,
                                          const QStringList &arrayToPassOver) const
{
    const RunPtr run = document.makeRun(document.runInputs(), {});
    BundleScanner(*run).parseDirectory(directory, signableSet, setToSubtract, arrayToPassOver);
}

void SingleSteps::Scanner::parseFramework(const QString &framework, OrderedPathSet &signableSet,
                                          QSet<QString> &setToSubtract,
                                          const QStringList &arrayToPassOver) const
{
    const RunPtr run = document.makeRun(document.runInputs(), {});
    BundleScanner(*run).parseFramework(framework, signableSet, setToSubtract, arrayToPassOver);
}
