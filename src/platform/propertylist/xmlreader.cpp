#include "platform/propertylist/limits.h"
#include "platform/propertylist/readers.h"

#include <QDateTime>
#include <QXmlStreamReader>

#include <array>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace platform::propertylist {

namespace {

/// A list declares no entities of its own; this bounds what parameter entities in its DTD may expand to.
constexpr int entityExpansionLimit = 256;

/// How much of a wrong text an error shows.
constexpr int shownCharacters = 40;

bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

QString shortened(const QString &text)
{
    const QString simplified = text.simplified();
    return simplified.size() <= shownCharacters ? simplified : simplified.left(shownCharacters) + u"..."_s;
}

/// Decimal or, after "0x", hexadecimal; invalid for anything else and beyond 64 bits.
QVariant integerFromText(const QString &text)
{
    QStringView digits = QStringView(text).trimmed();
    const bool isNegative = digits.startsWith(u'-');
    if (isNegative || digits.startsWith(u'+'))
        digits = digits.sliced(1);
    const bool isHexadecimal = digits.startsWith("0x"_L1, Qt::CaseInsensitive);
    if (isHexadecimal)
        digits = digits.sliced(2);
    if (digits.isEmpty() || !digits.front().isLetterOrNumber())
        return {}; // a second sign, which toULongLong() would take

    bool isNumber = false;
    const quint64 magnitude = digits.toULongLong(&isNumber, isHexadecimal ? 16 : 10);
    constexpr quint64 largest = std::numeric_limits<qint64>::max();
    if (!isNumber || (isNegative && magnitude > largest + 1))
        return {};
    if (isNegative)
        return qlonglong(0 - magnitude);
    return magnitude <= largest ? QVariant(qlonglong(magnitude)) : QVariant(qulonglong(magnitude));
}

QVariant realFromText(const QString &text)
{
    const QString number = text.trimmed().toLower();
    if (number == "nan"_L1)
        return std::nan("");
    if (number == "infinity"_L1 || number == "+infinity"_L1 || number == "inf"_L1 || number == "+inf"_L1)
        return std::numeric_limits<double>::infinity();
    if (number == "-infinity"_L1 || number == "-inf"_L1)
        return -std::numeric_limits<double>::infinity();
    bool isNumber = false;
    const double real = number.toDouble(&isNumber);
    return isNumber ? QVariant(real) : QVariant();
}

QVariant dateFromText(const QString &text)
{
    // Date and time by themselves: as one they would first be taken for local time, which has gaps.
    const QString trimmed = text.trimmed();
    const auto day = QDate::fromString(trimmed.left(10), u"yyyy-MM-dd"_s);
    const auto time = QTime::fromString(trimmed.mid(10), u"'T'HH:mm:ss'Z'"_s);
    return day.isValid() && time.isValid() ? QVariant(QDateTime(day, time, Qt::UTC)) : QVariant();
}

QVariant dataFromText(const QString &text)
{
    QByteArray base64 = text.toUtf8();
    base64.removeIf(isBlank);
    if (base64.size() % 4 != 0)
        return {}; // cut off, which the decoder would pass over
    const auto decoded = QByteArray::fromBase64Encoding(
        base64, QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? QVariant(decoded.decoded) : QVariant();
}

QVariant stringFromText(const QString &text)
{
    return text;
}

struct Scalar {
    QLatin1StringView element;
    QVariant (*fromText)(const QString &text);
    QLatin1StringView complaint;
};

constexpr std::array scalars{
    Scalar{"string"_L1, stringFromText, {}},
    Scalar{"integer"_L1, integerFromText, "is no integer of at most 64 bits"_L1},
    Scalar{"real"_L1, realFromText, "is no number"_L1},
    Scalar{"date"_L1, dateFromText, "is no date of the form YYYY-MM-DDThh:mm:ssZ"_L1},
    Scalar{"data"_L1, dataFromText, "is no base64 data"_L1},
    Scalar{"true"_L1, [](const QString &text) { return text.isEmpty() ? QVariant(true) : QVariant(); },
           "stands in a <true>, which must be empty"_L1},
    Scalar{"false"_L1, [](const QString &text) { return text.isEmpty() ? QVariant(false) : QVariant(); },
           "stands in a <false>, which must be empty"_L1},
};

class XmlReader {
public:
    explicit XmlReader(const QString &text);
    Result<QVariant> read();

private:
    // Each answers an invalid value (or false) after it has called fail().
    QVariant document();
    QVariant wrappedValue();
    QVariant value(int depth);
    QVariant array(int depth);
    QVariant dictionary(int depth);
    QVariant scalar(const Scalar &kind);
    bool enterContainer(int depth);
    bool enterValueOf(const QString &key);
    bool text(QString &contents);
    bool takeText(const QString &contents);
    QXmlStreamReader::TokenType nextTag();

    void refuseEntityDeclarations();
    QVariant fail(const QString &message);
    void failByParser();

    QXmlStreamReader m_xml;
    Budget m_budget;
    Outcome m_outcome;
    qint64 m_skippedLines = 0;
    qint64 m_skippedColumns = 0;
};

XmlReader::XmlReader(const QString &text)
{
    m_xml.setEntityExpansionLimit(entityExpansionLimit);
    m_xml.setNamespaceProcessing(false);

    // Blank lines above the XML declaration are against the letter of XML, yet common in a tool's output.
    qsizetype skipped = 0;
    while (skipped < text.size() && text[skipped].isSpace()) {
        const bool isLineEnd = text[skipped++] == u'\n';
        m_skippedLines += isLineEnd ? 1 : 0;
        m_skippedColumns = isLineEnd ? 0 : m_skippedColumns + 1;
    }
    m_xml.addData(text.sliced(skipped));
}

Result<QVariant> XmlReader::read()
{
    QVariant value = document();
    return m_outcome ? Result(value) : m_outcome.failure();
}

QVariant XmlReader::document()
{
    if (nextTag() != QXmlStreamReader::StartElement)
        return {};
    const bool isWrapped = m_xml.qualifiedName() == "plist"_L1;
    QVariant contents = isWrapped ? wrappedValue() : value(1);
    if (m_outcome)
        nextTag(); // the end, or a complaint about what follows
    return contents;
}

QVariant XmlReader::wrappedValue()
{
    const auto first = nextTag();
    if (first == QXmlStreamReader::EndElement)
        return fail(u"the <plist> holds no value"_s);
    if (first != QXmlStreamReader::StartElement)
        return {};
    QVariant contents = value(1);
    if (m_outcome && nextTag() == QXmlStreamReader::StartElement)
        return fail(u"the <plist> holds more than one value"_s);
    return contents;
}

/// Reads the element whose start tag has just been read, up to and with its end tag.
QVariant XmlReader::value(int depth)
{
    const QStringView name = m_xml.qualifiedName();
    if (name == "dict"_L1)
        return dictionary(depth);
    if (name == "array"_L1)
        return array(depth);
    for (const Scalar &kind : scalars) {
        if (name == kind.element)
            return scalar(kind);
    }
    if (name == "key"_L1)
        return fail(u"a <key> stands where a value is expected"_s);
    return fail(u"unexpected element <%1>"_s.arg(shortened(name.toString())));
}

QVariant XmlReader::array(int depth)
{
    if (!enterContainer(depth))
        return {};
    QVariantList items;
    while (nextTag() == QXmlStreamReader::StartElement) {
        const QVariant item = value(depth + 1);
        if (!item.isValid())
            return {};
        items.append(item);
    }
    return m_outcome ? QVariant(items) : QVariant();
}

QVariant XmlReader::dictionary(int depth)
{
    if (!enterContainer(depth))
        return {};
    QVariantMap entries;
    while (nextTag() == QXmlStreamReader::StartElement) {
        if (m_xml.qualifiedName() != "key"_L1)
            return fail(u"a <%1> stands where a <key> is expected"_s.arg(
                shortened(m_xml.qualifiedName().toString())));
        QString key;
        if (!text(key) || !enterValueOf(key))
            return {};
        const QVariant entry = value(depth + 1);
        if (!entry.isValid())
            return {};
        entries.insert(key, entry);
    }
    return m_outcome ? QVariant(entries) : QVariant();
}

bool XmlReader::enterContainer(int depth)
{
    const Outcome bounded = Budget::checkDepth(depth);
    const Outcome taken = bounded ? m_budget.take() : bounded;
    if (!taken)
        fail(taken.error());
    return bool(taken);
}

/// Goes from the end of a key to the start of its value.
bool XmlReader::enterValueOf(const QString &key)
{
    const auto tag = nextTag();
    const bool isStart = tag == QXmlStreamReader::StartElement;
    if (isStart && m_xml.qualifiedName() != "key"_L1)
        return true;
    if (isStart || tag == QXmlStreamReader::EndElement)
        fail(u"the <key> '%1' has no value"_s.arg(shortened(key)));
    return false;
}

QVariant XmlReader::scalar(const Scalar &kind)
{
    QString contents;
    if (!text(contents))
        return {};
    QVariant value = kind.fromText(contents);
    if (!value.isValid())
        return fail(u"'%1' %2"_s.arg(shortened(contents), kind.complaint));
    return value;
}

/// Reads the text of the current element up to and with its end tag.
bool XmlReader::text(QString &contents)
{
    const QString element = m_xml.qualifiedName().toString();
    for (;;) {
        switch (m_xml.readNext()) {
        case QXmlStreamReader::Characters:
            contents += m_xml.text();
            break;
        case QXmlStreamReader::EndElement:
            return takeText(contents);
        case QXmlStreamReader::StartElement:
            fail(u"a <%1> stands inside a <%2>, which holds only text"_s.arg(
                shortened(m_xml.qualifiedName().toString()), element));
            return false;
        case QXmlStreamReader::EntityReference:
            fail(u"the entity '&%1;' is not known"_s.arg(m_xml.name()));
            return false;
        case QXmlStreamReader::Invalid:
            failByParser();
            return false;
        default: // comments and processing instructions
            break;
        }
    }
}

bool XmlReader::takeText(const QString &contents)
{
    const Outcome taken = m_budget.take(contents.size() * qint64(sizeof(QChar)));
    if (!taken)
        fail(taken.error());
    return bool(taken);
}

/// The next start or end tag, or the end of the document, with nothing but white space and comments between.
QXmlStreamReader::TokenType XmlReader::nextTag()
{
    while (m_outcome) {
        const auto token = m_xml.readNext();
        switch (token) {
        case QXmlStreamReader::StartElement:
        case QXmlStreamReader::EndElement:
        case QXmlStreamReader::EndDocument:
            return token;
        case QXmlStreamReader::Characters:
            if (!m_xml.isWhitespace())
                fail(u"unexpected text '%1'"_s.arg(shortened(m_xml.text().toString())));
            break;
        case QXmlStreamReader::EntityReference:
            fail(u"the entity '&%1;' is not known"_s.arg(m_xml.name()));
            break;
        case QXmlStreamReader::DTD:
            refuseEntityDeclarations();
            break;
        case QXmlStreamReader::Invalid:
            failByParser();
            break;
        default: // the start of the document, comments and processing instructions
            break;
        }
    }
    return QXmlStreamReader::Invalid;
}

/// No list needs entities of its own, and a few lines of them can expand to gigabytes.
void XmlReader::refuseEntityDeclarations()
{
    const auto declarations = m_xml.entityDeclarations();
    if (!declarations.isEmpty())
        fail(u"the list declares the entity '%1', which is not accepted"_s.arg(declarations.front().name()));
}

/// The first failure is the one to tell; what follows from it is noise.
QVariant XmlReader::fail(const QString &message)
{
    if (m_outcome) {
        const qint64 line = m_xml.lineNumber() + m_skippedLines;
        const qint64 column = m_xml.columnNumber() + 1 + (m_xml.lineNumber() == 1 ? m_skippedColumns : 0);
        m_outcome = Error{u"Line %1, column %2: %3"_s.arg(line).arg(column).arg(message)};
    }
    return {};
}

void XmlReader::failByParser()
{
    if (m_xml.error() == QXmlStreamReader::PrematureEndOfDocumentError) {
        fail(u"the document ends before the list is complete"_s);
        return;
    }
    QString message = m_xml.errorString();
    if (message.endsWith(u'.'))
        message.chop(1);
    message.replace(0, 1, message.front().toLower());
    fail(message);
}

} // namespace

Result<QVariant> readXmlList(const QString &text)
{
    return XmlReader(text).read();
}

} // namespace platform::propertylist
