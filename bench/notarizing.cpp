// The client of the notary service and the service of this machine, beside curl.

#include "rows.h"

#include "formats/notary/apikey.h"
#include "formats/notary/upload.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using namespace toolchain::notary;

namespace {

constexpr double mebibyte = 1024.0 * 1024.0;

QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        qFatal("%s failed: %s", qPrintable(program), process.readAllStandardError().constData());
    return process.readAllStandardOutput();
}

/// A state folder with a key and a running service, which ends with it.
class Service {
public:
    Service()
    {
        qputenv("SEALWRIGHT_TOOLCHAIN_STATE", QFile::encodeName(m_folder.filePath(u"state"_s)));
        outputOf(keychain(), {u"make-api-key"_s, u"item"_s});
        outputOf(tool(u"usr/bin/sealwright-notaryd"_s), {});
        const auto config = readServiceConfig();
        const auto key = apiKeyFromItem(
            outputOf(tool(u"usr/bin/security"_s), {u"find-generic-password"_s, u"-s"_s, u"item"_s, u"-w"_s}));
        if (!config || !key)
            qFatal("no notary service");
        m_config = *config;
        m_key = *key;
    }
    ~Service()
    {
        kill(process(), SIGTERM);
        qunsetenv("SEALWRIGHT_TOOLCHAIN_STATE");
    }
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;

    [[nodiscard]] static QString tool(const QString &path)
    {
        return QStringLiteral(TOOLCHAIN_ROOT "/") + path;
    }
    [[nodiscard]] static QString keychain() { return tool(u"usr/bin/sealwright-keychain"_s); }
    [[nodiscard]] static QString altool()
    {
        return tool(u"Applications/Xcode.app/Contents/Developer/usr/bin/altool"_s);
    }
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] const ServiceConfig &config() const { return m_config; }
    [[nodiscard]] const ApiKey &key() const { return m_key; }

    [[nodiscard]] pid_t process() const
    {
        QFile file(m_folder.filePath(u"state/notary/service/address.json"_s));
        return file.open(QIODevice::ReadOnly)
            ? pid_t(QJsonDocument::fromJson(file.readAll())[u"pid"].toInteger())
            : 0;
    }

    [[nodiscard]] double peakMemory() const // MiB
    {
        QFile file(u"/proc/%1/status"_s.arg(process()));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("the service has ended");
        for (const QByteArray &line : file.readAll().split('\n')) {
            if (line.startsWith("VmHWM:"))
                return line.simplified().split(' ').value(1).toDouble() / 1024;
        }
        return 0;
    }

    /// Something that is taken as an archive, of that size.
    [[nodiscard]] QString makeArchive(const QString &name, qint64 size) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write("PK\3\4") != 4 || !file.resize(size))
            qFatal("no archive");
        return file.fileName();
    }

    [[nodiscard]] static QStringList uploading(const QString &archive)
    {
        return withKey({u"--notarize-app"_s, u"-f"_s, archive, u"--primary-bundle-id"_s, u"a.b"_s});
    }
    [[nodiscard]] static QStringList asking(const QString &id)
    {
        return withKey({u"--notarization-info"_s, id});
    }

    [[nodiscard]] static QStringList listing() { return withKey({u"--notarization-history"_s, u"0"_s}); }

    [[nodiscard]] static QString idIn(const QByteArray &reply)
    {
        return QString::fromUtf8(reply).section(u"RequestUUID = "_s, 1).trimmed();
    }

private:
    static QStringList withKey(QStringList words)
    {
        return words << u"-u"_s << u"me"_s << u"-p"_s << u"@keychain:item"_s;
    }

    QTemporaryDir m_folder;
    ServiceConfig m_config;
    ApiKey m_key;
};

/// A submission that curl is to send the file of.
UploadPlace placeForCurl(const Service &service, const QByteArray &digest)
{
    NotaryApi api(service.config(), service.key());
    const auto answer = api.submit(u"by curl.zip"_s, digest);
    const auto *place = std::get_if<UploadPlace>(&answer);
    if (!place)
        qFatal("not announced");
    return *place;
}

/// The words of a `curl -T` to that place, with the headers that prove it.
QStringList curlTo(const Service &service, const UploadPlace &place, const QString &archive,
                   const QByteArray &digest)
{
    QString address = service.config().upload;
    address.replace(u"{bucket}"_s, QString::fromUtf8(place.bucket))
        .replace(u"{object}"_s, QString::fromUtf8(percentEncoded(place.object, Slash::kept)));
    const QByteArray date = amzDate(QDateTime::currentDateTimeUtc());
    const SignableRequest request{"PUT",
                                  QUrl(address).path(QUrl::FullyEncoded).replace(u':', u"%3A"_s).toUtf8(),
                                  {},
                                  {{"host", hostAndPort(address).toUtf8()},
                                   {"x-amz-content-sha256", digest},
                                   {"x-amz-date", date},
                                   {"x-amz-security-token", place.credentials.sessionToken}},
                                  digest};
    QStringList words{u"-fsS"_s, u"--cacert"_s, service.config().ca, u"-T"_s, archive};
    for (const HttpHeader &header : request.headers.mid(1))
        words << u"-H"_s << QString::fromUtf8(header.name + ": " + header.value);
    const QByteArray proof =
        awsAuthorization(request, date, service.config().region.toUtf8(), place.credentials);
    return words << u"-H"_s << u"authorization: "_s + QString::fromUtf8(proof) << address;
}

/// Until the service has decided on a submission, so that no review goes on beside what is measured next.
void awaitVerdict(const Service &service, const QString &id)
{
    NotaryApi api(service.config(), service.key());
    for (;;) {
        const auto answer = api.status(id);
        const auto *found = std::get_if<std::optional<Submission>>(&answer);
        if (!found || !*found)
            qFatal("the service has lost a submission");
        if ((*found)->status != u"In Progress"_s)
            return;
        QThread::msleep(100);
    }
}

/// Nothing but the sending counts: the digest and the announcement are there before.
double secondsOfCurl(const Service &service, const QString &archive, const QByteArray &digest)
{
    const UploadPlace place = placeForCurl(service, digest);
    const QStringList words = curlTo(service, place, archive, digest);
    const double time = measuring::seconds([&words] { outputOf(u"/usr/bin/curl"_s, words); });
    awaitVerdict(service, place.id);
    return time;
}

/// All that the client does counts: digest, announcement, parts.
double secondsOfAltool(const Service &service, const QString &archive)
{
    QByteArray reply;
    const double time =
        measuring::seconds([&] { reply = outputOf(Service::altool(), Service::uploading(archive)); });
    awaitVerdict(service, Service::idIn(reply));
    return time;
}

/// The median of the one over that of the other, which take turns.
double uploadRatio(const Service &service, const QString &archive)
{
    constexpr int rounds = 5;
    const QByteArray digest =
        outputOf(u"/usr/bin/openssl"_s, {u"dgst"_s, u"-sha256"_s, u"-r"_s, archive}).left(64);
    std::vector<double> own;
    std::vector<double> alternative;
    for (int round = 0; round < rounds; ++round) {
        own.push_back(secondsOfAltool(service, archive));
        alternative.push_back(secondsOfCurl(service, archive, digest));
    }
    std::sort(own.begin(), own.end());
    std::sort(alternative.begin(), alternative.end());
    return own.at(rounds / 2) / alternative.at(rounds / 2);
}

/// The most memory that a program had, in MiB.
double memoryOf(const QString &program, const QStringList &arguments)
{
    return double(measuring::peakMemoryOf(QStringList{program} + arguments)) / mebibyte;
}

/// Runs all at once, and answers what each printed.
QList<QByteArray> together(const QString &program, const QList<QStringList> &runs)
{
    std::vector<std::unique_ptr<QProcess>> processes;
    for (const QStringList &arguments : runs) {
        processes.push_back(std::make_unique<QProcess>());
        processes.back()->start(program, arguments);
    }
    QList<QByteArray> outputs;
    for (const auto &process : processes) {
        if (!process->waitForFinished(-1) || process->exitCode() != 0)
            qFatal("one of many failed: %s", process->readAllStandardError().constData());
        outputs.append(process->readAllStandardOutput());
    }
    return outputs;
}

/// An app that is signed as the service wants it, in an archive.
QString makeGoodArchive(const Service &service)
{
    const QString app = service.path(u"App.app"_s);
    outputOf(u"/bin/cp"_s, {u"-R"_s, QStringLiteral(SAMPLE_APP), app});
    outputOf(Service::keychain(), {u"make-identity"_s, u"--name"_s, u"Bench Corp (B3NCH00000)"_s});
    outputOf(Service::tool(u"usr/bin/codesign"_s),
             {u"-f"_s, u"--deep"_s, u"-o"_s, u"runtime"_s, u"--timestamp"_s, u"-s"_s, u"Bench Corp"_s, app});
    const QString archive = service.path(u"good.zip"_s);
    outputOf(Service::tool(u"usr/bin/ditto"_s), {u"-c"_s, u"-k"_s, u"--keepParent"_s, app, archive});
    return archive;
}

/// How many of the submissions have another verdict than their archive deserves.
int wrongVerdicts(const QStringList &ids)
{
    int wrong = 0;
    for (qsizetype index = 0; index < ids.size(); ++index) {
        QByteArray report;
        do
            report = outputOf(Service::altool(), Service::asking(ids.at(index)));
        while (report.contains("Status: in progress"));
        wrong += report.contains(index % 2 == 0 ? "Status: success\n" : "Status: invalid\n") ? 0 : 1;
    }
    return wrong;
}

Figure manySubmissions()
{
    constexpr int count = 200;
    const Service service;
    const QString good = makeGoodArchive(service);
    const QString bad = service.makeArchive(u"bad.zip"_s, 100'000);
    QList<QStringList> runs;
    for (int index = 0; index < count; ++index)
        runs.append(Service::uploading(index % 2 == 0 ? good : bad));
    QStringList ids;
    for (const QByteArray &reply : together(Service::altool(), runs))
        ids.append(Service::idIn(reply));
    if (wrongVerdicts(ids) != 0)
        qFatal("a verdict is another one's");
    return {u"memory of the service that holds 200 submissions at once"_s, service.peakMemory(), 100,
            u"MiB"_s};
}

QList<Figure> uploads()
{
    const Service service;
    const QString archive = service.makeArchive(u"1 GiB.zip"_s, 1LL << 30);
    const double ratio = uploadRatio(service, archive);
    const QString large = service.makeArchive(u"5 GiB.zip"_s, 5LL << 30);
    const double memory = memoryOf(Service::altool(), Service::uploading(large));
    return {{u"upload of 1 GiB, over curl -T"_s, ratio, 1.1, {}},
            {u"    memory of an upload of 5 GiB"_s, memory, 32, u"MiB"_s}};
}

Figure questions()
{
    const Service service;
    outputOf(Service::altool(), Service::uploading(service.makeArchive(u"a.zip"_s, 1000)));
    const QString token = QString::fromUtf8(makeToken(service.key(), QDateTime::currentDateTimeUtc()));
    const QStringList bare{u"-fsS"_s,
                           u"--cacert"_s,
                           service.config().ca,
                           u"-H"_s,
                           u"Authorization: Bearer "_s + token,
                           service.config().api + u"/submissions"_s};
    const double ratio = measuring::ratio(
        41, [] { outputOf(Service::altool(), Service::listing()); },
        [&bare] { outputOf(u"/usr/bin/curl"_s, bare); });
    return {u"one question of altool, over curl with a token"_s, ratio, 1.5, {}};
}

} // namespace

QList<Figure> rows::notarization()
{
    return uploads() << questions() << manySubmissions();
}
