#pragma once

#include "app/appdelegate.h"
#include "platform/desktopservices.h"
#include "platform/posix/posixfileservice.h"
#include "platform/posix/posixprocesslauncher.h"
#include "platform/qt/desktoppasteboard.h"
#include "platform/qt/osascript.h"
#include "platform/qt/qtmainqueue.h"
#include "platform/qt/qttimerservice.h"
#include "platform/qt/qturlreader.h"
#include "platform/qt/qtworkerqueue.h"
#include "platform/qt/settingspreferences.h"
#include "platform/qt/systemclock.h"
#include "tools/toolroot.h"
#include "ui/appearance.h"
#include "ui/logprinter.h"
#include "ui/widgetapplication.h"
#include "ui/widgetwindow.h"
#include "ui/windoworder.h"

namespace sealwright {

/// The services of a desktop session: real files, processes, windows and the session bus. Made on the main
/// thread, once there is an application object. Its end waits for the workflows that still run.
class DesktopHost {
public:
    /// `applicationFolder` is the folder of the application's executable, beside which the bundled toolchain
    /// lies.
    explicit DesktopHost(const QString &applicationFolder);

    platform::Host services();
    WindowFactory &windowFactory() { return m_windowFactory; }
    WidgetApplication &application() { return m_application; }
    /// What is the same wherever the application lies.
    static AppDelegate::Configuration configuration();
    /// The same with the programs that come with the application.
    AppDelegate::Configuration configurationWithPrograms() const;
    /// Leaves nothing behind among the temporary files. For the end of the process, which this object
    /// outlives.
    void removeTemporaryItems() { m_files.removeReplacementDirectories(); }

private:
    QString ownTool(const QString &path) const;

    const QString m_applicationFolder;
    const QString m_stateFolder;
    platform::SettingsPreferences m_preferences;
    const ToolRoot m_toolRoot;
    platform::PosixProcessLauncher m_launcher;
    platform::PosixFileService m_files;
    platform::QtMainQueue m_mainQueue;
    platform::QtTimerService m_timers;
    platform::SystemClock m_clock;
    platform::QtUrlReader m_urls;
    platform::DesktopServices m_desktop;
    platform::OsaScript m_appleScript;
    platform::DesktopPasteboard m_pasteboard;
    Appearance m_appearance;
    WindowOrder m_windowOrder;
    LogPrinter m_logPrinter;
    WidgetWindowFactory m_windowFactory;
    WidgetApplication m_application;
    platform::QtWorkerQueue m_workers; // the last: its jobs use all the others
};

} // namespace sealwright
