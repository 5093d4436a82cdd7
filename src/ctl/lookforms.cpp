#include "ctl/lookforms.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QUrl>
#include <QXmlStreamWriter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright::lookforms {

namespace {

/// A finding of a look, or an issue of the service.
struct Result {
    QString rule;
    bool isError = true;
    QString path;
    QString architecture;
    QString message;
    QString help; ///< what to do, or where it is told; empty if nobody says
};

QString text(const QJsonObject &object, QLatin1StringView key)
{
    return object.value(key).toString();
}

QList<Result> resultsOf(const QJsonArray &array, QLatin1StringView helpKey)
{
    QList<Result> results;
    for (const auto &value : array) {
        const QJsonObject object = value.toObject();
        const QString rule = text(object, "rule"_L1);
        results.append({rule.isEmpty() ? u"notary-service"_s : rule,
                        text(object, "severity"_L1) != "warning"_L1, text(object, "path"_L1),
                        text(object, "architecture"_L1), text(object, "message"_L1), text(object, helpKey)});
    }
    return results;
}

QString place(const Result &result)
{
    return result.architecture.isEmpty() ? result.path : u"%1 (%2)"_s.arg(result.path, result.architecture);
}

/// XML has no way to write control characters.
QString forXml(QString value)
{
    for (QChar &character : value) {
        if (character.unicode() < 0x20 && character != u'\t' && character != u'\n')
            character = QChar::ReplacementCharacter;
    }
    return value;
}

void writeTest(QXmlStreamWriter &xml, const Result &result)
{
    xml.writeStartElement(u"testcase"_s);
    xml.writeAttribute(u"classname"_s, forXml(result.rule));
    xml.writeAttribute(u"name"_s, forXml(place(result)));
    if (result.isError) {
        xml.writeStartElement(u"failure"_s);
        xml.writeAttribute(u"type"_s, forXml(result.rule));
        xml.writeAttribute(u"message"_s, forXml(result.message));
        xml.writeCharacters(forXml(result.help));
        xml.writeEndElement();
    } else {
        xml.writeTextElement(u"system-out"_s, forXml(u"warning: "_s + result.message + u'\n' + result.help));
    }
    xml.writeEndElement();
}

QString junit(const QString &name, QList<Result> results)
{
    const auto errors =
        std::count_if(results.cbegin(), results.cend(), [](const Result &result) { return result.isError; });
    if (results.isEmpty())
        results.append({.rule = u"nothing-found"_s,
                        .isError = false,
                        .path = name,
                        .architecture = {},
                        .message = u"Nothing was found."_s,
                        .help = {}});
    QString document;
    QXmlStreamWriter xml(&document);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(u"testsuites"_s);
    xml.writeStartElement(u"testsuite"_s);
    xml.writeAttribute(u"name"_s, forXml(name));
    xml.writeAttribute(u"tests"_s, QString::number(results.size()));
    xml.writeAttribute(u"failures"_s, QString::number(errors));
    xml.writeAttribute(u"errors"_s, u"0"_s);
    for (const Result &result : std::as_const(results))
        writeTest(xml, result);
    xml.writeEndDocument();
    return document;
}

QString asUri(const QString &path)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(path, "/"));
}

QJsonObject sarifResult(const Result &result)
{
    const QString message = result.architecture.isEmpty()
        ? result.message
        : u"%1 (%2)"_s.arg(result.message, result.architecture);
    const QJsonObject artifact{{u"uri"_s, asUri(result.path)}, {u"uriBaseId"_s, u"ITEM"_s}};
    const QJsonObject location{{u"physicalLocation"_s, QJsonObject{{u"artifactLocation"_s, artifact}}}};
    return {{u"ruleId"_s, result.rule},
            {u"level"_s, result.isError ? u"error"_s : u"warning"_s},
            {u"message"_s,
             QJsonObject{{u"text"_s, result.help.isEmpty() ? message : message + u'\n' + result.help}}},
            {u"locations"_s, QJsonArray{location}}};
}

QJsonArray sarifRules(const QList<Result> &results)
{
    QStringList names;
    for (const Result &result : results)
        names.append(result.rule);
    names.removeDuplicates();
    QJsonArray rules;
    for (const QString &name : std::as_const(names))
        rules.append(QJsonObject{{u"id"_s, name}});
    return rules;
}

/// `item` is the folder or file that the paths start from; empty if it is not known.
QString sarif(const QString &item, const QList<Result> &results)
{
    QJsonArray array;
    for (const Result &result : results)
        array.append(sarifResult(result));
    const QJsonObject driver{{u"name"_s, u"Sealwright"_s},
                             {u"version"_s, QStringLiteral(SEALWRIGHT_VERSION)},
                             {u"rules"_s, sarifRules(results)}};
    QJsonObject run{{u"tool"_s, QJsonObject{{u"driver"_s, driver}}}, {u"results"_s, array}};
    if (!item.isEmpty()) {
        const QString base = QUrl::fromLocalFile(item + u'/').toString(QUrl::FullyEncoded);
        run.insert(u"originalUriBaseIds"_s, QJsonObject{{u"ITEM"_s, QJsonObject{{u"uri"_s, base}}}});
    }
    const QJsonObject log{{u"$schema"_s, u"https://json.schemastore.org/sarif-2.1.0.json"_s},
                          {u"version"_s, u"2.1.0"_s},
                          {u"runs"_s, QJsonArray{run}}};
    return QString::fromUtf8(QJsonDocument(log).toJson(QJsonDocument::Indented));
}

QList<Result> findingsOf(const QJsonObject &examination)
{
    return resultsOf(examination.value("findings"_L1).toArray(), "advice"_L1);
}

} // namespace

QString junitOfExamination(const QJsonObject &examination)
{
    const QString name = QFileInfo(text(examination, "item"_L1)).fileName();
    return junit(u"examine "_s + name, findingsOf(examination));
}

QString junitOfIssues(const QString &document, const QJsonArray &issues)
{
    return junit(u"issues "_s + document, resultsOf(issues, "docUrl"_L1));
}

QString sarifOfExamination(const QJsonObject &examination)
{
    return sarif(text(examination, "item"_L1), findingsOf(examination));
}

QString sarifOfIssues(const QJsonArray &issues)
{
    return sarif({}, resultsOf(issues, "docUrl"_L1));
}

} // namespace sealwright::lookforms
