#include "altool/commands.h"

#include "altool/credentials.h"
#include "altool/progress.h"
#include "altool/receipts.h"
#include "formats/notary/localservice.h"
#include "formats/notary/upload.h"
#include "support/console.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QUuid>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;
using toolchain::notary::Answer;
using toolchain::notary::NotaryApi;
using toolchain::notary::ServiceFailure;
using toolchain::notary::Submission;

namespace toolchain {

namespace {

constexpr std::string_view usage = R"(Usage: altool --notarize-app -f FILE --primary-bundle-id ID CREDENTIALS
       altool --notarization-info UUID CREDENTIALS
       altool --notarization-history PAGE CREDENTIALS
       altool --list-providers CREDENTIALS
       altool --help
CREDENTIALS: -u APPLE-ID -p @keychain:ITEM | -u APPLE-ID -p @env:VARIABLE | --apiKey ID [--apiIssuer UUID]
For each of them: [--asc-provider NAME] [--output-format normal|xml]
)";

constexpr std::string_view details = R"(
Sends a zip archive, a disk image or a package to the notary service and asks what became of it. It speaks the
service's protocol of today, with an API key; passwords are taken by that service no more.

  -f, --file FILE          a zip archive, a disk image or a package, whatever it is called
  --primary-bundle-id ID   kept with this machine's receipt of the upload; the service does not ask for it
  --list-providers         the one team that the API key belongs to
  -u, --username ID        any; it is not sent. It must be that of the item, if the item names one
  -p, --password PASSWORD  an item that holds an API key: sealwright-keychain add-api-key makes one of a key from App
                           Store Connect, make-api-key one for the service of this machine
  --apiKey ID              the key ~/.appstoreconnect/private_keys/AuthKey_ID.p8, of the issuer --apiIssuer
  --asc-provider NAME      must be the team of the item, if the item names one
  --output-format FORMAT   normal (the default), or xml for a property list

The history is all that the service tells, the 100 newest requests, on page 0.
Exit status: 0 done, 1 failed, 2 an option that is not built, 64 wrong arguments, 239 a RequestUUID that the service does
not know.
)";

constexpr int failedStatus = 1;
constexpr int unknownRequestStatus = 239;
constexpr int unknownRequestCode = 1519;
constexpr int ownFailureCode = -1;
constexpr qint64 farOffSeconds = 5 * 60;

QString argument(const ParsedArguments &arguments, const char *name)
{
    return QString::fromStdString(arguments.value(name));
}

OutputFormat formatFrom(const ParsedArguments &arguments)
{
    return arguments.value("--output-format") == "xml" ? OutputFormat::xml : OutputFormat::normal;
}

void warn(const QString &text)
{
    printError("altool: warning: " + text.toStdString() + "\n");
}

/// On one line, whatever a file is called.
QString onOneLine(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control)
            character = u' ';
    }
    return text;
}

/// The process in brackets is the tool's old habit: its readers cut a text behind the first closing bracket.
void printFailure(const QString &message)
{
    printError("altool[" + std::to_string(getpid()) + "] *** Error: " + onOneLine(message).toStdString()
               + "\n");
}

int fail(const ParsedArguments &arguments, const ServiceFailure &failure)
{
    if (formatFrom(arguments) == OutputFormat::xml)
        print(failureReply(failure.text, failure.code).valueOr({}).toStdString());
    printFailure(failure.text);
    return failedStatus;
}

/// Readers of the property list compare its text as a whole, so that only the line says more.
int failUnknown(const ParsedArguments &arguments, const QString &id)
{
    const QString text = u"Could not find the RequestUUID."_s;
    if (formatFrom(arguments) == OutputFormat::xml)
        print(failureReply(text, unknownRequestCode).valueOr({}).toStdString());
    printFailure(text + u" The service knows no request '%1'."_s.arg(notary::printable(id)));
    return unknownRequestStatus;
}

int fail(const ParsedArguments &arguments, const QString &text)
{
    return fail(arguments, ServiceFailure{text, ownFailureCode});
}

int answer(const Reply &reply)
{
    if (!reply) {
        printFailure(u"The reply cannot be written: "_s + reply.error());
        return failedStatus;
    }
    print({reply->constData(), std::size_t(reply->size())});
    return 0;
}

/// One run's way to the service.
struct Session {
    notary::ServiceConfig config;
    notary::ApiKey key;
    NotaryApi api;
};

void warnOfClock(const NotaryApi &api)
{
    const qint64 offset = api.clock().offset();
    if (std::abs(offset) > farOffSeconds)
        warn(u"this machine's clock is %1 minutes %2 the service's"_s.arg(
            QString::number((std::abs(offset) + 30) / 60), offset > 0 ? u"behind"_s : u"ahead of"_s));
}

/// A key of Apple's is none of the service of this machine, which its refusal does not tell.
int failCall(const ParsedArguments &arguments, const Session &session, ServiceFailure failure)
{
    constexpr int unauthenticated = 401;
    if (failure.code == unauthenticated && session.config.isLocal)
        failure.text +=
            u" The service of this machine knows only the keys that sealwright-keychain make-api-key has made."_s;
    return fail(arguments, failure);
}

/// Whether a file begins or ends as one that the service takes: a zip archive, a package, a disk image.
bool isOfAKindToUpload(const QString &path)
{
    constexpr qint64 trailer = 512;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(4);
    const bool hasTrailer =
        file.size() >= trailer && file.seek(file.size() - trailer) && file.read(4) == "koly";
    return head == "PK\3\4" || head == "PK\5\6" || head == "xar!" || hasTrailer;
}

int notarizeApp(const ParsedArguments &arguments, Session &session)
{
    const QString path = argument(arguments, "-f");
    const auto file = notary::UploadFile::open(path);
    if (!file)
        return fail(arguments, file.error());
    if (!isOfAKindToUpload(path))
        return fail(
            arguments,
            u"'%1' is no zip archive, no disk image and no package, and the notary service takes nothing else."_s
                .arg(path));
    printError("altool: uploading to the notary service at "
               + notary::hostAndPort(session.config.api).toStdString() + "\n");
    ProgressLine progress;
    ProgressFile forPrograms(path);
    const auto show = [&](qint64 sent, qint64 size) {
        progress.show(sent, size);
        forPrograms.show(sent, size);
    };
    const auto uploaded = notary::Upload(session.api, session.config, **file, show).run();
    if (const auto *failure = std::get_if<ServiceFailure>(&uploaded))
        return failCall(arguments, session, *failure);
    const QString id = std::get<QString>(uploaded);
    const auto kept =
        keepReceipt(id, {(*file)->name(), (*file)->sha256(), argument(arguments, "--primary-bundle-id")});
    if (!kept)
        warn(u"no receipt of the upload is kept: "_s + kept.error());
    return answer(uploadReply(id, path, formatFrom(arguments)));
}

/// The hash that the log tells of, where this machine has no receipt.
QByteArray hashIn(const QByteArray &log)
{
    return QJsonDocument::fromJson(log)[u"sha256"].toString().toLower().toLatin1();
}

/// The report of a request that is decided, with its log kept on this machine: its address is a secret.
InfoReport withLog(NotaryApi &api, InfoReport report)
{
    const auto log = api.log(report.submission.id);
    if (const auto *failure = std::get_if<ServiceFailure>(&log)) {
        warn(u"the log is not to be had: "_s + failure->text);
        return report;
    }
    const QByteArray bytes = std::get<QByteArray>(log);
    report.logPath = keepLog(report.submission.id, bytes);
    if (report.logPath.isEmpty())
        warn(u"the log cannot be kept on this machine"_s);
    if (report.hash.isEmpty())
        report.hash = hashIn(bytes);
    return report;
}

int notarizationInfo(const ParsedArguments &arguments, Session &session)
{
    const QString id = argument(arguments, "--notarization-info");
    if (!notary::isRequestId(id))
        return failUnknown(arguments, id);
    const auto found = session.api.status(id);
    if (const auto *failure = std::get_if<ServiceFailure>(&found))
        return failCall(arguments, session, *failure);
    const auto submission = std::get<std::optional<Submission>>(found);
    if (!submission)
        return failUnknown(arguments, id);
    const StatusTexts texts = textsOf(submission->status);
    if (!texts.isKnown)
        warn(
            u"the service answers with the status '%1', which is not known here; the request is taken for one in progress"_s
                .arg(notary::printable(submission->status)));
    InfoReport report{*submission, receiptOf(id).sha256, {}};
    if (texts.isDecided)
        report = withLog(session.api, report);
    return answer(infoReply(report, formatFrom(arguments)));
}

int notarizationHistory(const ParsedArguments &arguments, Session &session)
{
    const qulonglong page = argument(arguments, "--notarization-history").toULongLong();
    if (page > 0)
        return answer(historyReply({}, page, formatFrom(arguments)));
    const auto history = session.api.history();
    if (const auto *failure = std::get_if<ServiceFailure>(&history))
        return failCall(arguments, session, *failure);
    return answer(historyReply(std::get<QList<Submission>>(history), page, formatFrom(arguments)));
}

int listProviders(const ParsedArguments &arguments, Session &session)
{
    const auto history = session.api.history(); // to prove the key
    if (const auto *failure = std::get_if<ServiceFailure>(&history))
        return failCall(arguments, session, *failure);
    const QString team = session.key.team.isEmpty() ? session.key.keyId : session.key.team;
    return answer(
        providersReply({team, u"Team of API key "_s + session.key.keyId, team}, formatFrom(arguments)));
}

int carryOut(const ParsedArguments &arguments, Session &session)
{
    if (arguments.has("--notarize-app"))
        return notarizeApp(arguments, session);
    if (arguments.has("--list-providers"))
        return listProviders(arguments, session);
    return arguments.has("--notarization-info") ? notarizationInfo(arguments, session)
                                                : notarizationHistory(arguments, session);
}

bool isNumber(const QString &text)
{
    bool isNumber = false;
    static_cast<void>(text.toULongLong(&isNumber));
    return isNumber && text.front().isDigit();
}

/// What is wrong with the command line as a whole; empty if nothing is.
std::string argumentProblem(const ParsedArguments &arguments)
{
    if (!arguments.operands.empty())
        return "unexpected argument '" + arguments.operands.front() + "'";
    const int commands = arguments.has("--notarize-app") + arguments.has("--notarization-info")
        + arguments.has("--notarization-history") + arguments.has("--list-providers");
    if (commands != 1)
        return "exactly one command is needed";
    if (!arguments.has("--apiKey") && (arguments.value("-u").empty() || !arguments.has("-p")))
        return "-u and -p are needed";
    if (arguments.has("--notarize-app")
        && (arguments.value("-f").empty() || arguments.value("--primary-bundle-id").empty()))
        return "--notarize-app needs -f and --primary-bundle-id";
    if (arguments.has("--notarization-history") && !isNumber(argument(arguments, "--notarization-history")))
        return "--notarization-history needs the number of a page";
    const std::string format =
        arguments.has("--output-format") ? arguments.value("--output-format") : "normal";
    return format == "normal" || format == "xml" ? "" : "unknown output format '" + format + "'";
}

/// Which service would be asked now.
std::string serviceLine()
{
    const auto config = notary::readServiceConfig();
    if (!config)
        return "\nThe notary service cannot be asked: " + config.error().toStdString() + "\n";
    const QString service = config->isLocal ? u"that of this machine"_s : notary::hostAndPort(config->api);
    return "\nThe notary service that is asked is " + service.toStdString()
        + "; sealwright-keychain use-notary chooses it.\n";
}

} // namespace

std::string altoolHelp()
{
    // The application that runs this tool reads the version out of such a line, so it stands on one.
    return "altool of Sealwright's toolchain. This is not Apple's program; it takes the arguments of\n"
           "altool, Copyright (c) 2009-2019, Apple Inc. Version "
        + toolVersion().toStdString() + "\n\n" + std::string(usage) + std::string(details) + serviceLine();
}

std::vector<Option> altoolOptions()
{
    return {{{"--notarize-app"}},
            {{"--notarization-info"}, OptionValue::required},
            {{"--notarization-history"}, OptionValue::required},
            {{"--list-providers"}},
            {{"-f", "--file"}, OptionValue::required},
            {{"--primary-bundle-id"}, OptionValue::required},
            {{"-u", "--username"}, OptionValue::required},
            {{"-p", "--password"}, OptionValue::required},
            {{"--apiKey"}, OptionValue::required},
            {{"--apiIssuer"}, OptionValue::required},
            {{"--asc-provider"}, OptionValue::required},
            {{"--output-format"}, OptionValue::required},
            {{"-h", "--help"}}};
}

int runAltool(const ParsedArguments &arguments)
{
    const std::string complaint = argumentProblem(arguments);
    if (!complaint.empty())
        return refuseArguments("altool", complaint, usage);
    const auto key = readCredentials(arguments);
    const auto config = key ? notary::ensureService() : key.failure();
    if (!config) {
        const int status = fail(arguments, config.error());
        warnOfEnvironment(arguments);
        return status;
    }
    Session session{*config, *key, NotaryApi(*config, *key)};
    const int status = carryOut(arguments, session);
    warnOfEnvironment(arguments); // last, since an upload says first where it goes
    warnOfClock(session.api);
    return status;
}

} // namespace toolchain
