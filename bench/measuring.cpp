#include "measuring.h"

#include <QElapsedTimer>
#include <QFile>
#include <QList>
#include <QProcess>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace measuring {

namespace {

constexpr double nanosecondsInSecond = 1e9;
constexpr qint64 bytesInKilobyte = 1024;

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// A line of the kernel's account of this process, which it gives in kilobytes.
qint64 accountOf(const char *name)
{
    QFile file(u"/proc/self/status"_s);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the memory of the process cannot be read");
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.simplified().split(' ').value(1).toLongLong() * bytesInKilobyte;
    }
    qFatal("the kernel does not account for %s", name);
}

} // namespace

double seconds(const std::function<void()> &action)
{
    QElapsedTimer timer;
    timer.start();
    action();
    return static_cast<double>(timer.nsecsElapsed()) / nanosecondsInSecond;
}

double ratio(int rounds, const std::function<void()> &own, const std::function<void()> &alternative)
{
    own(); // warms up what both read
    alternative();
    QList<double> ownTimes;
    QList<double> alternativeTimes;
    for (int round = 0; round < rounds; ++round) {
        ownTimes.append(seconds(own));
        alternativeTimes.append(seconds(alternative));
    }
    return median(ownTimes) / median(alternativeTimes);
}

void runDiscarding(const QStringList &command)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(command.first(), command.mid(1));
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        qFatal("%s failed", qPrintable(command.first()));
}

// What a process had before it became the program counts as the program's: a small one starts it.
qint64 peakMemoryOf(const QStringList &command)
{
    const QString starter = uR"(
import resource, subprocess, sys
subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL, check=True)
print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)
)"_s;
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(u"/usr/bin/python3"_s, QStringList{u"-c"_s, starter} + command);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        qFatal("%s failed", qPrintable(command.first()));
    return process.readAllStandardOutput().trimmed().toLongLong() * bytesInKilobyte;
}

qint64 residentMemory()
{
    return accountOf("VmRSS:");
}

qint64 peakMemory()
{
    return accountOf("VmHWM:");
}

void forgetPeakMemory()
{
    QFile file(u"/proc/self/clear_refs"_s);
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        qFatal("the peak of the memory cannot be forgotten");
}

} // namespace measuring
