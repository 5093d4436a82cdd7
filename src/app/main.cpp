#include "app/desktophost.h"
#include "commit.h"
#include "platform/posix/endsignals.h"
#include "platform/qt/filechooserportal.h"
#include "scripting/dbus/scriptingbus.h"
#include "ui/endingnotices.h"
#include "ui/language.h"
#include "ui/launcherentry.h"
#include "ui/practice.h"
#include "ui/uploadprogress.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QLocale>

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace sealwright;

namespace {

/// Without a display the application serves scripts all the same, also when the bus starts it; with one, the
/// platform is whichever connects.
void choosePlatform()
{
#ifndef Q_OS_MACOS
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return;
    const bool hasDisplay =
        !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    qputenv("QT_QPA_PLATFORM", hasDisplay ? "xcb;wayland;offscreen" : "offscreen");
#endif
}

void describe()
{
    QApplication::setOrganizationName(u"Sealwright"_s);
    QApplication::setApplicationName(u"Sealwright"_s);
    QApplication::setApplicationDisplayName(u"Sealwright"_s); // which stands behind the title of each window
    QApplication::setApplicationVersion(QStringLiteral(SEALWRIGHT_VERSION));
    QApplication::setDesktopFileName(u"org.sealwright.Sealwright"_s);
    QApplication::setWindowIcon(QIcon(u":/icons/org.sealwright.Sealwright.png"_s));
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setQuitLockEnabled(false); // nor does the end of a desktop's own job end the application
}

/// False if the application runs already, and has been told to come to the front. A session without a bus
/// gets an application that scripts cannot reach.
bool takeTheBus(ScriptingBus &bus)
{
    constexpr int mostAttempts = 3; // the one that has the name may be about to quit
    auto registered = bus.registerOnSessionBus();
    for (int attempt = 1; !registered && attempt < mostAttempts; ++attempt) {
        if (ScriptingBus::activateRunningInstance())
            return false;
        registered = bus.registerOnSessionBus();
    }
    if (!registered)
        std::fprintf(stderr, "sealwright: %s\n", qUtf8Printable(registered.error()));
    return true;
}

int launchAndRun(AppDelegate &delegate, ScriptingBus &bus)
{
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, &delegate, &AppDelegate::applicationWillTerminate);
    delegate.applicationWillFinishLaunching();
    bus.takeArrivedCalls(); // a client that looks at the objects first may open files before launch has ended
    delegate.applicationDidFinishLaunching();
    const platform::EndSignals endSignals(
        [&delegate](int signal) { delegate.endBySignal(platform::nameOfEndSignal(signal)); });
    return QApplication::exec();
}

struct Ending {
    int status = EXIT_SUCCESS;
    bool isNewStartWanted = false;
};

Ending runDesktopApplication()
{
    uploadprogress::askFor();
    DesktopHost &host = *new DesktopHost(QApplication::applicationDirPath());
    AppDelegate::initialize(host.services().preferences);
    AppDelegate &delegate =
        *new AppDelegate(host.services(), host.windowFactory(), host.configurationWithPrograms());
    ScriptingBus bus(delegate);
    const LauncherEntry launcher(delegate, QDBusConnection::sessionBus());
    const EndingNotices notices(delegate);
    QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &delegate,
                     [&delegate](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive)
                             delegate.lookAtKeychain(); // others have locked or unlocked it meanwhile
                     });
    practice::ask(host.services(), delegate.keychainProgram(), delegate);
    if (QGuiApplication::platformName() != "offscreen"_L1)
        new platform::FileChooserPortal(QDBusConnection::sessionBus(), qApp); // the windows look for it there
    host.application().setPendingOpens([&bus] { bus.takeArrivedCalls(); });
    const int status = takeTheBus(bus) ? launchAndRun(delegate, bus) : EXIT_SUCCESS;
    host.removeTemporaryItems();
    return {status, host.application().isRelaunching()};
}

/// Ends the process without waiting for the tools that still run, and so without an end for anything that
/// their workflows use. Where a new start is wanted, the same process begins again as the program that lies
/// there now, under the number that whoever started it knows.
[[noreturn]] void quit(const Ending &ending, char **arguments)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest); // writes settings not yet on disk
    std::fflush(nullptr);
    if (const int signal = platform::EndSignals::arrived(); signal != 0)
        platform::EndSignals::endBy(signal);
    const QByteArray program = QFile::encodeName(QCoreApplication::applicationFilePath());
    if (ending.isNewStartWanted && execv(program.constData(), arguments) < 0)
        std::perror("sealwright: cannot start anew");
    std::_Exit(ending.status);
}

/// What can be asked without anything being opened; null if that is not what the arguments ask.
const char *answerTo(int argc, char **argv)
{
    const QByteArrayView question = argc == 2 ? QByteArrayView(argv[1]) : QByteArrayView();
    if (question == "--version") // for whoever reports a fault
        return "sealwright " SEALWRIGHT_VERSION " (" SEALWRIGHT_COMMIT ")";
    if (question == "--help" || question == "-h")
        return "Usage: sealwright [--version | --help]\n\n"
               "Opens the application, or brings it to the front if it runs already. No other argument is "
               "read:\n"
               "items are opened by \"sealwrightctl open\", by the desktop, or by dropping them on a window.";
    return nullptr;
}

} // namespace

int main(int argc, char **argv)
{
    if (const char *answer = answerTo(argc, argv))
        return std::puts(answer) < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
    choosePlatform();
    const QApplication application(argc, argv);
    describe();
    language::use(QLocale(), u":/translations"_s);
    quit(runDesktopApplication(), argv);
}
