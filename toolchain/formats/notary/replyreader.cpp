#include "formats/notary/replyreader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <algorithm>

#include "formats/notary/serviceconfig.h"

using namespace Qt::StringLiterals;

namespace toolchain::notary {

namespace {

constexpr qsizetype longestUploadId = 4096;

QJsonValue dataIn(const QByteArray &body)
{
    return QJsonDocument::fromJson(body).object()[u"data"];
}

QByteArray bytesOf(const QJsonValue &value)
{
    return value.toString().toUtf8();
}

/// Credentials become parts of header lines, where nothing but visible characters has a place.
bool isHeaderWord(const QByteArray &text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return byte > ' ' && byte < 0x7f; });
}

bool canBeSent(const UploadCredentials &credentials)
{
    return !credentials.accessKey.isEmpty() && !credentials.secretKey.isEmpty()
        && isHeaderWord(credentials.accessKey) && isHeaderWord(credentials.sessionToken);
}

Submission submissionFrom(const QJsonValue &data)
{
    const QJsonValue attributes = data[u"attributes"];
    return {data[u"id"].toString(), attributes[u"name"].toString(),
            QDateTime::fromString(attributes[u"createdDate"].toString(), Qt::ISODateWithMs).toUTC(),
            attributes[u"status"].toString()};
}

} // namespace

bool isRequestId(const QString &text)
{
    static const QRegularExpression form(uR"(\A[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\z)"_s);
    return form.match(text).hasMatch();
}

std::optional<UploadPlace> readPlace(const QByteArray &body)
{
    const QJsonValue data = dataIn(body);
    const QJsonValue attributes = data[u"attributes"];
    const UploadPlace place{data[u"id"].toString(),
                            bytesOf(attributes[u"bucket"]),
                            bytesOf(attributes[u"object"]),
                            {bytesOf(attributes[u"awsAccessKeyId"]),
                             bytesOf(attributes[u"awsSecretAccessKey"]),
                             bytesOf(attributes[u"awsSessionToken"])}};
    const bool isWhole = isRequestId(place.id) && !place.bucket.isEmpty() && !place.object.isEmpty()
        && canBeSent(place.credentials);
    return isWhole ? std::optional(place) : std::nullopt;
}

std::optional<QList<Submission>> readHistory(const QByteArray &body)
{
    const QJsonValue data = dataIn(body);
    if (!data.isArray())
        return std::nullopt;
    QList<Submission> submissions;
    for (const QJsonValue &entry : data.toArray()) {
        if (isRequestId(entry[u"id"].toString()))
            submissions.append(submissionFrom(entry));
    }
    std::stable_sort(submissions.begin(), submissions.end(),
                     [](const Submission &a, const Submission &b) { return a.created > b.created; });
    return submissions;
}

std::optional<Submission> readStatus(const QByteArray &body)
{
    const Submission submission = submissionFrom(dataIn(body));
    return submission.status.isEmpty() ? std::nullopt : std::optional(submission);
}

std::optional<QUrl> readLogAddress(const QByteArray &body)
{
    const QUrl url(dataIn(body)[u"attributes"][u"developerLogUrl"].toString());
    return isAcceptable(url) ? std::optional(url) : std::nullopt;
}

bool isLogOf(const QString &id, const QByteArray &bytes)
{
    return QJsonDocument::fromJson(bytes).object()[u"jobId"].toString().compare(id, Qt::CaseInsensitive) == 0;
}

QByteArray uploadIdIn(const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    if (!reader.readNextStartElement())
        return {};
    while (reader.readNextStartElement()) {
        if (reader.name() != u"UploadId"_s) {
            reader.skipCurrentElement();
            continue;
        }
        const QByteArray identifier = reader.readElementText(QXmlStreamReader::SkipChildElements).toUtf8();
        return identifier.size() > longestUploadId ? QByteArray() : identifier;
    }
    return {};
}

} // namespace toolchain::notary
