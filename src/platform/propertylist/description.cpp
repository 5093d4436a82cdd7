#include "platform/propertylist/propertylist.h"

#include <QDateTime>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

constexpr int indentWidth = 4;
/// Data is shown in groups of so many bytes.
constexpr int dataGroup = 4;

QString indent(int level)
{
    return QString(qsizetype(level) * indentWidth, u' ');
}

bool isPlainWord(QStringView text)
{
    const auto isPlain = [](QChar c) { return c.unicode() < 0x80 && c.isLetterOrNumber(); };
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isPlain);
}

QString escaped(QChar character)
{
    switch (character.unicode()) {
    case u'"':
        return u"\\\""_s;
    case u'\\':
        return u"\\\\"_s;
    case u'\n':
        return u"\\n"_s;
    case u'\r':
        return u"\\r"_s;
    case u'\t':
        return u"\\t"_s;
    default:
        break;
    }
    if (character.unicode() < 0x20 || character.unicode() > 0x7e)
        return u"\\U%1"_s.arg(int(character.unicode()), 4, 16, QChar(u'0'));
    return character;
}

QString quotedWhereNeeded(const QString &text)
{
    if (isPlainWord(text))
        return text;
    QString quoted(u'"');
    for (const QChar character : text)
        quoted += escaped(character);
    return quoted + u'"';
}

QString dataDescription(const QByteArray &data)
{
    QString description(u'<');
    for (qsizetype start = 0; start < data.size(); start += dataGroup) {
        if (start > 0)
            description += u' ';
        description += QLatin1StringView(data.mid(start, dataGroup).toHex());
    }
    return description + u'>';
}

QString scalarDescription(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? u"1"_s : u"0"_s;
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    case QMetaType::QDateTime:
        return value.toDateTime().toUTC().toString(u"yyyy-MM-dd HH:mm:ss '+0000'"_s);
    default:
        return value.toString();
    }
}

void appendContained(QString &text, const QVariant &value, int level);

void appendDictionary(QString &text, const QVariantMap &entries, int level)
{
    text += u"{\n"_s;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        text += indent(level + 1) + quotedWhereNeeded(entry.key()) + u" = "_s;
        appendContained(text, entry.value(), level + 1);
        text += u";\n"_s;
    }
    text += indent(level) + u'}';
}

void appendArray(QString &text, const QVariantList &items, int level)
{
    text += u"(\n"_s;
    for (qsizetype i = 0; i < items.size(); ++i) {
        text += indent(level + 1);
        appendContained(text, items[i], level + 1);
        text += i + 1 < items.size() ? u",\n"_s : u"\n"_s;
    }
    text += indent(level) + u')';
}

/// The platform indents the opening bracket of an inner container as if it stood on a line of its own,
/// although it follows " = ": `key =     {`. Logs are compared by eye and by script, so it stays.
void appendContained(QString &text, const QVariant &value, int level)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap:
        text += indent(level);
        return appendDictionary(text, value.toMap(), level);
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        text += indent(level);
        return appendArray(text, value.toList(), level);
    case QMetaType::QByteArray:
        text += dataDescription(value.toByteArray());
        return;
    default:
        text += quotedWhereNeeded(scalarDescription(value));
        return;
    }
}

} // namespace

QString propertyListDescription(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap:
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
    case QMetaType::QByteArray: {
        QString text;
        appendContained(text, value, 0);
        return text;
    }
    default:
        return scalarDescription(value);
    }
}

} // namespace platform
