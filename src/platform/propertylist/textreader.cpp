#include "platform/propertylist/limits.h"
#include "platform/propertylist/listtext.h"
#include "platform/propertylist/readers.h"

#include <array>

using namespace Qt::StringLiterals;

namespace platform::propertylist {

namespace {

/// What \200 to \377 stand for: the upper half of the NeXTSTEP encoding, after the table that the Unicode
/// Consortium publishes ("NEXTSTEP.TXT").
constexpr std::array<char16_t, 128> nextstepUpperHalf{
    0x00a0, 0x00c0, 0x00c1, 0x00c2, 0x00c3, 0x00c4, 0x00c5, 0x00c7, 0x00c8, 0x00c9, 0x00ca, 0x00cb, 0x00cc,
    0x00cd, 0x00ce, 0x00cf, 0x00d0, 0x00d1, 0x00d2, 0x00d3, 0x00d4, 0x00d5, 0x00d6, 0x00d9, 0x00da, 0x00db,
    0x00dc, 0x00dd, 0x00de, 0x00b5, 0x00d7, 0x00f7, 0x00a9, 0x00a1, 0x00a2, 0x00a3, 0x2044, 0x00a5, 0x0192,
    0x00a7, 0x00a4, 0x2019, 0x201c, 0x00ab, 0x2039, 0x203a, 0xfb01, 0xfb02, 0x00ae, 0x2013, 0x2020, 0x2021,
    0x00b7, 0x00a6, 0x00b6, 0x2022, 0x201a, 0x201e, 0x201d, 0x00bb, 0x2026, 0x2030, 0x00ac, 0x00bf, 0x00b9,
    0x02cb, 0x00b4, 0x02c6, 0x02dc, 0x00af, 0x02d8, 0x02d9, 0x00a8, 0x00b2, 0x02da, 0x00b8, 0x00b3, 0x02dd,
    0x02db, 0x02c7, 0x2014, 0x00b1, 0x00bc, 0x00bd, 0x00be, 0x00e0, 0x00e1, 0x00e2, 0x00e3, 0x00e4, 0x00e5,
    0x00e7, 0x00e8, 0x00e9, 0x00ea, 0x00eb, 0x00ec, 0x00c6, 0x00ed, 0x00aa, 0x00ee, 0x00ef, 0x00f0, 0x00f1,
    0x0141, 0x00d8, 0x0152, 0x00ba, 0x00f2, 0x00f3, 0x00f4, 0x00f5, 0x00f6, 0x00e6, 0x00f9, 0x00fa, 0x00fb,
    0x0131, 0x00fc, 0x00fd, 0x0142, 0x00f8, 0x0153, 0x00df, 0x00fe, 0x00ff, 0xfffd, 0xfffd};

/// How much of a key an error shows.
constexpr int shownCharacters = 40;

bool isBlank(QChar character)
{
    const char16_t code = character.unicode();
    return code == u' ' || (code >= u'\t' && code <= u'\r') || code == 0x2028 || code == 0x2029;
}

bool isUnquoted(QChar character)
{
    return (character.unicode() < 0x80 && character.isLetterOrNumber()) || u"_$/:.-"_s.contains(character);
}

/// The value of a digit below 16; -1 for anything else.
int digitValue(QChar character)
{
    const char16_t code = character.unicode();
    if (code >= u'0' && code <= u'9')
        return code - u'0';
    if (code >= u'a' && code <= u'f')
        return code - u'a' + 10;
    if (code >= u'A' && code <= u'F')
        return code - u'A' + 10;
    return -1;
}

class TextReader {
public:
    explicit TextReader(const QString &text)
        : m_text(text)
    {
    }
    Result<QVariant> read();

private:
    // Each answers an invalid value (or false) after it has called fail().
    QVariant document();
    QVariant wordOrStringsFile();
    QVariant value(int depth);
    QVariant array(int depth);
    QVariant dictionary(int depth);
    bool entries(QVariantMap &entries, int depth);
    bool entry(QVariantMap &entries, int depth);
    QVariant data();
    QVariant string();
    QVariant quotedString();
    QVariant unquotedString();
    bool escape(QString &text);
    QChar numberedCharacter(int base, int mostDigits);

    bool enterContainer(int depth);
    bool skipBlanks();
    bool skipBlockComment();
    bool take(qsizetype start, qint64 bytes);
    bool isAtEnd() const { return m_position >= m_text.size(); }
    bool isAt(char16_t character) const { return !isAtEnd() && m_text[m_position] == character; }
    bool passOver(char16_t character);
    QVariant unexpected();
    QVariant fail(qsizetype position, const QString &message);

    QStringView m_text;
    qsizetype m_position = 0;
    Budget m_budget;
    Outcome m_outcome;
};

Result<QVariant> TextReader::read()
{
    const QVariant value = document();
    return m_outcome ? Result(value) : m_outcome.failure();
}

QVariant TextReader::document()
{
    if (!skipBlanks())
        return {};
    if (!isAt(u'{') && !isAt(u'(') && !isAt(u'<'))
        return wordOrStringsFile();
    QVariant contents = value(1);
    if (!m_outcome || !skipBlanks())
        return {};
    return isAtEnd() ? contents : unexpected();
}

/// A string by itself, or pairs without braces; a file of comments alone is a strings file without pairs.
QVariant TextReader::wordOrStringsFile()
{
    const qsizetype start = m_position;
    if (!isAtEnd()) {
        QVariant word = string();
        if (!word.isValid() || !skipBlanks())
            return {};
        if (isAtEnd())
            return word;
        if (!isAt(u'=') && !isAt(u';'))
            return unexpected();
    }
    m_position = start;
    QVariantMap pairs;
    if (!entries(pairs, 1))
        return {};
    return isAtEnd() ? QVariant(pairs) : unexpected();
}

QVariant TextReader::value(int depth)
{
    if (isAt(u'{'))
        return dictionary(depth);
    if (isAt(u'('))
        return array(depth);
    if (isAt(u'<'))
        return data();
    return string();
}

QVariant TextReader::dictionary(int depth)
{
    ++m_position;
    QVariantMap contents;
    if (!enterContainer(depth) || !entries(contents, depth))
        return {};
    return passOver(u'}') ? QVariant(contents) : unexpected();
}

/// Reads pairs up to a closing brace or the end.
bool TextReader::entries(QVariantMap &entries, int depth)
{
    while (skipBlanks()) {
        if (isAtEnd() || isAt(u'}'))
            return true;
        if (!entry(entries, depth))
            return false;
    }
    return false;
}

/// "key = value;", or "key;" for a key that is its own value, as in strings files.
bool TextReader::entry(QVariantMap &entries, int depth)
{
    const QVariant key = string();
    if (!key.isValid() || !skipBlanks())
        return false;
    QVariant contents = key;
    if (passOver(u'=')) {
        if (!skipBlanks())
            return false;
        contents = value(depth + 1);
        if (!contents.isValid() || !skipBlanks())
            return false;
    }
    if (!passOver(u';')) {
        if (isAtEnd())
            unexpected();
        else
            fail(m_position,
                 u"a ';' is missing after the entry '%1'"_s.arg(key.toString().left(shownCharacters)));
        return false;
    }
    entries.insert(key.toString(), contents);
    return true;
}

QVariant TextReader::array(int depth)
{
    ++m_position;
    if (!enterContainer(depth))
        return {};
    QVariantList items;
    while (skipBlanks()) {
        if (passOver(u')'))
            return items;
        const QVariant item = value(depth + 1);
        if (!item.isValid() || !skipBlanks())
            return {};
        items.append(item);
        if (!passOver(u',') && !isAt(u')'))
            return unexpected();
    }
    return {};
}

/// "<0fbd 77>": pairs of hexadecimal digits.
QVariant TextReader::data()
{
    const qsizetype start = m_position++;
    QByteArray digits;
    while (!isAtEnd() && !isAt(u'>')) {
        const QChar character = m_text[m_position];
        if (digitValue(character) >= 0)
            digits += char(character.unicode());
        else if (!isBlank(character))
            return unexpected();
        ++m_position;
    }
    if (!passOver(u'>'))
        return unexpected();
    if (digits.size() % 2 != 0)
        return fail(start, u"the data has an odd number of digits"_s);
    return take(start, digits.size() / 2) ? QVariant(QByteArray::fromHex(digits)) : QVariant();
}

QVariant TextReader::string()
{
    const qsizetype start = m_position;
    const QVariant text = isAt(u'"') || isAt(u'\'') ? quotedString() : unquotedString();
    if (!text.isValid() || !take(start, text.toString().size() * qint64(sizeof(QChar))))
        return {};
    return text;
}

QVariant TextReader::quotedString()
{
    const qsizetype start = m_position;
    const char16_t quote = m_text[m_position++].unicode();
    QString text;
    while (!passOver(quote)) {
        if (isAtEnd())
            return fail(start, u"the quoted string is not closed"_s);
        const QChar character = m_text[m_position++];
        if (character != u'\\')
            text += character;
        else if (!escape(text))
            return fail(start, u"the quoted string is not closed"_s);
    }
    return text.isNull() ? QString(u""_s) : text;
}

QVariant TextReader::unquotedString()
{
    const qsizetype start = m_position;
    while (!isAtEnd() && isUnquoted(m_text[m_position]))
        ++m_position;
    return m_position > start ? m_text.sliced(start, m_position - start).toString() : unexpected();
}

/// Appends what stands after a backslash; false when nothing does.
bool TextReader::escape(QString &text)
{
    if (isAtEnd())
        return false;
    const QChar character = m_text[m_position];
    if (character >= u'0' && character <= u'7') {
        text += numberedCharacter(8, 3);
        return true;
    }
    ++m_position;
    if ((character == u'U' || character == u'u') && !isAtEnd() && digitValue(m_text[m_position]) >= 0) {
        text += numberedCharacter(16, 4);
        return true;
    }
    constexpr QStringView letters = u"abfnrtv";
    constexpr QStringView controls = u"\a\b\f\n\r\t\v";
    const qsizetype control = letters.indexOf(character);
    text += control >= 0 ? controls[control] : character;
    return true;
}

QChar TextReader::numberedCharacter(int base, int mostDigits)
{
    int code = 0;
    for (int count = 0; count < mostDigits && !isAtEnd(); ++count, ++m_position) {
        const int digit = digitValue(m_text[m_position]);
        if (digit < 0 || digit >= base)
            break;
        code = code * base + digit;
    }
    const bool isNextstep = base == 8 && code >= 0x80;
    return isNextstep ? QChar(nextstepUpperHalf[std::size_t(code & 0x7f)]) : QChar(char16_t(code));
}

bool TextReader::enterContainer(int depth)
{
    const Outcome bounded = Budget::checkDepth(depth);
    if (!bounded)
        fail(m_position - 1, bounded.error());
    return bounded && take(m_position - 1, 0);
}

/// Passes over white space and comments; false for a comment that does not end.
bool TextReader::skipBlanks()
{
    while (!isAtEnd()) {
        const QStringView rest = m_text.sliced(m_position);
        if (isBlank(rest.front())) {
            ++m_position;
        } else if (rest.startsWith("//"_L1)) {
            while (!isAtEnd() && !isAt(u'\n') && !isAt(u'\r'))
                ++m_position;
        } else if (rest.startsWith("/*"_L1)) {
            if (!skipBlockComment())
                return false;
        } else {
            break;
        }
    }
    return true;
}

bool TextReader::skipBlockComment()
{
    const qsizetype end = m_text.indexOf("*/"_L1, m_position + 2);
    if (end < 0)
        fail(m_position, u"the comment is not closed"_s);
    m_position = end + 2;
    return end >= 0;
}

bool TextReader::take(qsizetype start, qint64 bytes)
{
    const Outcome taken = m_budget.take(bytes);
    if (!taken)
        fail(start, taken.error());
    return bool(taken);
}

bool TextReader::passOver(char16_t character)
{
    const bool isThere = isAt(character);
    m_position += isThere ? 1 : 0;
    return isThere;
}

QVariant TextReader::unexpected()
{
    if (isAtEnd())
        return fail(m_text.size(), u"the text ends before the list is complete"_s);
    const QChar character = m_text[m_position];
    const qsizetype width = character.isHighSurrogate() && m_position + 1 < m_text.size() ? 2 : 1;
    if (!character.isPrint() && width == 1)
        return fail(m_position,
                    u"unexpected character U+%1"_s.arg(int(character.unicode()), 4, 16, QChar(u'0')));
    return fail(m_position, u"unexpected character '%1'"_s.arg(m_text.sliced(m_position, width)));
}

QVariant TextReader::fail(qsizetype position, const QString &message)
{
    if (m_outcome)
        m_outcome = Error{placeInText(m_text, position) + message};
    return {};
}

} // namespace

Result<QVariant> readTextList(const QString &text)
{
    return TextReader(text).read();
}

} // namespace platform::propertylist
