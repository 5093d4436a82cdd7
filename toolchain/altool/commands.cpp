#include "altool/commands.h"

#include "altool/providers.h"
#include "formats/notaryreview.h"
#include "formats/notarystate.h"
#include "formats/passwords.h"
#include "formats/statefolder.h"
#include "support/console.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr std::string_view usage = R"(Usage: altool --notarize-app -f FILE --primary-bundle-id ID CREDENTIALS
       altool --notarization-info UUID CREDENTIALS
       altool --notarization-history PAGE CREDENTIALS
       altool --list-providers CREDENTIALS
       altool --help
CREDENTIALS: -u APPLE-ID -p @keychain:ITEM | -p @env:VARIABLE | -p PASSWORD
For each of them: [--asc-provider NAME] [--output-format normal|xml]
)";

constexpr std::string_view details = R"(
Sends a zip archive, a disk image or a package to the notary and asks what became of it. The notary is a
stand-in too: a folder on this machine, which keeps the file's digest and looks whether the bundles at its top
bear seals that agree with their files, and whether a package bears a signature that agrees with its. Into a
package's payload it does not look. Nothing leaves the machine, nobody at Apple sees or approves anything, and an approval
is worth nothing elsewhere.

  -f, --file FILE          a zip archive, a disk image or a package, whatever it is called
  --primary-bundle-id ID   kept with the request
  --list-providers         the teams of the keychain folder's identities, which end in the team's identifier in
                           parentheses; that is the short name too. The account is not asked: there is none
  -u, --username ID        any; there are no accounts
  -p, --password PASSWORD  must be there; an item of the keychain folder is made by sealwright-keychain
  --asc-provider NAME      accepted and not looked at: all teams share one history
  --output-format FORMAT   normal (the default), or xml for a property list

A request is in progress for two questions, or for two minutes. The history has 20 requests a page, newest
first; pages are counted from 0, and each but the last one names the next.
Exit status: 0 done, 1 failed, 64 wrong arguments, 239 a RequestUUID that the notary does not know.
)";

constexpr int failedStatus = 1;
constexpr int unknownRequestStatus = 239;

int fail(const QString &message, int status = failedStatus)
{
    printError("*** Error: " + message.toStdString() + "\n");
    return status;
}

QString argument(const ParsedArguments &arguments, const char *name)
{
    return QString::fromStdString(arguments.value(name));
}

OutputFormat formatFrom(const ParsedArguments &arguments)
{
    return arguments.value("--output-format") == "xml" ? OutputFormat::Xml : OutputFormat::Normal;
}

int answer(const Reply &reply)
{
    if (!reply.error.isEmpty())
        return fail(u"The reply cannot be written: "_s + reply.error);
    print({reply.text.constData(), std::size_t(reply.text.size())});
    return 0;
}

/// Why the password cannot be had; empty if there is one. There is no account that could refuse it.
QString passwordProblem(const QString &password)
{
    const QString keychainPrefix = u"@keychain:"_s;
    const QString environmentPrefix = u"@env:"_s;
    if (password.startsWith(keychainPrefix)) {
        const auto item = readPassword(password.mid(keychainPrefix.size()));
        return item
            ? QString()
            : u"Unable to read the password. The specified item could not be found in the keychain."_s;
    }
    if (password.startsWith(environmentPrefix)) {
        const QByteArray variable = password.mid(environmentPrefix.size()).toUtf8();
        return qEnvironmentVariableIsEmpty(variable.constData())
            ? u"The environment holds no password under that name."_s
            : QString();
    }
    return password.isEmpty() ? u"The password is empty."_s : QString();
}

QByteArray digestOf(QFile &file)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return hash.addData(&file) ? hash.result().toHex() : QByteArray();
}

int notarizeApp(const ParsedArguments &arguments)
{
    const QString path = argument(arguments, "-f");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(u"Unable to read the file '%1': %2"_s.arg(path, file.errorString()));
    if (!canBeReviewed(path))
        return fail(
            u"'%1' is no zip archive, no disk image and no package, and this stand-in for the notary reads nothing else."_s
                .arg(path));
    NotaryRequest request;
    request.archiveDigest = digestOf(file);
    if (request.archiveDigest.isEmpty())
        return fail(u"Unable to read the file '%1': %2"_s.arg(path, file.errorString()));
    const Review review = reviewUpload(path);
    request.uuid = QUuid::createUuid().toString(QUuid::WithoutBraces);
    request.archiveName = QFileInfo(path).fileName();
    request.bundleIdentifier = argument(arguments, "--primary-bundle-id");
    request.uploaded = QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch(), Qt::UTC);
    request.issues = review.issues;
    request.sealDigests = review.sealDigests;
    const QString problem = NotaryState(notaryFolder()).store(request);
    if (!problem.isEmpty())
        return fail(u"Unable to keep the request: "_s + problem);
    return answer(uploadReply(request, path, formatFrom(arguments)));
}

int notarizationInfo(const ParsedArguments &arguments)
{
    const QString uuid = argument(arguments, "--notarization-info");
    const NotaryState state(notaryFolder());
    const NotaryLookup lookup = state.poll(uuid);
    if (!lookup.error.isEmpty())
        return fail(u"Unable to read the request: "_s + lookup.error);
    if (!lookup.request)
        return fail(u"Could not find the RequestUUID. The notary knows no request '%1'."_s.arg(uuid),
                    unknownRequestStatus);
    return answer(infoReply(*lookup.request, state.logPath(lookup.request->uuid), formatFrom(arguments)));
}

int notarizationHistory(const ParsedArguments &arguments)
{
    const NotaryHistory history = NotaryState(notaryFolder()).history();
    for (const QString &warning : history.warnings)
        printError("altool: warning: " + warning.toStdString() + "\n");
    const qulonglong page = argument(arguments, "--notarization-history").toULongLong();
    return answer(historyReply(history.requests, page, formatFrom(arguments)));
}

int listProviders(const ParsedArguments &arguments)
{
    const ProviderList list = readProviders(keychainFolder());
    for (const QString &warning : list.warnings)
        printError("altool: warning: " + warning.toStdString() + "\n");
    return answer(providersReply(list.providers, formatFrom(arguments)));
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
    if (arguments.value("-u").empty() || !arguments.has("-p"))
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

} // namespace

std::string altoolHelp()
{
    // The application that runs this tool reads the version out of such a line, so it stands on one.
    return "altool of Sealwright's toolchain. This is not Apple's program; it stands in for\n"
           "altool, Copyright (c) 2009-2019, Apple Inc. Version "
        + toolVersion().toStdString() + "\n\n" + std::string(usage) + std::string(details);
}

std::vector<Option> altoolOptions()
{
    return {{{"--notarize-app"}},
            {{"--notarization-info"}, OptionValue::Required},
            {{"--notarization-history"}, OptionValue::Required},
            {{"--list-providers"}},
            {{"-f", "--file"}, OptionValue::Required},
            {{"--primary-bundle-id"}, OptionValue::Required},
            {{"-u", "--username"}, OptionValue::Required},
            {{"-p", "--password"}, OptionValue::Required},
            {{"--asc-provider"}, OptionValue::Required},
            {{"--output-format"}, OptionValue::Required},
            {{"-h", "--help"}}};
}

int runAltool(const ParsedArguments &arguments)
{
    const std::string complaint = argumentProblem(arguments);
    if (!complaint.empty())
        return refuseArguments("altool", complaint, usage);
    const QString problem = passwordProblem(argument(arguments, "-p"));
    if (!problem.isEmpty())
        return fail(problem);
    if (arguments.has("--notarize-app"))
        return notarizeApp(arguments);
    if (arguments.has("--list-providers"))
        return listProviders(arguments);
    return arguments.has("--notarization-info") ? notarizationInfo(arguments)
                                                : notarizationHistory(arguments);
}

} // namespace toolchain
