#include "about/credits.h"

#include <QFile>
#include <QSet>
#include <QStack>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

class RtfReader {
public:
    explicit RtfReader(const QByteArray &rtf)
        : m_rtf(rtf)
    {
    }

    QList<StyledText> read();

private:
    /// What ends with the group that it was set in.
    struct Style {
        bool isBold = false;
        bool isItalic = false;
        bool isHidden = false; ///< text for programs: a table of fonts, a note
        int fallbackLength = 1; ///< characters that stand behind a Unicode one for those who cannot read it
        bool operator==(const Style &) const = default;
    };

    void readNext();
    void readControl();
    void readControlWord();
    void apply(const QByteArray &word, std::optional<int> parameter);
    void appendHexCharacter();
    void appendUnicodeCharacter(int code);
    void append(QStringView text);
    char take() { return m_rtf[m_position++]; }
    bool isAtEnd() const { return m_position >= m_rtf.size(); }

    const QByteArray m_rtf;
    qsizetype m_position = 0;
    int m_toSkip = 0;
    Style m_style;
    QStack<Style> m_outerStyles;
    QList<StyledText> m_text;
};

QList<StyledText> RtfReader::read()
{
    while (!isAtEnd())
        readNext();
    return m_text;
}

void RtfReader::readNext()
{
    switch (const char character = take()) {
    case '{':
        m_outerStyles.push(m_style);
        break;
    case '}':
        if (!m_outerStyles.isEmpty())
            m_style = m_outerStyles.pop();
        break;
    case '\\':
        readControl();
        break;
    case '\r':
    case '\n':
        break; // a line end of the file, not of the text
    default:
        append(QString(QLatin1Char(character)));
    }
}

void RtfReader::readControl()
{
    if (isAtEnd())
        return;
    const char symbol = m_rtf[m_position];
    if ((symbol >= 'a' && symbol <= 'z') || (symbol >= 'A' && symbol <= 'Z'))
        return readControlWord();
    ++m_position;
    if (symbol == '\'')
        appendHexCharacter();
    else if (symbol == '*')
        m_style.isHidden = true;
    else if (symbol == '~')
        append(u"\u00a0");
    else if (symbol == '\n')
        append(u"\n");
    else if (symbol == '\\' || symbol == '{' || symbol == '}')
        append(QString(QLatin1Char(symbol)));
}

void RtfReader::readControlWord()
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const auto isOfNumber = [](char c) { return c == '-' || (c >= '0' && c <= '9'); };
    const auto takeWhile = [this](auto belongs) {
        const qsizetype start = m_position;
        while (!isAtEnd() && belongs(m_rtf[m_position]))
            ++m_position;
        return m_rtf.mid(start, m_position - start);
    };
    const QByteArray word = takeWhile(isLetter);
    bool isNumber = false;
    const int number = takeWhile(isOfNumber).toInt(&isNumber);
    if (!isAtEnd() && m_rtf[m_position] == ' ')
        ++m_position; // the blank that ends a word belongs to it
    apply(word, isNumber ? std::optional(number) : std::nullopt);
}

void RtfReader::apply(const QByteArray &word, std::optional<int> parameter)
{
    static const QSet<QByteArray> tables{"fonttbl", "colortbl", "stylesheet", "info", "pict"};
    const bool isOn = parameter.value_or(1) != 0;
    if (word == "b")
        m_style.isBold = isOn;
    else if (word == "i")
        m_style.isItalic = isOn;
    else if (word == "uc")
        m_style.fallbackLength = parameter.value_or(1);
    else if (word == "u")
        appendUnicodeCharacter(parameter.value_or(0));
    else if (word == "par" || word == "line")
        append(u"\n");
    else if (word == "tab")
        append(u"\t");
    else if (tables.contains(word))
        m_style.isHidden = true;
}

void RtfReader::appendHexCharacter()
{
    const QByteArray digits = m_rtf.mid(m_position, 2);
    m_position += digits.size();
    append(QString::fromLatin1(QByteArray::fromHex(digits)));
}

void RtfReader::appendUnicodeCharacter(int code)
{
    append(QString(QChar(static_cast<char16_t>(code)))); // negative above 0x7fff
    m_toSkip = m_style.fallbackLength;
}

void RtfReader::append(QStringView text)
{
    if (m_toSkip > 0) {
        --m_toSkip;
        return;
    }
    if (m_style.isHidden)
        return;
    if (m_text.isEmpty() || m_text.last().isBold != m_style.isBold
        || m_text.last().isItalic != m_style.isItalic)
        m_text.append({{}, m_style.isBold, m_style.isItalic});
    m_text.last().text += text;
}

} // namespace

QList<StyledText> styledTextFromRtf(const QByteArray &rtf)
{
    return RtfReader(rtf).read();
}

QList<StyledText> readCredits(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? styledTextFromRtf(file.readAll()) : QList<StyledText>();
}

} // namespace sealwright
