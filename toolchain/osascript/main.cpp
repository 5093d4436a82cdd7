#include "dropdmg/configurations.h"
#include "osascript/script.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: osascript [-s FLAGS] -e SOURCE
       osascript --help

Carries out a script for DropDMG. Two scripts are understood, as Sealwright writes them, and no other: the one
that asks for the name of every configuration, and the one that has a disk image made of a file with a
configuration. This is no AppleScript.

  -e SOURCE    the script
  -s FLAGS     s, which is how results are printed: as AppleScript would write them
  -h, --help   print this text

The stand-in for DropDMG must lie in Applications of the tool root that this program lies in; it is copied there
from Optional. It need not run, and is not started. An image is made by the hdiutil beside this program, in the
format UDZO, and lies beside the file. The configuration must be there, but what is in it is not read.
Exit status: 0 done, 1 failed, 64 wrong arguments.
)";

int fail(const QString &message)
{
    printError("execution error: " + message.toStdString() + "\n");
    return 1;
}

/// The tool root, three levels above this program.
QString toolRoot()
{
    return QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path() + u"/../.."_s;
}

int listConfigurations()
{
    QStringList names;
    for (const QString &name : configurationNames())
        names.append(quoted(name));
    print('{' + names.join(u", "_s).toStdString() + "}\n");
    return 0;
}

/// Beside the file and called as it is; a number is added if there is one of that name.
QString imagePathFor(const QFileInfo &file)
{
    const QString base = file.path() + u'/' + file.completeBaseName();
    QString path = base + u".dmg"_s;
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = base + u'-' + QString::number(number) + u".dmg"_s;
    return path;
}

int createImage(const Script &script)
{
    const QFileInfo file(QDir::cleanPath(script.file));
    if (!configurationNames().contains(script.configuration))
        return fail(
            u"DropDMG got an error: Can’t get configuration %1. (-1728)"_s.arg(quoted(script.configuration)));
    if (!file.exists())
        return fail(u"File %1 wasn’t found. (-43)"_s.arg(quoted(script.file)));
    const QString image = imagePathFor(file);
    QProcess hdiutil;
    hdiutil.start(toolRoot() + u"/usr/bin/hdiutil"_s,
                  {u"create"_s, image, u"-format"_s, u"UDZO"_s, u"-volname"_s, file.completeBaseName(),
                   u"-srcfolder"_s, file.filePath()});
    constexpr int withoutLimit = -1;
    const bool isMade = hdiutil.waitForFinished(withoutLimit) && hdiutil.exitStatus() == QProcess::NormalExit
        && hdiutil.exitCode() == 0;
    if (!isMade)
        return fail(u"DropDMG got an error: "_s
                    + QString::fromUtf8(hdiutil.readAllStandardError()).trimmed());
    print("POSIX file " + quoted(image).toStdString() + "\n");
    return 0;
}

int run(const QString &source)
{
    const auto script = readScript(source);
    if (!script) {
        printError("syntax error: this stand-in does not understand the script (-2741)\n");
        return 1;
    }
    if (!QFileInfo::exists(toolRoot() + u"/Applications/DropDMG.app/Contents/Info.plist"_s))
        return fail(u"Can’t get application id \"com.c-command.DropDMG\". (-1728)"_s);
    return script->wish == Script::Wish::listConfigurations ? listConfigurations() : createImage(*script);
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(
        wordsOf(argc, argv),
        {{{"-e"}, OptionValue::required}, {{"-s"}, OptionValue::required}, {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("osascript", arguments.error, usage, notBuiltStatus);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (!arguments.has("-e") || !arguments.operands.empty()
        || (arguments.has("-s") && arguments.value("-s") != "s"))
        return refuseArguments("osascript", "one script is needed, and -s is s", usage);
    return run(QString::fromStdString(arguments.value("-e")));
}
