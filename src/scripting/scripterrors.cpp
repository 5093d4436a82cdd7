#include "scripting/scripterrors.h"

#include "platform/scriptcommand.h"
#include "scripting/logging.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype tooLongForErrorText = 1500;

struct Record {
    QLatin1StringView errorName;
    qint64 errorNumber;
};

// Some names have no failure any more, and some failures have no row here: scripts in use rely on both.
constexpr Record records[] = {
    {"Missing Apple ID"_L1, 1100},
    {"Missing Password"_L1, 1101},
    {"No Identities Found"_L1, 1102},
    {"Cannot Continue"_L1, 1103},
    {"Cannot Create Working Folder"_L1, 1104},
    {"Cannot Empty Working Folder"_L1, 1105},
    {"Cannot Copy App"_L1, 1106},
    {"Cannot Create Entitlements"_L1, 1107},
    {"Error Clearing Attributes"_L1, 1108},
    {"Error Thinning Binaries"_L1, 1109},
    {"Error Signing Code"_L1, 1110},
    {"Error Thinning Framework Binary"_L1, 1111},
    {"Error Verifying Signing"_L1, 1112},
    {"Error Making Archive"_L1, 1113},
    {"Error Uploading Archive"_L1, 1114},
    {"No RequestUUID Returned"_L1, 1115},
    {"Failed to Retrieve Info"_L1, 1116},
    {"Notarization Failed"_L1, 1117},
    {"Process Cancelled"_L1, 1118},
    {"Error Verifying Code Signing"_L1, 1119},
    {"Cannot Fetch History"_L1, 1120},
    {"Stapling Failed"_L1, 1200},
    {"Stapling Not Confirmed"_L1, 1201},
};

} // namespace

void setScriptError(qint64 number, const QString &text)
{
    qCDebug(scriptingLogging) << "refused:" << number << text;
    const auto command = ScriptCommand::executingCommand();
    if (!command)
        return;
    if (!text.isNull())
        command->setScriptErrorString(text);
    command->setScriptErrorNumber(number);
}

qint64 errorNumberFromString(const QString &title)
{
    const auto *const found =
        std::find_if(std::begin(records), std::end(records),
                     [&title](const Record &record) { return record.errorName == title; });
    return found == std::end(records) ? scriptErrorGeneral : found->errorNumber;
}

ScriptFailure scriptFailure(const QString &title, const QString &text, const QString &logError)
{
    const qint64 number = errorNumberFromString(title);
    if (text != seeTheLog)
        return {number, title + u": "_s + text, {}};
    if (logError.size() >= tooLongForErrorText)
        return {number, title + u": See the 'from' parameter for detailed error message."_s, logError};
    return {number, title + u": "_s + logError, {}};
}

} // namespace sealwright
