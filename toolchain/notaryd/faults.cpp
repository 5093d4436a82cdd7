#include "notaryd/faults.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace notaryd {

namespace {

constexpr double longestWait = 1e6; // seconds
constexpr double largestReply = 1e9; // bytes
constexpr int leastStatus = 200;
constexpr int greatestStatus = 599;

enum class Meets {
    reply, ///< one of these meets a request
    pace, ///< these come on top
    thing ///< and these keep hold of a submission or of the clock, for ever unless a count is given
};

using Check = bool (*)(const QJsonValue &);

struct Kind {
    Meets meets;
    Check isValue;
};

bool isSeconds(const QJsonValue &value)
{
    return value.isDouble() && value.toDouble() >= 0 && value.toDouble() <= longestWait;
}

bool isSecondsOrNone(const QJsonValue &value)
{
    return value.isUndefined() || value.isNull() || isSeconds(value);
}

bool isClock(const QJsonValue &value)
{
    return value.isDouble() && value.toDouble() >= -longestWait * 100
        && value.toDouble() <= longestWait * 100;
}

bool isCount(const QJsonValue &value)
{
    return value.isDouble() && value.toDouble() >= 0 && value.toDouble() == double(qint64(value.toDouble()))
        && value.toDouble() <= largestReply;
}

bool isRate(const QJsonValue &value)
{
    return value.isDouble() && value.toDouble() > 0 && value.toDouble() <= largestReply;
}

bool isNothing(const QJsonValue &value)
{
    return value.isUndefined() || value.isNull();
}

bool isCountOrNone(const QJsonValue &value)
{
    return isNothing(value) || isCount(value);
}

bool isWord(const QJsonValue &value)
{
    return value.isString() && !value.toString().isEmpty();
}

bool isHttpStatus(const QJsonValue &value)
{
    return isCount(value) && value.toInt() >= leastStatus && value.toInt() <= greatestStatus;
}

bool hasOnly(const QJsonObject &form, const QSet<QString> &keys)
{
    const QStringList found = form.keys();
    return std::all_of(found.begin(), found.end(),
                       [&keys](const QString &key) { return keys.contains(key); });
}

bool isStatus(const QJsonValue &value)
{
    static const QSet<QString> kinds{u"json"_s, u"text"_s, u"html"_s, u"agreement"_s, u"provider"_s};
    if (!value.isObject())
        return isHttpStatus(value);
    const QJsonObject form = value.toObject();
    return hasOnly(form, {u"code"_s, u"kind"_s, u"retryAfter"_s}) && isHttpStatus(form[u"code"])
        && (!form.contains(u"kind"_s) || kinds.contains(form[u"kind"].toString()))
        && (!form.contains(u"retryAfter"_s) || isCount(form[u"retryAfter"]));
}

bool isStorageCode(const QJsonValue &value)
{
    return value.isString() && storageStatus(value.toString()) != 0;
}

bool isStorageError(const QJsonValue &value)
{
    if (!value.isObject())
        return isStorageCode(value);
    const QJsonObject form = value.toObject();
    return hasOnly(form, {u"code"_s, u"late"_s}) && isStorageCode(form[u"code"])
        && (!form.contains(u"late"_s) || form[u"late"].isBool());
}

const QMap<QString, Kind> &kinds()
{
    static const QMap<QString, Kind> all{
        {u"status"_s, {Meets::reply, isStatus}},
        {u"s3-error"_s, {Meets::reply, isStorageError}},
        {u"stall"_s, {Meets::reply, isSecondsOrNone}},
        {u"drip"_s, {Meets::reply, isRate}},
        {u"cut"_s, {Meets::reply, isCount}},
        {u"close"_s, {Meets::reply, isNothing}},
        {u"reset"_s, {Meets::reply, isCountOrNone}},
        {u"unknown-status"_s, {Meets::reply, isWord}},
        {u"missing-field"_s, {Meets::reply, isWord}},
        {u"not-json"_s, {Meets::reply, isNothing}},
        {u"huge"_s, {Meets::reply, isCount}},
        {u"log-not-json"_s, {Meets::reply, isNothing}},
        {u"complete-error"_s, {Meets::reply, isStorageCode}},
        {u"delay"_s, {Meets::pace, isSecondsOrNone}},
        {u"slow-read"_s, {Meets::pace, isRate}},
        {u"never-decided"_s, {Meets::thing, isNothing}},
        {u"vanishes"_s, {Meets::thing, isSeconds}},
        {u"unknown-at-first"_s, {Meets::thing, isCount}},
        {u"no-log-at-first"_s, {Meets::thing, isCount}},
        {u"no-ticket-for"_s, {Meets::thing, isSeconds}},
        {u"clock"_s, {Meets::thing, isClock}},
    };
    return all;
}

Error objection(qsizetype index, const QString &why)
{
    return {u"fault %1: %2"_s.arg(QString::number(index + 1), why)};
}

bool isWhole(const QJsonValue &value, qint64 least)
{
    return value.isUndefined()
        || (value.isDouble() && value.toDouble() == double(value.toInteger()) && value.toInteger() >= least);
}

Result<Fault> faultFrom(const QJsonObject &form, qsizetype index)
{
    const QString name = form[u"fault"].toString();
    const auto kind = kinds().find(name);
    if (kind == kinds().end())
        return objection(index, u"there is no fault \"%1\""_s.arg(name));
    if (!hasOnly(form, {u"fault"_s, u"path"_s, u"method"_s, u"skip"_s, u"count"_s, u"value"_s}))
        return objection(index, u"it has a member that is none"_s);
    if (!kind->isValue(form[u"value"]))
        return objection(index, u"this is no value of \"%1\""_s.arg(name));
    if (!isWhole(form[u"skip"], 0) || !isWhole(form[u"count"], -1))
        return objection(index, u"skip and count are whole numbers"_s);
    const QRegularExpression path(form[u"path"].toString());
    const bool areTexts = (form[u"path"].isUndefined() || form[u"path"].isString())
        && (form[u"method"].isUndefined() || form[u"method"].isString());
    if (!path.isValid() || !areTexts)
        return objection(index, u"path is no regular expression or method no text"_s);
    const qint64 usually = kind->meets == Meets::thing ? -1 : 1;
    return Fault{name,
                 path,
                 form[u"method"].toString().toUpper().toLatin1(),
                 form[u"skip"].toInteger(0),
                 form[u"count"].toInteger(usually),
                 form[u"value"]};
}

/// The storage's errors meet the storage alone, and what spoils the service's replies meets none of the
/// storage's.
bool isPlaceOf(const QString &fault, const Request &request)
{
    const bool isStorage = request.path.startsWith("/s3/");
    if (fault == u"s3-error"_s)
        return isStorage;
    if (fault == u"complete-error"_s)
        return isStorage && request.method == "POST" && request.asks("uploadId");
    if (fault == u"log-not-json"_s)
        return request.path.startsWith("/artifacts/");
    if (fault == u"unknown-status"_s)
        return request.method == "GET" && request.path.startsWith("/notary/v2/submissions")
            && !request.path.endsWith("/logs");
    return true;
}

} // namespace

int storageStatus(const QString &code)
{
    static const QMap<QString, int> statuses{{u"RequestTimeTooSkewed"_s, 403},
                                             {u"SignatureDoesNotMatch"_s, 403},
                                             {u"InvalidAccessKeyId"_s, 403},
                                             {u"AccessDenied"_s, 403},
                                             {u"ExpiredToken"_s, 400},
                                             {u"RequestTimeout"_s, 400},
                                             {u"BadDigest"_s, 400},
                                             {u"XAmzContentSHA256Mismatch"_s, 400},
                                             {u"EntityTooLarge"_s, 400},
                                             {u"EntityTooSmall"_s, 400},
                                             {u"InvalidPart"_s, 400},
                                             {u"InvalidPartOrder"_s, 400},
                                             {u"MalformedXML"_s, 400},
                                             {u"InvalidArgument"_s, 400},
                                             {u"InvalidToken"_s, 400},
                                             {u"NoSuchUpload"_s, 404},
                                             {u"NoSuchKey"_s, 404},
                                             {u"MethodNotAllowed"_s, 405},
                                             {u"MissingContentLength"_s, 411},
                                             {u"InternalError"_s, 500},
                                             {u"NotImplemented"_s, 501},
                                             {u"SlowDown"_s, 503},
                                             {u"PermanentRedirect"_s, 301},
                                             {u"TemporaryRedirect"_s, 307}};
    return statuses.value(code, 0);
}

Result<QList<Fault>> faultsFromJson(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return Error{u"not a JSON list"_s};
    QList<Fault> faults;
    for (const QJsonValue &entry : document.array()) {
        const auto fault = faultFrom(entry.toObject(), faults.size());
        if (!fault)
            return fault.failure();
        faults.append(*fault);
    }
    return faults;
}

void Faults::replace(const QList<Fault> &faults)
{
    const std::scoped_lock lock(m_mutex);
    m_entries.clear();
    for (const Fault &fault : faults)
        m_entries.append({fault, {}});
}

bool Faults::meets(Entry &entry, const Request &request)
{
    Fault &fault = entry.fault;
    if (fault.count == 0 || (!fault.method.isEmpty() && fault.method != request.method)
        || !isPlaceOf(fault.name, request) || !fault.path.match(QString::fromUtf8(request.path)).hasMatch())
        return false;
    if (fault.skip > 0) {
        --fault.skip;
        return false;
    }
    if (fault.count > 0)
        --fault.count;
    return true;
}

std::optional<Fault> Faults::outcome(const Request &request)
{
    const std::scoped_lock lock(m_mutex);
    for (Entry &entry : m_entries) {
        if (kinds().value(entry.fault.name).meets == Meets::reply && meets(entry, request))
            return entry.fault;
    }
    return std::nullopt;
}

std::optional<Fault> Faults::named(const QString &name, const Request &request)
{
    const std::scoped_lock lock(m_mutex);
    for (Entry &entry : m_entries) {
        if (entry.fault.name == name && meets(entry, request))
            return entry.fault;
    }
    return std::nullopt;
}

std::optional<Fault> Faults::holding(const QString &name, const QString &thing, const Request &request)
{
    const std::scoped_lock lock(m_mutex);
    for (Entry &entry : m_entries) {
        if (entry.fault.name != name)
            continue;
        if (entry.things.contains(thing))
            return entry.fault;
        if (!meets(entry, request))
            continue;
        entry.things.append(thing);
        return entry.fault;
    }
    return std::nullopt;
}

} // namespace notaryd
