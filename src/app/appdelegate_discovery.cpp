// What launch finds out about the machine: the notary tool, the identities and DropDMG.

#include "app/appdelegate.h"
#include "app/discovery.h"
#include "app/logging.h"
#include "platform/applescript.h"
#include "platform/fileservice.h"
#include "platform/workspace.h"
#include "tools/commandsimple.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString xcodeIdentifier = u"com.apple.dt.Xcode"_s;
const QString transporterIdentifier = u"com.apple.TransporterApp"_s;
const QString dropDMGIdentifier = u"com.c-command.DropDMG"_s;
const QString probeOwner = u"0"_s;
/// The script's own limit, and what the tool needs to say that it is over.
constexpr auto scriptLimit = std::chrono::milliseconds(3500);

} // namespace

QString AppDelegate::runCommandSimple(const QString &commandLine) const
{
    return sealwright::runCommandSimple(m_host.launcher, commandLine);
}

void AppDelegate::sampleCodesignIdentities()
{
    const auto found = discovery::identitiesInListing(runCommandSimple(u"security find-identity -v"_s));
    identities.set(found.applications);
    installerIdentities.set(found.installers);
}

bool AppDelegate::checkForXcode()
{
    auto &workspace = m_host.workspace;
    if (!workspace.isRunning(xcodeIdentifier) && !workspace.launchInBackground(xcodeIdentifier))
        return false;
    altoolPath.set(u"/usr/bin/xcrun"_s);
    return true;
}

bool AppDelegate::checkForTransporter()
{
    const QString transporter = m_host.workspace.pathForApplication(transporterIdentifier);
    if (transporter.isNull())
        return false;
    const QString tool = transporter + discovery::altoolInTransporter.toString();
    if (!m_host.files.exists(tool))
        return false;
    altoolPath.set(tool);
    return true;
}

void AppDelegate::findVersionNumberOfAltool()
{
    const auto response = taskMaster()->runAltoolAt(altoolPath(), {u"-h"_s}, probeOwner);
    altoolVersionNumber.set(discovery::altoolMajorVersion(response->text()));
    qCDebug(appLogging).noquote() << "the notary tool is" << altoolPath() << "of version"
                                  << altoolVersionNumber();
}

void AppDelegate::checkForDropDMG()
{
    if (m_host.workspace.isRunning(dropDMGIdentifier))
        loadDropDMGConfigNamesViaScript();
    else if (!m_host.workspace.pathForApplication(dropDMGIdentifier).isNull())
        loadDropDMGConfigNames(); // it is not to be started for this
    else
        setNoConfigNames(u"Not applicable"_s);
}

void AppDelegate::loadDropDMGConfigNames()
{
    setConfigNames(discovery::configurationNames(
        m_host.files.contentsOfDirectory(m_configuration.dropDMGFolder, platform::FolderLink::follow)));
}

void AppDelegate::loadDropDMGConfigNamesViaScript()
{
    const auto result = m_host.appleScript.execute(
        u"with timeout of 3 seconds\ntell application id \"com.c-command.DropDMG\" to name of every configuration\nend timeout"_s,
        scriptLimit);
    QStringList names = result.list.value_or(QStringList());
    names.removeAll(QString());
    setConfigNames(names);
}

void AppDelegate::setConfigNames(const QStringList &names)
{
    if (names.isEmpty())
        return setNoConfigNames(u"None found"_s);
    dropDMGConfigNames.set(discovery::sortedLikeFinder(names));
    hasDropDMG.set(true);
}

void AppDelegate::setNoConfigNames(const QString &placeholder)
{
    dropDMGConfigNames.set({placeholder});
    hasDropDMG.set(false);
}

void AppDelegate::dropDMGConfigChange()
{
    loadDropDMGConfigNamesViaScript();
}

} // namespace sealwright
