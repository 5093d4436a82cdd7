#include "app/desktophost.h"

#include "app/preferencekeys.h"
#include "commit.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QString inConfigFolder(const QString &path)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u'/' + path;
}

QString inDataFolder(const QString &path)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' + path;
}

/// As the XDG Base Directory Specification has it, which passes over a path that is not absolute.
QString stateFolder()
{
    const QString set = qEnvironmentVariable("XDG_STATE_HOME");
    const QString base = set.startsWith(u'/') ? QDir::cleanPath(set) : QDir::homePath() + u"/.local/state"_s;
    return base + u"/Sealwright"_s;
}

/// Where the toolchain lies beside an installed application, and beside one that was only built.
QStringList bundledToolchains(const QString &applicationFolder)
{
    return {applicationFolder + u'/' + QStringLiteral(SEALWRIGHT_INSTALLED_TOOLCHAIN),
            applicationFolder + u'/' + QStringLiteral(SEALWRIGHT_BUILT_TOOLCHAIN)};
}

/// It lies beside the toolchain.
QString examineProgram(const QString &applicationFolder)
{
    QString program;
    for (const QString &toolchain : bundledToolchains(applicationFolder)) {
        program = QDir::cleanPath(toolchain + u"/../sealwright-examine"_s);
        if (QFileInfo::exists(program))
            break;
    }
    return program;
}

} // namespace

DesktopHost::DesktopHost(const QString &applicationFolder)
    : m_applicationFolder(applicationFolder)
    , m_stateFolder(stateFolder())
    , m_preferences(inConfigFolder(u"Sealwright/Sealwright.conf"_s))
    , m_toolRoot(ToolRoot::chosen(m_preferences.string(key::toolRoot), bundledToolchains(applicationFolder)))
    , m_launcher([root = m_toolRoot](const QString &path) { return root.locate(path); },
                 m_toolRoot.searchFolders())
    , m_desktop(
          platform::makeDesktopServices(m_toolRoot.applicationsFolder(), m_files, m_launcher, m_mainQueue,
                                        [this](const QString &path) { m_application.sayWhereItLies(path); }))
    , m_appleScript(m_launcher)
    , m_appearance(*m_desktop.appearance, m_preferences, *m_desktop.distributedNotifications)
    , m_windowFactory(m_windowOrder, m_logPrinter)
    , m_application(m_windowOrder, m_logPrinter)
{
    if (QGuiApplication::platformName() == "offscreen"_L1)
        m_application.paintNothing();
}

platform::Host DesktopHost::services()
{
    return {.mainQueue = m_mainQueue,
            .workers = m_workers,
            .timers = m_timers,
            .clock = m_clock,
            .launcher = m_launcher,
            .files = m_files,
            .urls = m_urls,
            .preferences = m_preferences,
            .workspace = *m_desktop.workspace,
            .appleScript = m_appleScript,
            .distributedNotifications = *m_desktop.distributedNotifications,
            .userNotifications = *m_desktop.userNotifications,
            .application = m_application,
            .pasteboard = m_pasteboard,
            .stateFolder = m_stateFolder};
}

AppDelegate::Configuration DesktopHost::configurationWithPrograms() const
{
    AppDelegate::Configuration complete = configuration();
    complete.examineProgram = examineProgram(m_applicationFolder);
    complete.fileTool = ownTool(u"/usr/bin/file"_s);
    complete.profilesFolder = inConfigFolder(u"Sealwright/Profiles"_s);
    complete.keychainProgram = ownTool(u"/usr/bin/sealwright-keychain"_s);
    return complete;
}

/// Where the tool root has the tool; empty if it has none.
QString DesktopHost::ownTool(const QString &path) const
{
    const QString own = m_toolRoot.locate(path);
    return own == path ? QString() : own;
}

AppDelegate::Configuration DesktopHost::configuration()
{
    return {.dropDMGFolder = inDataFolder(u"DropDMG/Configurations"_s),
            .supportAddress = QUrl(u"mailto:support@sealwright.org"_s),
            .website = QUrl(u"https://sealwright.org/"_s),
            .usersForum = QUrl(u"https://sealwright.org/forum"_s),
            .information = {{u"CFBundleShortVersionString"_s, QStringLiteral(SEALWRIGHT_VERSION)},
                            {u"CFBundleVersion"_s, QStringLiteral(SEALWRIGHT_COMMIT)},
                            {u"NSHumanReadableCopyright"_s, u"Copyright © 2026 The Sealwright authors"_s}},
            .credits = u":/Credits.rtf"_s,
            .buildDate = QStringLiteral(SEALWRIGHT_BUILD_DATE)};
}

} // namespace sealwright
