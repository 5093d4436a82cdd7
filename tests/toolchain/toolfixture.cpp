#include "toolchain/toolfixture.h"

#include "platform/propertylist/propertylist.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QProcessEnvironment>
#include <QRandomGenerator>
#include <QThread>
#include <QVariantMap>

#include <signal.h>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

/// For what has gone wrong for good; however slow the machine is, nothing that goes well comes near it.
constexpr int deadlineInMilliseconds = 300'000;

QStringList withCredentials(QStringList arguments)
{
    return arguments << u"-u"_s << u"someone@example.com"_s << u"-p"_s << u"@keychain:item"_s;
}

} // namespace

void ToolFixture::SetUp()
{
    ASSERT_TRUE(m_folder.isValid());
}

void ToolFixture::TearDown()
{
    stopService();
}

void ToolFixture::stopService() const
{
    QFile file(statePath(u"notary/service/address.json"_s));
    if (!file.open(QIODevice::ReadOnly))
        return;
    const auto process = pid_t(QJsonDocument::fromJson(file.readAll())[u"pid"].toInteger());
    if (process <= 1 || kill(process, SIGTERM) != 0)
        return;
    const auto isThere = [process] { // what has ended and waits for its parent has no command line any more
        QFile line(u"/proc/%1/cmdline"_s.arg(process));
        return line.open(QIODevice::ReadOnly) && !line.readAll().isEmpty();
    };
    EXPECT_TRUE(waitUntil([&isThere] { return !isThere(); })) << "the notary service does not end";
}

bool ToolFixture::waitUntil(const std::function<bool()> &isSo)
{
    const QDeadlineTimer deadline(deadlineInMilliseconds);
    while (!isSo()) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(10);
    }
    return true;
}

QByteArray ToolFixture::randomBytes(int count)
{
    QByteArray bytes(count, '\0');
    QRandomGenerator generator(1);
    for (char &byte : bytes)
        byte = static_cast<char>(generator.generate());
    return bytes;
}

void ToolFixture::limitFileSize()
{
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{64 << 10, 64 << 10};
    setrlimit(RLIMIT_FSIZE, &limit);
}

QString ToolFixture::toolRoot()
{
    return QStringLiteral(TOOLCHAIN_ROOT);
}

ToolResult ToolFixture::run(const QString &tool, const QStringList &arguments, const QByteArray &input,
                            const std::function<void()> &inChild) const
{
    const auto process = start(tool, arguments, inChild);
    process->write(input);
    process->closeWriteChannel();
    return finish(*process);
}

std::unique_ptr<QProcess> ToolFixture::start(const QString &tool, const QStringList &arguments,
                                             const std::function<void()> &inChild) const
{
    auto process = std::make_unique<QProcess>();
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"SEALWRIGHT_TOOLCHAIN_STATE"_s, path(u"state"_s));
    environment.insert(u"SEALWRIGHT_WAIT_SCALE"_s, u"0.02"_s);
    process->setProcessEnvironment(environment);
    process->setWorkingDirectory(m_folder.path());
    if (inChild)
        process->setChildProcessModifier(inChild);
    const QString bundled = toolRoot() + tool;
    process->start(tool.startsWith(u"/usr"_s) && QFileInfo::exists(bundled) ? bundled : tool, arguments);
    return process;
}

ToolResult ToolFixture::finish(QProcess &process)
{
    if (!process.waitForFinished(deadlineInMilliseconds) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, process.errorString()};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

void ToolFixture::makeIdentity() const
{
    const ToolResult result = run(keychain, {u"make-identity"_s, u"--name"_s, holder});
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
}

void ToolFixture::storePassword() const
{
    const ToolResult result = run(keychain, {u"make-api-key"_s, u"item"_s});
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
}

ToolResult ToolFixture::sign(const QString &item, const QStringList &moreArguments) const
{
    return run(codesign,
               moreArguments
                   + QStringList{u"--deep"_s, u"-o"_s, u"runtime"_s, u"--timestamp=none"_s, u"--verbose=4"_s,
                                 u"-s"_s, identity, u"--digest-algorithm=sha1,sha256"_s, item});
}

ToolResult ToolFixture::pack(const QString &item, const QString &archive) const
{
    return run(ditto, {u"-c"_s, u"-k"_s, u"--keepParent"_s, item, archive});
}

ToolResult ToolFixture::altool(const QStringList &arguments) const
{
    return run(xcrun, QStringList{u"altool"_s} + withCredentials(arguments));
}

ToolResult ToolFixture::upload(const QString &archive) const
{
    return altool({u"--notarize-app"_s, u"-f"_s, archive, u"--primary-bundle-id"_s, u"com.example.app"_s,
                   u"--output-format"_s, u"xml"_s});
}

ToolResult ToolFixture::info(const QString &uuid) const
{
    return altool({u"--notarization-info"_s, uuid});
}

QString ToolFixture::uuidIn(const ToolResult &reply)
{
    const QVariantMap list = platform::propertyListFromData(reply.output.toUtf8()).valueOr({}).toMap();
    return list.value(u"notarization-upload"_s).toMap().value(u"RequestUUID"_s).toString();
}

void ToolFixture::waitForReview(const QString &uuid) const
{
    const QString record = statePath(u"notary/requests/%1.json"_s.arg(uuid));
    EXPECT_TRUE(waitUntil([&record] {
        QFile file(record);
        return file.open(QIODevice::ReadOnly)
            && QJsonDocument::fromJson(file.readAll())[u"phase"].toString() == u"reviewed"_s;
    })) << "no review is recorded";
}

ToolResult ToolFixture::pollToTheEnd(const QString &uuid) const
{
    ToolResult report = info(uuid);
    const QDeadlineTimer deadline(deadlineInMilliseconds);
    while (!deadline.hasExpired() && report.output.contains(u"Status: in progress"_s))
        report = info(uuid);
    return report;
}
