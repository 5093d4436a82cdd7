#include "formats/notary/serviceerror.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStringList>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace toolchain::notary {

namespace {

constexpr qsizetype longestText = 500;
constexpr qsizetype longestCode = 100;
constexpr qsizetype readOfError = 64 * 1024;

/// The storage's errors are known by their codes; these say more than their messages do.
struct Meaning {
    const char *code;
    const char16_t *text;
};
constexpr Meaning meanings[] = {
    {"RequestTimeTooSkewed", u"this machine's clock differs from the storage's by more than 15 minutes"},
    {"SignatureDoesNotMatch", u"the storage does not accept the request's signature"},
    {"InvalidAccessKeyId", u"the storage does not know the upload's credentials"},
    {"AccessDenied", u"the storage denies the access"},
    {"ExpiredToken", u"the upload's credentials have expired"},
    {"RequestTimeout", u"the storage waited too long for the file's bytes"},
    {"BadDigest", u"the file was changed while it was being uploaded"},
    {"XAmzContentSHA256Mismatch", u"the file was changed while it was being uploaded"},
    {"EntityTooLarge", u"the file is too large for the storage"},
    {"NoSuchUpload", u"the storage does not know the upload any more"},
    {"InternalError", u"the storage has an internal error"},
    {"SlowDown", u"the storage asks to slow down"},
    {"PermanentRedirect", u"the storage is at another address or in another region"},
    {"TemporaryRedirect", u"the storage is at another address or in another region"},
};

/// The text of an element in the storage's XML error; empty if there is none.
QString childOfError(const QByteArray &body, const QString &name)
{
    QXmlStreamReader reader(body.left(readOfError));
    if (!reader.readNextStartElement() || reader.name() != u"Error"_s)
        return {};
    while (reader.readNextStartElement()) {
        if (reader.name() == name)
            return reader.readElementText(QXmlStreamReader::SkipChildElements);
        reader.skipCurrentElement();
    }
    return {};
}

/// A service may repeat what it was asked with.
QString withoutSecrets(QString text, const HttpReply &reply)
{
    static const QRegularExpression ofAnyRequest(
        uR"(\beyJ[\w.-]+|\bA[KS]IA[A-Z0-9]+)"_s); // tokens, names of keys
    for (const QByteArray &secret : reply.secrets)
        text.replace(QString::fromUtf8(secret), u"..."_s);
    return text.replace(ofAnyRequest, u"..."_s);
}

QString withRequestId(QString text, const HttpReply &reply)
{
    static const QRegularExpression form(uR"(Request ID: *([A-Za-z0-9._-]+))"_s);
    const auto match = form.match(QString::fromUtf8(reply.body.left(readOfError)));
    QString identifier = match.captured(1);
    if (identifier.isEmpty())
        identifier = QString::fromUtf8(reply.headers.value("x-request-id"));
    if (!identifier.isEmpty() && !text.contains(identifier))
        text += u" (Request ID: %1)"_s.arg(printable(identifier));
    return text;
}

QString joined(const QStringList &parts)
{
    QStringList said;
    for (const QString &part : parts) {
        if (!part.isEmpty() && !said.contains(part))
            said.append(part);
    }
    return said.join(u' ');
}

/// What only a person can put right, where the service does not say who and where.
QString adviceOn(const QString &code)
{
    if (code.contains(u"AGREEMENTS"_s))
        return u"The team's account holder has to sign it, at developer.apple.com/account or in App Store Connect."_s;
    return {};
}

QString jsonText(const QJsonObject &form)
{
    const QJsonObject first = form[u"errors"].toArray().first().toObject();
    if (!first.isEmpty())
        return joined(
            {first[u"title"].toString(), first[u"detail"].toString(), adviceOn(first[u"code"].toString())});
    return joined({form[u"name"].toString(), form[u"description"].toString()});
}

/// What the body says for a person; empty for a page of HTML and for nothing.
QString spoken(const QByteArray &body)
{
    const QByteArray text = body.left(readOfError).trimmed();
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (document.isObject())
        return jsonText(document.object());
    const bool isText =
        !text.isEmpty() && !text.startsWith('<') && !text.startsWith('{') && !text.startsWith('[');
    return isText ? QString::fromUtf8(text.split('\n').first()) : QString();
}

QString statusText(int status)
{
    switch (status) {
    case 401:
        return u"The service did not accept the API key (HTTP 401): it is wrong, revoked or expired, or this machine's clock is wrong."_s;
    case 403:
        return u"The service refuses the request (HTTP 403)."_s;
    case 429:
        return u"The service has had too many requests (HTTP 429)."_s;
    default:
        return u"The service answered with HTTP status %1."_s.arg(status);
    }
}

ServiceFailure transportFailure(const HttpReply &reply, const QString &who)
{
    return {u"%1 at %2 could not be reached or broke off: %3."_s.arg(who, reply.peer, reply.problem),
            -(1000 + reply.transportError)};
}

/// What the storage says besides the code.
QString storageMessage(const HttpReply &reply, const QByteArray &code)
{
    const QString message = printable(withoutSecrets(childOfError(reply.body, u"Message"_s), reply));
    return message.isEmpty() || message == QString::fromUtf8(code) ? QString() : u": "_s + message;
}

QString storageText(const QByteArray &code)
{
    for (const Meaning &meaning : meanings) {
        if (code == meaning.code)
            return QString::fromUtf16(meaning.text);
    }
    return u"the storage refused the upload"_s;
}

} // namespace

QString printable(const QString &text)
{
    QString plain;
    for (const QChar character : text.left(longestText))
        plain += character.category() == QChar::Other_Control ? QChar(u' ') : character;
    return plain.trimmed();
}

ServiceFailure failureOf(const HttpReply &reply)
{
    if (!reply.isWhole())
        return transportFailure(reply, u"The service"_s);
    const QString said = printable(withoutSecrets(spoken(reply.body), reply));
    return {withRequestId(joined({statusText(reply.status), said}), reply), reply.status};
}

QByteArray storageErrorCode(const QByteArray &body)
{
    QXmlStreamReader reader(body.left(readOfError));
    if (!reader.readNextStartElement() || reader.name() != u"Error"_s)
        return {};
    const QString code = childOfError(body, u"Code"_s).left(longestCode);
    return code.isEmpty() ? "Unknown" : code.toUtf8();
}

ServiceFailure storageFailureOf(const HttpReply &reply)
{
    if (!reply.isWhole())
        return transportFailure(reply, u"The storage"_s);
    const QByteArray code = storageErrorCode(reply.body);
    if (code.isEmpty())
        return {u"The upload failed: the storage answered with HTTP status %1."_s.arg(reply.status),
                reply.status};
    return {u"The upload failed: %1 (%2, HTTP status %3%4)."_s.arg(
                storageText(code), printable(QString::fromUtf8(code)), QString::number(reply.status),
                storageMessage(reply, code)),
            reply.status};
}

} // namespace toolchain::notary
