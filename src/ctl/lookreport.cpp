#include "ctl/lookreport.h"

#include <QJsonDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright::lookreport {

namespace {

QString text(const QJsonObject &object, QLatin1StringView key)
{
    return object.value(key).toString();
}

/// Line ends and tabs would break the lines that scripts read.
QString onOneLine(QString value)
{
    return value.replace(u'\n', u' ').replace(u'\r', u' ').replace(u'\t', u' ');
}

QString shown(const QJsonValue &value)
{
    if (value.isArray())
        return QString::fromUtf8(QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact));
    if (value.isObject())
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    return onOneLine(value.toVariant().toString());
}

QStringList findingLines(const QJsonObject &finding)
{
    const QString architecture = text(finding, "architecture"_L1);
    const QString where = onOneLine(text(finding, "path"_L1))
        + (architecture.isEmpty() ? QString() : u" (%1)"_s.arg(architecture));
    return {u"%1: %2: %3 [%4]"_s.arg(text(finding, "severity"_L1), where,
                                     onOneLine(text(finding, "message"_L1)), text(finding, "rule"_L1)),
            u"    "_s + text(finding, "advice"_L1)};
}

QStringList namesOf(const QJsonArray &array)
{
    QStringList names;
    for (const auto &value : array)
        names.append(value.toString());
    return names;
}

QString codeLine(const QJsonObject &entry)
{
    const QJsonValue order = entry.value("order"_L1);
    const QString place = order.isDouble() ? QString::number(order.toInt()) : u"-"_s;
    const QStringList architectures = namesOf(entry.value("architectures"_L1).toArray());
    const QString reason = text(entry, "reason"_L1);
    return u"%1\t%2\t%3\t%4\t%5%6"_s.arg(place, onOneLine(text(entry, "path"_L1)), text(entry, "kind"_L1),
                                         architectures.join(u','),
                                         text(entry.value("signature"_L1).toObject(), "state"_L1),
                                         reason.isEmpty() ? QString() : u"\t"_s + reason);
}

QList<QJsonObject> inSigningOrder(const QJsonArray &code)
{
    QList<QJsonObject> entries;
    for (const auto &entry : code)
        entries.append(entry.toObject());
    constexpr int behindAll = std::numeric_limits<int>::max();
    std::stable_sort(entries.begin(), entries.end(), [](const QJsonObject &a, const QJsonObject &b) {
        return a.value("order"_L1).toInt(behindAll) < b.value("order"_L1).toInt(behindAll);
    });
    return entries;
}

} // namespace

QStringList examinationLines(const QJsonObject &examination)
{
    QStringList lines;
    for (const auto &finding : examination.value("findings"_L1).toArray())
        lines += findingLines(finding.toObject());
    for (const QJsonObject &entry : inSigningOrder(examination.value("code"_L1).toArray()))
        lines += codeLine(entry);
    lines += examination.value("refused"_L1).toBool() ? u"The item would be refused."_s
                                                      : u"Nothing was found that would be refused."_s;
    return lines;
}

QStringList issueLines(const QJsonArray &issues)
{
    QStringList lines;
    for (const auto &value : issues) {
        const QJsonObject issue = value.toObject();
        lines += QStringList{text(issue, "severity"_L1), onOneLine(text(issue, "path"_L1)),
                             text(issue, "architecture"_L1), onOneLine(text(issue, "message"_L1))}
                     .join(u'\t');
    }
    return lines;
}

QStringList differenceLines(const QJsonArray &differences)
{
    QStringList lines;
    for (const auto &value : differences) {
        const QJsonObject difference = value.toObject();
        lines += QStringList{onOneLine(text(difference, "path"_L1)), text(difference, "what"_L1),
                             shown(difference.value("old"_L1)), shown(difference.value("new"_L1))}
                     .join(u'\t');
    }
    return lines;
}

} // namespace sealwright::lookreport
