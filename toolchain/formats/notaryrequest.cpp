#include "formats/notaryrequest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr int pollsInProgress = 1; // so that everybody practises a wait, and nobody a long one
constexpr qint64 longestReviewInSeconds = 120;

QJsonArray issuesForm(const NotaryRequest &request)
{
    QJsonArray form;
    for (const NotaryIssue &issue : request.issues)
        form.append(QJsonObject{{u"path"_s, issue.path},
                                {u"message"_s, issue.message},
                                {u"severity"_s, issue.severity},
                                {u"architecture"_s, issue.architecture},
                                {u"docUrl"_s, issue.docUrl}});
    return form;
}

QList<NotaryIssue> issuesFrom(const QJsonArray &form)
{
    QList<NotaryIssue> issues;
    for (const QJsonValue &issue : form)
        issues.append({issue[u"path"].toString(), issue[u"message"].toString(),
                       issue[u"severity"].toString(u"error"_s), issue[u"architecture"].toString(),
                       issue[u"docUrl"].toString()});
    return issues;
}

QJsonArray ticketForm(const NotaryRequest &request)
{
    QJsonArray form;
    for (const TicketEntry &entry : request.ticketContents)
        form.append(QJsonObject{{u"path"_s, entry.path},
                                {u"hashType"_s, entry.hashType},
                                {u"hash"_s, QString::fromLatin1(entry.hash)},
                                {u"arch"_s, entry.architecture}});
    return form;
}

QList<TicketEntry> ticketFrom(const QJsonArray &form)
{
    QList<TicketEntry> entries;
    for (const QJsonValue &entry : form)
        entries.append({entry[u"path"].toString(), entry[u"hashType"].toInt(2),
                        entry[u"hash"].toString().toLatin1(), entry[u"arch"].toString()});
    return entries;
}

QStringList textsFrom(const QJsonArray &form)
{
    QStringList texts;
    for (const QJsonValue &text : form)
        texts.append(text.toString());
    return texts;
}

/// "Announced" and so on, in the order of the phases.
const std::array phaseNames{u"announced"_s, u"uploaded"_s, u"reviewed"_s};

Phase phaseFrom(const QJsonValue &name)
{
    const auto found = std::find(phaseNames.begin(), phaseNames.end(), name.toString(u"reviewed"_s));
    return found == phaseNames.end() ? Phase::announced : Phase(found - phaseNames.begin());
}

QJsonValue orNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

/// The ticket's entries in the log's words; null where there is no ticket.
QJsonValue logTicket(const NotaryRequest &request)
{
    if (request.ticketContents.isEmpty() || !request.isApproved())
        return QJsonValue::Null;
    QJsonArray entries;
    for (const TicketEntry &entry : request.ticketContents) {
        QJsonObject form{{u"path"_s, entry.path},
                         {u"digestAlgorithm"_s, entry.hashType == 1 ? u"SHA-1"_s : u"SHA-256"_s},
                         {u"cdhash"_s, QString::fromLatin1(entry.hash)}};
        if (!entry.architecture.isEmpty())
            form.insert(u"arch"_s, entry.architecture);
        entries.append(form);
    }
    return entries;
}

QJsonValue logIssues(const NotaryRequest &request)
{
    if (request.issues.isEmpty())
        return QJsonValue::Null;
    QJsonArray entries;
    for (const NotaryIssue &issue : request.issues) {
        entries.append(QJsonObject{{u"severity"_s, issue.severity},
                                   {u"code"_s, QJsonValue::Null},
                                   {u"path"_s, issue.path},
                                   {u"message"_s, issue.message},
                                   {u"docUrl"_s, orNull(issue.docUrl)},
                                   {u"architecture"_s, orNull(issue.architecture)}});
    }
    return entries;
}

} // namespace

Verdict NotaryRequest::verdict() const
{
    const bool isDecided = phase == Phase::reviewed
        && (polls > pollsInProgress
            || uploaded.secsTo(QDateTime::currentDateTimeUtc()) >= longestReviewInSeconds);
    if (!isDecided)
        return Verdict::inProgress;
    return isApproved() ? Verdict::success : Verdict::invalid;
}

bool NotaryRequest::isApproved() const
{
    return std::none_of(issues.begin(), issues.end(),
                        [](const NotaryIssue &issue) { return issue.severity == u"error"_s; });
}

QByteArray jsonOf(const NotaryRequest &request)
{
    const QJsonObject form{
        {u"RequestUUID"_s, request.uuid},
        {u"archive"_s, request.archiveName},
        {u"sha256"_s, QString::fromLatin1(request.archiveDigest)},
        {u"primaryBundleID"_s, request.bundleIdentifier},
        {u"uploaded"_s, request.uploaded.toString(Qt::ISODateWithMs)},
        {u"phase"_s, phaseNames.at(std::size_t(request.phase))},
        {u"decided"_s, request.decided.toString(Qt::ISODateWithMs)},
        {u"webhooks"_s, QJsonArray::fromStringList(request.webhooks)},
        {u"team"_s, request.team},
        {u"ticket"_s, ticketForm(request)},
        {u"issues"_s, issuesForm(request)},
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
    request.uploaded = QDateTime::fromString(form[u"uploaded"].toString(), Qt::ISODateWithMs);
    request.phase = phaseFrom(form[u"phase"]);
    request.decided = QDateTime::fromString(form[u"decided"].toString(), Qt::ISODateWithMs);
    request.webhooks = textsFrom(form[u"webhooks"].toArray());
    request.team = form[u"team"].toString();
    request.ticketContents = ticketFrom(form[u"ticket"].toArray());
    request.issues = issuesFrom(form[u"issues"].toArray());
    request.polls = form[u"polls"].toInt(-1);
    const bool isWhole = !QUuid::fromString(request.uuid).isNull() && request.uploaded.isValid()
        && request.polls >= 0 && form[u"issues"].isArray();
    return isWhole ? std::optional(request) : std::nullopt;
}

QByteArray logOf(const NotaryRequest &request)
{
    const bool isAccepted = request.isApproved();
    const QJsonObject log{
        {u"logFormatVersion"_s, 1},
        {u"jobId"_s, request.uuid},
        {u"status"_s, isAccepted ? u"Accepted"_s : u"Invalid"_s},
        {u"statusSummary"_s,
         isAccepted ? u"Ready for distribution on this machine; Apple was not asked"_s
                    : u"Archive contains critical validation errors"_s},
        {u"statusCode"_s, isAccepted ? 0 : 4000},
        {u"archiveFilename"_s, request.archiveName},
        {u"uploadDate"_s, request.uploaded.toString(Qt::ISODate)},
        {u"sha256"_s, QString::fromLatin1(request.archiveDigest)},
        {u"ticketContents"_s, logTicket(request)},
        {u"issues"_s, logIssues(request)},
    };
    return QJsonDocument(log).toJson();
}

} // namespace toolchain
