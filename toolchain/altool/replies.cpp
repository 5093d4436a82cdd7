#include "altool/replies.h"

#include <QFile>
#include <QSysInfo>
#include <QUrl>
#include <QVariantMap>

#include <array>

#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

QString dateText(const QDateTime &date)
{
    return date.toUTC().toString(u"yyyy-MM-dd HH:mm:ss"_s) + u" +0000"_s;
}

/// A property list's dates have no fractions.
QDateTime wholeSeconds(const QDateTime &date)
{
    return QDateTime::fromSecsSinceEpoch(date.toSecsSinceEpoch(), Qt::UTC);
}

QString logUrl(const QString &logPath)
{
    return QUrl::fromLocalFile(logPath).toString(QUrl::FullyEncoded);
}

/// A path as a property list can hold it: XML knows no other control characters than these
/// (https://www.w3.org/TR/xml/#charsets).
QString inXml(QString text)
{
    for (QChar &character : text) {
        const bool isSpace = character == u'\t' || character == u'\n' || character == u'\r';
        if (!isSpace && (character < u' ' || character == QChar(0xfffe) || character == QChar(0xffff)))
            character = QChar::ReplacementCharacter;
    }
    return text;
}

Reply xmlReply(QVariantMap entries)
{
    entries.insert(u"tool-version"_s, toolVersion());
    entries.insert(u"tool-path"_s, QFile::symLinkTarget(u"/proc/self/exe"_s));
    entries.insert(u"os-version"_s, QSysInfo::prettyProductName());
    return platform::xmlPropertyListData(entries);
}

QString uploadMessage(const QString &archive)
{
    return u"No errors uploading '%1'."_s.arg(archive);
}

const QString infoMessage = u"No errors getting notarization info."_s;

QVariantMap infoEntries(const InfoReport &report)
{
    const StatusTexts texts = textsOf(report.submission.status);
    QVariantMap entries{{u"RequestUUID"_s, report.submission.id}, {u"Status"_s, texts.status}};
    if (report.submission.created.isValid())
        entries.insert(u"Date"_s, wholeSeconds(report.submission.created));
    if (!report.hash.isEmpty())
        entries.insert(u"Hash"_s, QString::fromLatin1(report.hash));
    if (!texts.isDecided)
        return entries;
    if (!report.logPath.isEmpty())
        entries.insert(u"LogFileURL"_s, logUrl(report.logPath));
    entries.insert(u"Status Code"_s, texts.code);
    entries.insert(u"Status Message"_s, texts.message);
    return entries;
}

/// The plain report. Its first line with "Status: " is the verdict's.
QString infoText(const InfoReport &report)
{
    const StatusTexts texts = textsOf(report.submission.status);
    QString text = infoMessage + u"\n\n"_s;
    if (report.submission.created.isValid())
        text += u"          Date: "_s + dateText(report.submission.created) + u'\n';
    if (!report.hash.isEmpty())
        text += u"          Hash: "_s + QString::fromLatin1(report.hash) + u'\n';
    if (texts.isDecided && !report.logPath.isEmpty())
        text += u"    LogFileURL: "_s + logUrl(report.logPath) + u'\n';
    text += u"   RequestUUID: "_s + report.submission.id + u"\n        Status: "_s + texts.status + u'\n';
    if (texts.isDecided)
        text += u"   Status Code: %1\nStatus Message: %2\n"_s.arg(QString::number(texts.code), texts.message);
    return text;
}

/// One line of the history's table; the widths are those of its columns.
QString tableLine(const QStringList &cells)
{
    constexpr std::array widths{25, 36, 11, 11, 16};
    QString line;
    for (qsizetype index = 0; index < cells.size(); ++index)
        line += cells.at(index).leftJustified(widths.at(std::size_t(index))) + u' ';
    return line + u'\n';
}

QString historyLine(const notary::Submission &submission)
{
    const StatusTexts texts = textsOf(submission.status);
    const QString date = submission.created.isValid() ? dateText(submission.created) : QString();
    return tableLine({date, submission.id, texts.status,
                      texts.isDecided ? QString::number(texts.code) : QString(), texts.message});
}

QString historyText(const QList<notary::Submission> &submissions, qulonglong page)
{
    if (submissions.isEmpty())
        return u"No items found.\n"_s;
    const auto rule = [](int width) { return QString(width, u'-'); };
    QString text = u"Notarization History - page %1\n\n"_s.arg(page);
    text += tableLine({u"Date"_s, u"RequestUUID"_s, u"Status"_s, u"Status Code"_s, u"Status Message"_s});
    text += tableLine({rule(25), rule(36), rule(11), rule(11), rule(16)});
    for (const notary::Submission &submission : submissions)
        text += historyLine(submission);
    return text;
}

QVariantMap historyEntries(const QList<notary::Submission> &submissions)
{
    QVariantList items;
    for (const notary::Submission &submission : submissions)
        items.append(infoEntries({submission, {}, {}}));
    return {{u"items"_s, items}, {u"last-page"_s, 0}};
}

StatusTexts decided(const QString &status, int code, const QString &message)
{
    return {.status = status, .isDecided = true, .isKnown = true, .code = code, .message = message};
}

} // namespace

StatusTexts textsOf(const QString &serviceWord)
{
    const QString word = serviceWord.trimmed().toLower();
    if (word == u"accepted"_s)
        return decided(u"success"_s, 0, u"Package Approved"_s);
    if (word == u"invalid"_s)
        return decided(u"invalid"_s, 2, u"Package Invalid"_s);
    if (word == u"rejected"_s)
        return decided(u"rejected"_s, 2, u"Package Rejected"_s);
    return {.status = u"in progress"_s,
            .isDecided = false,
            .isKnown = word == u"in progress"_s,
            .code = 0,
            .message = {}};
}

Reply uploadReply(const QString &id, const QString &archive, OutputFormat format)
{
    if (format == OutputFormat::normal)
        return (uploadMessage(archive) + u"\nRequestUUID = "_s + id + u'\n').toUtf8();
    return xmlReply({{u"notarization-upload"_s, QVariantMap{{u"RequestUUID"_s, id}}},
                     {u"success-message"_s, inXml(uploadMessage(archive))}});
}

Reply infoReply(const InfoReport &report, OutputFormat format)
{
    if (format == OutputFormat::normal)
        return infoText(report).toUtf8();
    return xmlReply({{u"notarization-info"_s, infoEntries(report)}, {u"success-message"_s, infoMessage}});
}

Reply historyReply(const QList<notary::Submission> &submissions, qulonglong page, OutputFormat format)
{
    if (format == OutputFormat::normal)
        return historyText(submissions, page).toUtf8();
    return xmlReply({{u"notarization-history"_s, historyEntries(submissions)},
                     {u"success-message"_s, u"No errors getting notarization history."_s}});
}

Reply providersReply(const Provider &provider, OutputFormat format)
{
    if (format == OutputFormat::normal)
        return u"ProviderShortname WWDRTeamID ProviderName\n%1 %2 %3\n"_s
            .arg(provider.shortName, provider.teamIdentifier, provider.name)
            .toUtf8();
    const QVariantMap entry{{u"ProviderName"_s, provider.name},
                            {u"ProviderShortname"_s, provider.shortName},
                            {u"WWDRTeamID"_s, provider.teamIdentifier}};
    return xmlReply({{u"providers"_s, QVariantList{entry}}});
}

Reply failureReply(const QString &text, int code)
{
    const QString message = inXml(text);
    const QVariantMap details{{u"NSLocalizedDescription"_s, message},
                              {u"NSLocalizedFailureReason"_s, u"Apple Services operation failed."_s},
                              {u"NSLocalizedRecoverySuggestion"_s, message}};
    const QVariantMap error{{u"code"_s, code}, {u"message"_s, message}, {u"userInfo"_s, details}};
    return xmlReply({{u"product-errors"_s, QVariantList{error}}});
}

QString toolVersion()
{
    return QStringLiteral(TOOL_VERSION);
}

} // namespace toolchain
