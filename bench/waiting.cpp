// Fifty documents that wait for their verdict, in the real application.

#include "rows.h"

#include "support/faketools.h"
#include "support/items.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int documents = 50;
constexpr int watched = 40; // seconds; each document asks twice
constexpr double mebibyte = 1024.0 * 1024.0;
constexpr int userTimeField = 11; // behind the name, counted from 0
constexpr int systemTimeField = 12;
constexpr int residentField = 21;

/// The kernel's account of a process, from the field behind its name on.
QList<QByteArray> accountOf(qint64 process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the application has gone");
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2).split(' ');
}

double processorSeconds(qint64 process)
{
    const auto fields = accountOf(process);
    return static_cast<double>(fields.at(userTimeField).toLongLong()
                               + fields.at(systemTimeField).toLongLong())
        / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double residentMebibytes(qint64 process)
{
    return static_cast<double>(accountOf(process).at(residentField).toLongLong() * sysconf(_SC_PAGESIZE))
        / mebibyte;
}

QByteArray outputOf(const QStringList &arguments)
{
    QProcess client;
    client.start(QStringLiteral(SEALWRIGHT_CLIENT), arguments);
    client.waitForFinished(-1);
    return client.readAllStandardOutput();
}

void until(const std::function<bool()> &condition)
{
    for (int tries = 0; !condition(); ++tries) {
        if (tries > 600)
            qFatal("waited in vain");
        QThread::msleep(200);
    }
}

qsizetype waitingCount()
{
    return outputOf({u"documents"_s}).count("\twaiting\t");
}

class Application {
public:
    Application()
        : m_tools(m_place.filePath(u"root"_s))
    {
        m_tools.answer(u"altool--notarization-info"_s, {.output = FakeTools::infoReport(u"in progress"_s)});
        m_tools.add(u"/Applications/Xcode.app/Contents/MacOS/Xcode"_s);
        items::makeFile(m_place.filePath(u"root/Applications/Xcode.app/Contents/Info.plist"_s),
                        "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key>"
                        "<string>com.apple.dt.Xcode</string><key>CFBundleExecutable</key>"
                        "<string>Xcode</string></dict></plist>");
        items::makeFile(m_place.filePath(u"config/Sealwright/Sealwright.conf"_s),
                        "[General]\nappleIDValue=dev@example.com\nappPassValue=notary\npollingDelay=20\n"
                        "toolRoot="
                            + m_tools.root().toUtf8() + "\n");
        for (int document = 0; document < documents; ++document)
            items::makeBundle(item(document));
        qputenv("XDG_CONFIG_HOME", m_place.filePath(u"config"_s).toUtf8());
        qputenv("QT_QPA_PLATFORM", "offscreen");
        m_process.start(QStringLiteral(SEALWRIGHT_PROGRAM), QStringList());
        until([] { return outputOf({u"get"_s, u"AppStatus"_s}).trimmed() == "ready"; });
    }
    ~Application()
    {
        m_process.kill();
        m_process.waitForFinished(-1);
    }

    qint64 process() const { return m_process.processId(); }
    QString item(int document) const { return m_place.filePath(u"%1/Foo.app"_s.arg(document)); }

    /// Submits all items and comes back when all wait.
    void submitAll()
    {
        for (int document = 0; document < documents; ++document) {
            m_clients.push_back(std::make_unique<QProcess>());
            m_clients.back()->start(QStringLiteral(SEALWRIGHT_CLIENT), {u"submit"_s, item(document)});
        }
        until([] { return waitingCount() == documents; });
    }

private:
    const QTemporaryDir m_place;
    FakeTools m_tools;
    QProcess m_process;
    std::vector<std::unique_ptr<QProcess>> m_clients;
};

} // namespace

QList<Figure> rows::waitingDocuments()
{
    Application application;
    const double before = residentMebibytes(application.process());
    application.submitAll();
    const double spent = processorSeconds(application.process());
    QThread::sleep(watched);
    const double share = (processorSeconds(application.process()) - spent) / watched;
    const double each = (residentMebibytes(application.process()) - before) / documents;
    return {{u"the share of a core that 50 waiting documents take"_s, share * 100, 1, u"%"_s},
            {u"    the memory of each of them"_s, each, 3, u"MiB"_s}};
}
