#include "platform/propertylist/limits.h"
#include "platform/propertylist/propertylist.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

constexpr QByteArrayView head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                "<plist version=\"1.0\">\n";
constexpr QByteArrayView tail = "</plist>\n";

/// Base64 lines end at this column, with tabs of eight columns; beyond eight levels they get no shorter.
constexpr int dataColumns = 76;
constexpr int tabColumns = 8;
constexpr int deepestDataIndent = 8;

/// "U+0001" for the first character that XML 1.0 (section 2.2) cannot hold, half a surrogate pair included;
/// null when there is none.
QString forbiddenCharacter(QStringView text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t code = text[i].unicode();
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        const bool isControl = code < 0x20 && code != u'\t' && code != u'\n' && code != u'\r';
        if (isControl || code == 0xfffe || code == 0xffff || (text[i].isSurrogate() && !isPair))
            return u"U+%1"_s.arg(QString::number(code, 16).toUpper(), 4, QChar(u'0'));
        i += isPair ? 1 : 0;
    }
    return {};
}

/// A key as a key path shows it: what cannot be shown stands as \uXXXX.
QString shownKey(const QString &key)
{
    QString shown;
    for (const QChar character : key) {
        if (character.category() == QChar::Other_Control || character.isSurrogate()
            || character.isNonCharacter())
            shown += u"\\u%1"_s.arg(int(character.unicode()), 4, 16, QChar(u'0'));
        else
            shown += character;
    }
    return shown;
}

QByteArray escaped(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    bytes.replace('&', "&amp;").replace('<', "&lt;").replace('>', "&gt;");
    return bytes.replace('\r', "&#13;"); // a reader would take a bare one for a line feed
}

QByteArray realText(double real)
{
    if (std::isnan(real))
        return "nan";
    if (std::isinf(real))
        return real > 0 ? "+infinity" : "-infinity";
    return QByteArray::number(real, 'g', QLocale::FloatingPointShortest);
}

class XmlWriter {
public:
    Result<QByteArray> write(const QVariant &value);

private:
    // Each answers false after it has called fail().
    bool writeValue(const QVariant &value, int depth);
    bool writeDictionary(const QVariantMap &entries, int depth);
    bool writeArray(const QVariantList &items, int depth);
    bool writeText(QByteArrayView element, const QString &text, int depth);
    bool writeDate(const QDateTime &date, int depth);
    bool writeData(const QByteArray &data, int depth);
    bool writeElement(QByteArrayView element, const QByteArray &contents, int depth);
    bool writeLine(const QByteArray &line, int depth);
    bool fail(const QString &message);

    QByteArray m_xml;
    Outcome m_outcome;
    /// Key path to the value at fault, put together on the way out.
    QString m_path;
};

Result<QByteArray> XmlWriter::write(const QVariant &value)
{
    m_xml = head.toByteArray();
    if (!writeValue(value, 0)) {
        const QString path = m_path.startsWith(u'.') ? m_path.sliced(1) : m_path;
        return Error{path.isEmpty() ? u"The top level %1"_s.arg(m_outcome.error())
                                    : u"The value at '%1' %2"_s.arg(path, m_outcome.error())};
    }
    m_xml += tail;
    return m_xml;
}

bool XmlWriter::writeValue(const QVariant &value, int depth)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap:
        return writeDictionary(value.toMap(), depth);
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return writeArray(value.toList(), depth);
    case QMetaType::QString:
        return writeText("string", value.toString(), depth);
    case QMetaType::QByteArray:
        return writeData(value.toByteArray(), depth);
    case QMetaType::QDateTime:
        return writeDate(value.toDateTime(), depth);
    case QMetaType::Bool:
        return writeLine(value.toBool() ? "<true/>" : "<false/>", depth);
    case QMetaType::Double:
    case QMetaType::Float:
        return writeElement("real", realText(value.toDouble()), depth);
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return writeElement("integer", QByteArray::number(value.toLongLong()), depth);
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return writeElement("integer", QByteArray::number(value.toULongLong()), depth);
    case QMetaType::UnknownType:
        return fail(u"is missing"_s);
    default:
        return fail(
            u"is of type %1, which a property list cannot hold"_s.arg(QLatin1StringView(value.typeName())));
    }
}

bool XmlWriter::writeDictionary(const QVariantMap &entries, int depth)
{
    if (const Outcome bounded = propertylist::Budget::checkDepth(depth + 1); !bounded)
        return fail(bounded.error());
    if (entries.isEmpty())
        return writeLine("<dict/>", depth);
    writeLine("<dict>", depth);
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        if (!writeText("key", entry.key(), depth + 1) || !writeValue(entry.value(), depth + 1)) {
            m_path.prepend(u'.' + shownKey(entry.key()));
            return false;
        }
    }
    return writeLine("</dict>", depth);
}

bool XmlWriter::writeArray(const QVariantList &items, int depth)
{
    if (const Outcome bounded = propertylist::Budget::checkDepth(depth + 1); !bounded)
        return fail(bounded.error());
    if (items.isEmpty())
        return writeLine("<array/>", depth);
    writeLine("<array>", depth);
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (!writeValue(items[i], depth + 1)) {
            m_path.prepend(u"[%1]"_s.arg(i));
            return false;
        }
    }
    return writeLine("</array>", depth);
}

bool XmlWriter::writeText(QByteArrayView element, const QString &text, int depth)
{
    const QString character = forbiddenCharacter(text);
    if (character.isNull())
        return writeElement(element, escaped(text), depth);
    const QString holder = element == "key" ? u"has a key that"_s : QString();
    return fail(u"%1 holds the character %2, which XML cannot hold"_s.arg(holder, character).trimmed());
}

bool XmlWriter::writeDate(const QDateTime &date, int depth)
{
    const QDateTime utc = date.toUTC();
    if (!utc.isValid() || utc.date().year() < 1 || utc.date().year() > 9999)
        return fail(u"is a date outside the years 1 to 9999"_s);
    return writeElement("date", utc.toString(u"yyyy-MM-dd'T'HH:mm:ss'Z'"_s).toLatin1(), depth);
}

bool XmlWriter::writeData(const QByteArray &data, int depth)
{
    const QByteArray base64 = data.toBase64();
    const int lineLength = dataColumns - tabColumns * std::min(depth, deepestDataIndent);
    writeLine("<data>", depth);
    for (qsizetype start = 0; start < base64.size(); start += lineLength)
        writeLine(base64.mid(start, lineLength), depth);
    return writeLine("</data>", depth);
}

bool XmlWriter::writeElement(QByteArrayView element, const QByteArray &contents, int depth)
{
    return writeLine('<' + element.toByteArray() + '>' + contents + "</" + element.toByteArray() + '>',
                     depth);
}

bool XmlWriter::writeLine(const QByteArray &line, int depth)
{
    m_xml.append(depth, '\t').append(line).append('\n');
    return true;
}

bool XmlWriter::fail(const QString &message)
{
    m_outcome = Error{message};
    return false;
}

} // namespace

Result<QByteArray> xmlPropertyListData(const QVariant &value)
{
    return XmlWriter().write(value);
}

} // namespace platform
