#include "formats/notaryrequest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr int pollsInProgress = 2;
constexpr qint64 longestReviewInSeconds = 120;

QJsonArray issuesForm(const NotaryRequest &request)
{
    QJsonArray form;
    for (const NotaryIssue &issue : request.issues)
        form.append(QJsonObject{{u"path"_s, issue.path}, {u"message"_s, issue.message}});
    return form;
}

QList<NotaryIssue> issuesFrom(const QJsonArray &form)
{
    QList<NotaryIssue> issues;
    for (const QJsonValue &issue : form)
        issues.append({issue[u"path"].toString(), issue[u"message"].toString()});
    return issues;
}

QJsonArray sealDigestsForm(const NotaryRequest &request)
{
    QJsonArray form;
    for (const QByteArray &digest : request.sealDigests)
        form.append(QString::fromLatin1(digest));
    return form;
}

QList<QByteArray> sealDigestsFrom(const QJsonArray &form)
{
    QList<QByteArray> digests;
    for (const QJsonValue &digest : form)
        digests.append(digest.toString().toLatin1());
    return digests;
}

QJsonValue logIssues(const NotaryRequest &request)
{
    if (request.issues.isEmpty())
        return QJsonValue::Null;
    QJsonArray entries;
    for (const NotaryIssue &issue : request.issues) {
        entries.append(QJsonObject{{u"severity"_s, u"error"_s},
                                   {u"code"_s, QJsonValue::Null},
                                   {u"path"_s, issue.path},
                                   {u"message"_s, issue.message},
                                   {u"docUrl"_s, QJsonValue::Null},
                                   {u"architecture"_s, QJsonValue::Null}});
    }
    return entries;
}

} // namespace

Verdict NotaryRequest::verdict() const
{
    const bool isDecided =
        polls > pollsInProgress || uploaded.secsTo(QDateTime::currentDateTimeUtc()) >= longestReviewInSeconds;
    if (!isDecided)
        return Verdict::InProgress;
    return issues.isEmpty() ? Verdict::Success : Verdict::Invalid;
}

QByteArray jsonOf(const NotaryRequest &request)
{
    const QJsonObject form{
        {u"RequestUUID"_s, request.uuid},
        {u"archive"_s, request.archiveName},
        {u"sha256"_s, QString::fromLatin1(request.archiveDigest)},
        {u"primaryBundleID"_s, request.bundleIdentifier},
        {u"uploaded"_s, request.uploaded.toString(Qt::ISODate)},
        {u"issues"_s, issuesForm(request)},
        {u"seals"_s, sealDigestsForm(request)},
        {u"polls"_s, request.polls},
    };
    return QJsonDocument(form).toJson();
}

std::optional<NotaryRequest> requestFromJson(const QByteArray &json)
{
    const QJsonObject form = QJsonDocument::fromJson(json).object();
    NotaryRequest request;
    request.uuid = form[u"RequestUUID"].toString();
    request.archiveName = form[u"archive"].toString();
    request.archiveDigest = form[u"sha256"].toString().toLatin1();
    request.bundleIdentifier = form[u"primaryBundleID"].toString();
    request.uploaded = QDateTime::fromString(form[u"uploaded"].toString(), Qt::ISODate);
    request.issues = issuesFrom(form[u"issues"].toArray());
    request.sealDigests = sealDigestsFrom(form[u"seals"].toArray());
    request.polls = form[u"polls"].toInt(-1);
    const bool isWhole = !QUuid::fromString(request.uuid).isNull() && request.uploaded.isValid()
        && request.polls >= 0 && form[u"issues"].isArray() && form[u"seals"].isArray();
    return isWhole ? std::optional(request) : std::nullopt;
}

QByteArray logOf(const NotaryRequest &request)
{
    const bool isAccepted = request.issues.isEmpty();
    const QJsonObject log{
        {u"logFormatVersion"_s, 1},
        {u"jobId"_s, request.uuid},
        {u"status"_s, isAccepted ? u"Accepted"_s : u"Invalid"_s},
        {u"statusSummary"_s,
         isAccepted ? u"Approved by this machine's stand-in for the notary service, not by Apple"_s
                    : u"Archive contains critical validation errors"_s},
        {u"statusCode"_s, isAccepted ? 0 : 4000},
        {u"archiveFilename"_s, request.archiveName},
        {u"uploadDate"_s, request.uploaded.toString(Qt::ISODate)},
        {u"sha256"_s, QString::fromLatin1(request.archiveDigest)},
        {u"issues"_s, logIssues(request)},
    };
    return QJsonDocument(log).toJson();
}

} // namespace toolchain
