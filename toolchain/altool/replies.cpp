#include "altool/replies.h"

#include <QFile>
#include <QSysInfo>
#include <QUrl>
#include <QVariantMap>

#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

/// What the service says about a verdict. There is no code and no message while it is in progress.
struct VerdictTexts {
    QString status;
    int code = 0;
    QString message;
};

constexpr qulonglong requestsOnAPage = 20;

VerdictTexts textsOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::InProgress:
        return {u"in progress"_s, 0, {}};
    case Verdict::Success:
        return {u"success"_s, 0, u"Package Approved"_s};
    case Verdict::Invalid:
        return {u"invalid"_s, 2, u"Package Invalid"_s};
    }
    Q_UNREACHABLE();
}

QString dateText(const QDateTime &date)
{
    return date.toString(u"yyyy-MM-dd HH:mm:ss"_s) + u" +0000"_s;
}

QString logUrl(const QString &logPath)
{
    return QUrl::fromLocalFile(logPath).toString(QUrl::FullyEncoded);
}

Reply xmlReply(QVariantMap entries)
{
    entries.insert(u"tool-version"_s, toolVersion());
    entries.insert(u"tool-path"_s, QFile::symLinkTarget(u"/proc/self/exe"_s));
    entries.insert(u"os-version"_s, QSysInfo::prettyProductName());
    const auto list = platform::xmlPropertyListData(entries);
    return {list.data, list.error};
}

QString uploadMessage(const QString &archive)
{
    return u"No errors uploading '%1'."_s.arg(archive);
}

const QString infoMessage = u"No errors getting notarization info."_s;

QVariantMap infoEntries(const NotaryRequest &request, const QString &logPath)
{
    const VerdictTexts texts = textsOf(request.verdict());
    QVariantMap entries{
        {u"Date"_s, request.uploaded},
        {u"Hash"_s, QString::fromLatin1(request.archiveDigest)},
        {u"RequestUUID"_s, request.uuid},
        {u"Status"_s, texts.status},
    };
    if (request.verdict() != Verdict::InProgress) {
        entries.insert(u"LogFileURL"_s, logUrl(logPath));
        entries.insert(u"Status Code"_s, texts.code);
        entries.insert(u"Status Message"_s, texts.message);
    }
    return entries;
}

/// The plain report. Its first line with "Status: " is the verdict's.
QString infoText(const NotaryRequest &request, const QString &logPath)
{
    const VerdictTexts texts = textsOf(request.verdict());
    const bool isDecided = request.verdict() != Verdict::InProgress;
    QString text = infoMessage + u"\n\n          Date: "_s + dateText(request.uploaded)
        + u"\n          Hash: "_s + QString::fromLatin1(request.archiveDigest) + u'\n';
    if (isDecided)
        text += u"    LogFileURL: "_s + logUrl(logPath) + u'\n';
    text += u"   RequestUUID: "_s + request.uuid + u"\n        Status: "_s + texts.status + u'\n';
    if (isDecided)
        text += u"   Status Code: %1\nStatus Message: %2\n"_s.arg(QString::number(texts.code), texts.message);
    return text;
}

QString historyLine(const NotaryRequest &request)
{
    return dateText(request.uploaded) + u' ' + request.uuid + u' ' + textsOf(request.verdict()).status + u' '
        + request.bundleIdentifier + u' ' + request.archiveName + u'\n';
}

struct HistoryPage {
    QList<NotaryRequest> requests;
    std::optional<qulonglong> next; ///< nothing on the last page
};

HistoryPage pageOf(const QList<NotaryRequest> &requests, qulonglong page)
{
    const auto count = qulonglong(requests.size());
    const qulonglong pages = (count + requestsOnAPage - 1) / requestsOnAPage;
    if (page >= pages)
        return {};
    return {requests.mid(qsizetype(page * requestsOnAPage), qsizetype(requestsOnAPage)),
            page + 1 < pages ? std::optional(page + 1) : std::nullopt};
}

QString historyText(const HistoryPage &page)
{
    if (page.requests.isEmpty())
        return u"No items found.\n"_s;
    QString text;
    for (const NotaryRequest &request : page.requests)
        text += historyLine(request);
    return page.next ? text + u"\nNext page value: %1\n"_s.arg(*page.next) : text;
}

QVariantMap historyEntries(const HistoryPage &page)
{
    QVariantList items;
    for (const NotaryRequest &request : page.requests)
        items.append(QVariantMap{{u"Date"_s, request.uploaded},
                                 {u"RequestUUID"_s, request.uuid},
                                 {u"Status"_s, textsOf(request.verdict()).status}});
    QVariantMap entries{{u"items"_s, items}};
    if (page.next)
        entries.insert(u"next-page"_s, *page.next);
    return entries;
}

/// One line a team, the name last since it may have blanks.
QString providersText(const QList<Provider> &providers)
{
    if (providers.isEmpty())
        return u"No providers found.\n"_s;
    QString text = u"ProviderShortname WWDRTeamID ProviderName\n"_s;
    for (const Provider &provider : providers)
        text += provider.shortName + u' ' + provider.teamIdentifier + u' ' + provider.name + u'\n';
    return text;
}

} // namespace

Reply uploadReply(const NotaryRequest &request, const QString &archive, OutputFormat format)
{
    if (format == OutputFormat::Normal)
        return {(uploadMessage(archive) + u"\nRequestUUID = "_s + request.uuid + u'\n').toUtf8(), {}};
    return xmlReply({{u"notarization-upload"_s, QVariantMap{{u"RequestUUID"_s, request.uuid}}},
                     {u"success-message"_s, uploadMessage(archive)}});
}

Reply infoReply(const NotaryRequest &request, const QString &logPath, OutputFormat format)
{
    if (format == OutputFormat::Normal)
        return {infoText(request, logPath).toUtf8(), {}};
    return xmlReply(
        {{u"notarization-info"_s, infoEntries(request, logPath)}, {u"success-message"_s, infoMessage}});
}

Reply historyReply(const QList<NotaryRequest> &requests, qulonglong page, OutputFormat format)
{
    const HistoryPage shown = pageOf(requests, page);
    return format == OutputFormat::Normal ? Reply{historyText(shown).toUtf8(), {}}
                                          : xmlReply({{u"notarization-history"_s, historyEntries(shown)}});
}

Reply providersReply(const QList<Provider> &providers, OutputFormat format)
{
    if (format == OutputFormat::Normal)
        return {providersText(providers).toUtf8(), {}};
    QVariantList entries;
    for (const Provider &provider : providers)
        entries.append(QVariantMap{{u"ProviderName"_s, provider.name},
                                   {u"ProviderShortname"_s, provider.shortName},
                                   {u"WWDRTeamID"_s, provider.teamIdentifier}});
    return xmlReply({{u"providers"_s, entries}});
}

QString toolVersion()
{
    return QStringLiteral(TOOL_VERSION);
}

} // namespace toolchain
