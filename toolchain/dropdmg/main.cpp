#include "dropdmg/configurations.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFileSystemWatcher>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: DropDMG [--help]

A stand-in for DropDMG without a window. Runs until it is terminated, and says on the session bus when a
configuration comes or goes: a file NAME.plist in DropDMG/Configurations of the user's data folder. What is in
such a file is not read. Disk images are made by osascript, whether this program runs or not.
)";

void postChange()
{
    auto message = QDBusMessage::createSignal(u"/org/sealwright/DistributedNotifications"_s,
                                              u"org.sealwright.DistributedNotifications"_s, u"Posted"_s);
    message << u"com.c-command.DropDMG.ConfigurationsChanged"_s;
    QDBusConnection::sessionBus().send(message);
}

/// Posts a notification whenever the names differ from those before.
int watchConfigurations(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QFileSystemWatcher watcher;
    if (!QDir().mkpath(configurationsFolder()) || !watcher.addPath(configurationsFolder())) {
        printError("DropDMG: " + configurationsFolder().toStdString() + " cannot be watched\n");
        return 1;
    }
    QStringList names = configurationNames();
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &application, [&names] {
        const QStringList before = std::exchange(names, configurationNames());
        if (names != before)
            postChange();
    });
    print("DropDMG: a stand-in without a window, part of Sealwright's toolchain; watching "
          + configurationsFolder().toStdString() + "\n");
    std::fflush(stdout); // whoever waits for the line may read it through a pipe
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(wordsOf(argc, argv), {{{"-h", "--help"}}});
    if (!arguments.error.empty() || !arguments.operands.empty())
        return refuseArguments("DropDMG", arguments.error.empty() ? "it takes no argument" : arguments.error,
                               usage);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    return watchConfigurations(argc, argv);
}
