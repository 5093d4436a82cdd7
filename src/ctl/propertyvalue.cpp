#include "ctl/propertyvalue.h"

#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusObjectPath>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QUrl>

#include <cmath>

using namespace Qt::StringLiterals;

namespace sealwright {

using scriptingdefinition::Type;
using scriptingdefinition::ValueType;

namespace {

std::optional<QVariant> readBoolean(const QString &word)
{
    if (word == "true"_L1)
        return true;
    if (word == "false"_L1)
        return false;
    return std::nullopt;
}

std::optional<QVariant> readWholeNumber(const QString &word)
{
    bool isNumber = false;
    const qlonglong number = word.toLongLong(&isNumber);
    return isNumber ? std::optional<QVariant>(number) : std::nullopt;
}

std::optional<QVariant> readNumber(const QString &word)
{
    bool isNumber = false;
    const double number = word.toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional<QVariant>(number) : std::nullopt;
}

std::optional<QVariant> readTextList(const QString &word)
{
    const QJsonDocument document = QJsonDocument::fromJson(word.toUtf8());
    if (!document.isArray())
        return std::nullopt;
    QStringList texts;
    for (const QJsonValue &entry : document.array()) {
        if (!entry.isString())
            return std::nullopt;
        texts.append(entry.toString());
    }
    return texts;
}

std::optional<QVariant> readWindow(const QString &word)
{
    static const QRegularExpression number(u"^[0-9]+$"_s);
    if (!number.match(word).hasMatch())
        return std::nullopt;
    return QVariant::fromValue(QDBusObjectPath(bus::windowsPath + u'/' + word));
}

/// Four words, or one with blanks between the numbers.
std::optional<QVariant> readBounds(const QStringList &words)
{
    static const QRegularExpression blanks(u"[\\s,]+"_s);
    QList<short> numbers;
    for (const QString &word : words.join(u' ').split(blanks, Qt::SkipEmptyParts)) {
        bool isNumber = false;
        numbers.append(word.toShort(&isNumber));
        if (!isNumber)
            return std::nullopt;
    }
    if (numbers.size() != 4)
        return std::nullopt;
    return QVariant::fromValue(platform::QDRect{numbers[0], numbers[1], numbers[2], numbers[3]});
}

} // namespace

std::optional<ValueType> typeOfProperty(const QString &className, const QString &name)
{
    for (const scriptingdefinition::Property &property :
         scriptingdefinition::classNamed(className)->properties) {
        if (property.busName == name)
            return property.type;
    }
    return std::nullopt;
}

std::optional<QVariant> readValue(ValueType type, const QStringList &words)
{
    if (type.type == Type::rectangle)
        return readBounds(words);
    if (words.size() != 1)
        return std::nullopt;
    const QString &word = words.first();
    if (type.isList)
        return readTextList(word);
    switch (type.type) {
    case Type::boolean:
        return readBoolean(word);
    case Type::integer:
        return readWholeNumber(word);
    case Type::real:
        return readNumber(word);
    case Type::window:
        return readWindow(word);
    case Type::file:
        return bus::isFileUrl(word) ? word : fileUrl(word);
    default:
        return word;
    }
}

QString describe(ValueType type)
{
    if (type.isList)
        return u"a list of texts as a JSON array"_s;
    switch (type.type) {
    case Type::boolean:
        return u"true or false"_s;
    case Type::integer:
        return u"a whole number"_s;
    case Type::real:
        return u"a number"_s;
    case Type::window:
        return u"the number of a window"_s;
    case Type::rectangle:
        return u"four numbers: top, left, bottom, right"_s;
    default:
        return u"one value"_s;
    }
}

QString fileUrl(const QString &path)
{
    // Behind a link, ".." is not what its letters say.
    const QString absolute = QDir::current().absoluteFilePath(path);
    const bool canBeTidied = !absolute.contains("/.."_L1);
    return QUrl::fromLocalFile(canBeTidied ? QDir::cleanPath(absolute) : absolute)
        .toString(QUrl::FullyEncoded);
}

} // namespace sealwright
