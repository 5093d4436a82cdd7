#include "liveapplication.h"

#include "support/items.h"

#include <QFile>
#include <QThread>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr double mebibyte = 1024.0 * 1024.0;
constexpr double kibibytesInMebibyte = 1024.0;
constexpr int userTimeField = 11; // behind the name, counted from 0
constexpr int systemTimeField = 12;
constexpr int residentField = 21;

} // namespace

LiveApplication::LiveApplication(int items)
    : m_tools(m_place.filePath(u"root"_s))
{
    m_tools.add(u"/Applications/Xcode.app/Contents/MacOS/Xcode"_s);
    items::makeFile(m_place.filePath(u"root/Applications/Xcode.app/Contents/Info.plist"_s),
                    "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key>"
                    "<string>com.apple.dt.Xcode</string><key>CFBundleExecutable</key>"
                    "<string>Xcode</string></dict></plist>");
    items::makeFile(m_place.filePath(u"config/Sealwright/Sealwright.conf"_s),
                    "[General]\nappleIDValue=dev@example.com\nappPassValue=notary\npollingDelay=20\n"
                    "toolRoot="
                        + m_tools.root().toUtf8() + "\n");
    for (int number = 0; number < items; ++number)
        items::makeBundle(item(number));
    qputenv("XDG_CONFIG_HOME", m_place.filePath(u"config"_s).toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Nobody reads what it says, and a full pipe would stop it.
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(QStringLiteral(SEALWRIGHT_PROGRAM), QStringList());
    until([] { return outputOf({u"get"_s, u"AppStatus"_s}).trimmed() == "ready"; });
}

LiveApplication::~LiveApplication()
{
    m_process.kill();
    m_process.waitForFinished(-1);
}

/// The kernel's account of the process, from the field behind its name on.
QList<QByteArray> LiveApplication::account() const
{
    QFile file(u"/proc/%1/stat"_s.arg(m_process.processId()));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the application has gone");
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2).split(' ');
}

double LiveApplication::processorSeconds() const
{
    const auto fields = account();
    return static_cast<double>(fields.at(userTimeField).toLongLong()
                               + fields.at(systemTimeField).toLongLong())
        / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double LiveApplication::residentMebibytes() const
{
    return static_cast<double>(account().at(residentField).toLongLong() * sysconf(_SC_PAGESIZE)) / mebibyte;
}

double LiveApplication::peakMebibytes() const
{
    QFile file(u"/proc/%1/status"_s.arg(m_process.processId()));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the application has gone");
    const QByteArray status = file.readAll();
    const QByteArray line = status.mid(status.indexOf("VmHWM:")).split('\n').first();
    return line.simplified().split(' ').at(1).toDouble() / kibibytesInMebibyte;
}

QByteArray LiveApplication::outputOf(const QStringList &arguments)
{
    QProcess client;
    client.start(QStringLiteral(SEALWRIGHT_CLIENT), arguments);
    client.waitForFinished(-1);
    return client.readAllStandardOutput();
}

void LiveApplication::until(const std::function<bool()> &condition)
{
    for (int tries = 0; !condition(); ++tries) {
        if (tries > 600)
            qFatal("waited in vain");
        QThread::msleep(200);
    }
}
