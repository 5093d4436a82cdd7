#include "platform/qt/processtable.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// The kernel starts a script by its interpreter, whose options, if any, stand before the script. Public
/// document: execve(2).
QString scriptOf(const QString &process)
{
    QFile commandLine(process + u"/cmdline"_s);
    if (!commandLine.open(QIODevice::ReadOnly))
        return {};
    const QList<QByteArray> arguments = commandLine.readAll().split('\0');
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i].startsWith('-') || arguments[i].isEmpty())
            continue;
        const QDir folder(QFile::symLinkTarget(process + u"/cwd"_s));
        QFile script(folder.absoluteFilePath(QFile::decodeName(arguments[i])));
        const bool isScript =
            QFileInfo(script).isFile() && script.open(QIODevice::ReadOnly) && script.read(2) == "#!";
        return isScript ? QFileInfo(script).canonicalFilePath() : QString();
    }
    return {};
}

} // namespace

QStringList pathsOfRunningPrograms()
{
    QStringList paths;
    const QDir processes(u"/proc"_s);
    for (const QString &name : processes.entryList({u"[1-9]*"_s}, QDir::Dirs)) {
        const QString process = processes.filePath(name);
        const QString executable = QFile::symLinkTarget(process + u"/exe"_s);
        if (executable.isEmpty())
            continue; // one of the kernel's, or another user's
        paths += executable;
        if (const QString script = scriptOf(process); !script.isEmpty())
            paths += script;
    }
    return paths;
}

} // namespace platform
