#include "notaryd/activation.h"
#include "notaryd/background.h"
#include "notaryd/replies.h"
#include "notaryd/server.h"
#include "notaryd/verdict.h"

#include "formats/keychain/privatefile.h"
#include "formats/notary/localservice.h"
#include "formats/statefolder.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QFile>
#include <QJsonDocument>
#include <QRandomGenerator>

#include <arpa/inet.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;
using platform::Outcome;
using namespace notaryd;
using namespace toolchain;

namespace {

constexpr std::string_view usage =
    R"(Usage: sealwright-notaryd [--listen ADDRESS:PORT] [--faults FILE] [--control] [--foreground]
       sealwright-notaryd --help

The notary service of this machine. It speaks the protocol of Apple's service, over TLS, reviews what is uploaded, and
makes tickets that this machine's tools accept. Nothing that it accepts is known to Apple.

  --listen ADDRESS:PORT  where; 127.0.0.1:0 if it is not given, with 0 for a free port. An IPv6 number stands in
                         brackets
  --faults FILE          misbehave as the JSON list in the file says
  --control              take such lists by POST /control/faults too, from this machine alone
  --foreground           stay in the foreground
  -h, --help             print this text

The first line of output is the address, which stands in notary/service.json of the state folder as well unless another
service has been chosen there. A service that runs already is asked to end first. altool, stapler, spctl and codesign
start the service by themselves; that one ends when nobody has asked it anything for ten minutes, and so does one at a
socket of systemd's.
Exit status: 0 done, 1 failed, 2 wrong arguments.
)";

constexpr int argumentsStatus = 2;
constexpr auto idleEnd = std::chrono::minutes(10);
constexpr auto lookPause = std::chrono::seconds(1);
constexpr int takeOverLooks = 130;
constexpr auto takeOverPause = std::chrono::milliseconds(50);

struct Options {
    ListenAddress address{u"127.0.0.1"_s, 0};
    QList<Fault> faults;
    bool hasControl = false;
    bool isInForeground = false;
    bool isOnDemand = false; ///< goes when another one runs, and ends when nobody asks
    bool isAnnouncement = false; ///< only writes down where systemd listens
};

int fail(const QString &text)
{
    printError("sealwright-notaryd: " + text.toStdString() + "\n");
    return 1;
}

int refuse(const QString &text)
{
    printError("sealwright-notaryd: " + text.toStdString() + "\n" + std::string(usage));
    return argumentsStatus;
}

bool isNumber(const QString &host)
{
    in6_addr number = {};
    const QByteArray text = host.toLatin1();
    return inet_pton(AF_INET, text.constData(), &number) == 1
        || inet_pton(AF_INET6, text.constData(), &number) == 1;
}

std::optional<ListenAddress> addressFrom(const QString &text)
{
    const qsizetype colon = text.lastIndexOf(u':');
    bool isPort = false;
    const int port = text.mid(colon + 1).toInt(&isPort);
    QString host = text.left(colon);
    if (host.startsWith(u'[') && host.endsWith(u']'))
        host = host.mid(1, host.size() - 2);
    if (host == u"localhost"_s)
        host = u"127.0.0.1"_s;
    if (!isNumber(host) || !isPort || port < 0 || port > 65535)
        return std::nullopt;
    return ListenAddress{host, quint16(port), -1};
}

platform::Result<QList<Fault>> faultsOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return platform::Error{path + u": "_s + file.errorString()};
    const auto faults = faultsFromJson(file.read(1 << 24));
    return faults ? faults : platform::Error{path + u": "_s + faults.error()};
}

/// The process of the service that runs; 0 if it does not say.
pid_t runningProcess()
{
    QFile file(notary::serviceFolder() + u"/address.json"_s);
    return file.open(QIODevice::ReadOnly) ? pid_t(QJsonDocument::fromJson(file.readAll())[u"pid"].toInteger())
                                          : 0;
}

/// A service that a person or systemd starts goes before the one that runs.
bool goesBeforeOthers(const Options &options)
{
    return !options.isOnDemand || options.address.socket >= 0;
}

std::unique_ptr<notary::ServiceLock> takeOver(const Options &options)
{
    auto lock = std::make_unique<notary::ServiceLock>();
    const auto isTaken = [&lock] { return !lock->isHeld() && lock->opened(); };
    for (int look = 0; isTaken() && goesBeforeOthers(options) && look < takeOverLooks; ++look) {
        const pid_t process = runningProcess();
        if (process > 1)
            kill(process, SIGTERM);
        std::this_thread::sleep_for(takeOverPause);
        lock = std::make_unique<notary::ServiceLock>();
    }
    return lock;
}

QString originOf(const ListenAddress &address, quint16 port)
{
    const QString host = address.host.contains(u':') ? u'[' + address.host + u']' : address.host;
    return u"https://%1:%2"_s.arg(host, QString::number(port));
}

/// Where this service had listened before it ended, so that what has been written down stays true if it can.
quint16 earlierPort()
{
    QFile file(notary::serviceFolder() + u"/address.json"_s);
    const auto api =
        file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll())[u"api"].toString() : u""_s;
    return quint16(std::max(0, QUrl(api).port(0)));
}

Outcome listen(Server &server, const ListenAddress &address, const ServerCertificate &certificate)
{
    const quint16 earlier = address.port == 0 ? earlierPort() : 0;
    if (earlier != 0 && server.listen({address.host, earlier, -1}, certificate))
        return {};
    return server.listen(address, certificate);
}

/// Where a service listens, and which process it is (0: none yet); whether systemd keeps the place for it.
struct Publication {
    QString origin;
    pid_t process = 0;
    bool isActivated = false;
};

Outcome publish(const Publication &what)
{
    notary::ServiceConfig config = notary::serviceAt(what.origin);
    config.ca = authorityFile();
    config.isLocal = true;
    QJsonObject form = QJsonDocument::fromJson(notary::jsonOf(config)).object();
    form.insert(u"pid"_s, qint64(what.process));
    if (what.isActivated)
        form.insert(u"activated"_s, true);
    const QByteArray bytes = QJsonDocument(form).toJson();
    QFile file(notary::serviceFile());
    const auto kept = file.open(QIODevice::ReadOnly) ? notary::serviceConfigFrom(file.readAll())
                                                     : platform::Result<notary::ServiceConfig>(config);
    const bool isChosen = !kept || kept->isLocal;
    const Outcome written = isChosen ? writePrivateFile(notary::serviceFile(), bytes) : Outcome::success();
    // last, since whoever waits for the service waits for its process in this file
    return written ? writePrivateFile(notary::serviceFolder() + u"/address.json"_s, bytes) : written;
}

/// Until a signal ends the service, nobody needs it, or its folder has gone.
void waitForEnd(const Options &options, const notary::ServiceLock &lock, const Server &server,
                Service &service)
{
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&ending, number);
    const timespec pause{lookPause.count(), 0};
    while (sigtimedwait(&ending, nullptr, &pause) < 0) {
        const bool isUnused =
            options.isOnDemand && server.idleFor() > idleEnd && !service.submissions().isBusy();
        if (isUnused || !lock.isInPlace())
            return;
    }
}

void blockSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&ending, number);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
}

QByteArray newSecret()
{
    QByteArray secret(32, '\0');
    QRandomGenerator::system()->generate(secret.begin(), secret.end());
    return secret;
}

/// Why the lock is not held.
QString reasonOf(const notary::ServiceLock &lock)
{
    return lock.opened() ? u"another service runs and does not end"_s : lock.opened().error();
}

int failToStart(const QString &reason, Starter &starter)
{
    starter.tell((u"-"_s + reason + u'\n').toUtf8());
    return starter.isInBackground() ? 1 : fail(reason);
}

/// Systemd has begun to listen, and starts the service when somebody connects.
int announce(const Options &options)
{
    const auto lock = takeOver(options);
    if (!lock->isHeld())
        return fail(reasonOf(*lock));
    const Outcome published = publish(
        {.origin = originOf(options.address, options.address.port), .process = 0, .isActivated = true});
    return published ? 0 : fail(published.error());
}

int serve(const Options &options, Starter starter)
{
    const auto lock = takeOver(options);
    if (!lock->isHeld() && lock->opened() && !goesBeforeOthers(options)) {
        starter.tell("+");
        return 0;
    }
    if (!lock->isHeld())
        return failToStart(reasonOf(*lock), starter);
    const auto certificate = serverCertificate(options.address.host);
    Service service(notaryFolder());
    service.setFaults(options.faults);
    Server server(service);
    const Outcome listening =
        certificate ? listen(server, options.address, *certificate) : certificate.failure();
    const bool isHanded = options.address.socket >= 0;
    const QString origin = originOf(options.address, isHanded ? options.address.port : server.port());
    service.setFacts({origin, newSecret(), options.hasControl});
    const Outcome published = listening ? publish({origin, getpid(), isHanded}) : listening;
    if (!published)
        return failToStart(published.error(), starter);
    starter.tell((u"+"_s + origin + u'\n').toUtf8());
    if (options.isInForeground) {
        print(origin.toStdString() + "\n");
        static_cast<void>(std::fflush(stdout)); // whoever reads it from a pipe waits for it
    }
    waitForEnd(options, *lock, server, service);
    return 0;
}

int run(const Options &options)
{
    const Outcome folder = makePrivateFolder(notary::serviceFolder());
    if (!folder)
        return fail(folder.error());
    if (options.isAnnouncement)
        return announce(options);
    blockSignals();
    return options.isInForeground
        ? serve(options, Starter(-1))
        : serveInBackground([&options](Starter starter) { return serve(options, starter); });
}

} // namespace

int main(int argc, char **argv)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    umask(077);
    const auto arguments = parseArguments(wordsOf(argc, argv),
                                          {{{"--listen"}, OptionValue::required},
                                           {{"--faults"}, OptionValue::required},
                                           {{"--control"}},
                                           {{"--foreground"}},
                                           {{"--on-demand"}},
                                           {{"--announce"}},
                                           {{reviewOption}, OptionValue::required},
                                           {{"-h", "--help"}}});
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (!arguments.error.empty() || !arguments.operands.empty())
        return refuse(arguments.error.empty() ? u"unexpected argument '%1'"_s.arg(
                          QString::fromStdString(arguments.operands.front()))
                                              : QString::fromStdString(arguments.error));
    if (arguments.has(reviewOption))
        return reviewAlone(QFile::decodeName(arguments.value(reviewOption).c_str()));
    Options options;
    options.hasControl = arguments.has("--control");
    options.isInForeground = arguments.has("--foreground");
    options.isOnDemand = arguments.has("--on-demand");
    options.isAnnouncement = arguments.has("--announce");
    if (arguments.has("--listen")) {
        const auto address = addressFrom(QString::fromStdString(arguments.value("--listen")));
        if (!address)
            return refuse(u"--listen needs ADDRESS:PORT, the address as a number, and not '%1'"_s.arg(
                QString::fromStdString(arguments.value("--listen"))));
        options.address = *address;
    }
    if (const auto handed = handedSocket()) {
        options.address = *handed;
        options.isInForeground = options.isOnDemand = true;
    }
    if (arguments.has("--faults")) {
        const auto faults = faultsOf(QString::fromStdString(arguments.value("--faults")));
        if (!faults)
            return fail(faults.error());
        options.faults = *faults;
    }
    return run(options);
}
