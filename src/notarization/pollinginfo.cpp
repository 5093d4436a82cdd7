#include "notarization/pollinginfo.h"

#include "platform/propertylist/propertylist.h"
#include "run/preferencekeys.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QString firstGroup(const QString &pattern, const QString &text)
{
    // A line ends at whatever Unicode takes for a line end, not only at that of this system.
    return QRegularExpression(u"(*ANY)"_s + pattern).match(text).captured(1);
}

/// Null only for a value that is not there: an empty text of a list may come as a null one.
QString textOf(const QVariant &value)
{
    const QString text = value.toString();
    return value.isValid() && text.isNull() ? u""_s : text;
}

QString withoutTrailingLineEnds(QString text)
{
    while (text.endsWith(u'\n'))
        text.chop(1);
    return text;
}

} // namespace

double limitedPollingDelay(float preference)
{
    return std::min(longestPollingDelay, std::max(shortestPollingDelay, preference));
}

std::optional<UploadReceipt> uploadReceipt(const QByteArray &output)
{
    if (output.isEmpty())
        return std::nullopt;
    const auto list = platform::propertyListFromData(output);
    if (!list)
        return std::nullopt;
    const QVariantMap reply = list->toMap();
    const QVariant identifier = reply.value(u"notarization-upload"_s).toMap().value(u"RequestUUID"_s);
    if (!identifier.isValid())
        return std::nullopt;
    return UploadReceipt{identifier.toString(), textOf(reply.value(u"success-message"_s))};
}

QString verdict(const QString &report)
{
    const QString word = firstGroup(u"(?m)Status: (.+?)$"_s, report);
    return word.isNull() ? u"No result"_s : word.trimmed().toLower();
}

QString logFileURL(const QString &report)
{
    return firstGroup(u"(?m)LogFileURL: (.+?)$"_s, report);
}

QString issuesAsJson(const QByteArray &log)
{
    const QJsonArray issues = QJsonDocument::fromJson(log).object().value("issues"_L1).toArray();
    return QString::fromUtf8(QJsonDocument(issues).toJson(QJsonDocument::Compact));
}

std::optional<QString> issuesSummary(const QByteArray &log)
{
    const QJsonValue issues = QJsonDocument::fromJson(log).object().value("issues"_L1);
    if (!issues.isArray())
        return std::nullopt;
    QString summary = u"\n"_s;
    for (const QJsonValue issue : issues.toArray()) {
        const QJsonObject entries = issue.toObject();
        for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
            if (entry.value().isString())
                summary += entry.key() + u": "_s + entry.value().toString() + u'\n';
        }
        summary += u"----------\n"_s;
    }
    return withoutTrailingLineEnds(summary);
}

} // namespace sealwright
