#include "examine/signingplace.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

QStringList signing(const QString &timestamp)
{
    return {u"--force"_s, timestamp, u"-s"_s, u"Developer ID Application: "_s + SigningPlace::holder,
            u"--digest-algorithm=sha1,sha256"_s};
}

} // namespace

QString SigningPlace::tool(const QString &name, const QStringList &arguments)
{
    constexpr int patience = 60'000; // milliseconds
    QProcess process;
    process.start(QString::fromUtf8(TOOLCHAIN_ROOT) + u"/usr/bin/"_s + name, arguments);
    EXPECT_TRUE(process.waitForFinished(patience)) << name.toStdString();
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return {};
    return name + u": "_s + QString::fromUtf8(process.readAllStandardError()).trimmed();
}

QString SigningPlace::sign(const QString &path, const QStringList &options)
{
    return tool(u"codesign"_s, signing(u"--timestamp="_s + s_server->url()) + options + QStringList{path});
}

QString SigningPlace::signUnstamped(const QString &path, const QStringList &options)
{
    return tool(u"codesign"_s, signing(u"--timestamp=none"_s) + options + QStringList{path});
}

QString SigningPlace::signPackage(const QString &package, const QString &signedPackage)
{
    return tool(u"productsign"_s,
                {u"--sign"_s, u"Developer ID Installer: "_s + holder, u"--timestamp="_s + s_server->url(),
                 package, signedPackage});
}

void SigningPlace::SetUpTestSuite()
{
    s_state = std::make_unique<QTemporaryDir>();
    qputenv("SEALWRIGHT_TOOLCHAIN_STATE", s_state->path().toUtf8());
    for (const QString &kind : {u"application"_s, u"installer"_s}) {
        const QString problem =
            tool(u"sealwright-keychain"_s, {u"make-identity"_s, u"--kind"_s, kind, u"--name"_s, holder});
        ASSERT_TRUE(problem.isNull()) << problem.toStdString();
    }
    s_server = std::make_unique<TimestampServer>(s_state->filePath(u"keychain"_s));
}

void SigningPlace::TearDownTestSuite()
{
    s_server.reset();
    s_state.reset();
    qunsetenv("SEALWRIGHT_TOOLCHAIN_STATE");
}
