#include "formats/codesignature/requirementtokens.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr qsizetype longestText = 1 << 20;

bool isWordByte(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9')
        || byte == '.' || byte == '_' || quint8(byte) >= 0x80;
}

class Tokenizer {
public:
    explicit Tokenizer(QByteArray text)
        : m_text(std::move(text))
    {
    }

    Result<QList<Token>> tokens()
    {
        while (m_outcome && passOverBlanks())
            takeOne();
        if (!m_outcome)
            return Error{m_outcome.error() + u" at character %1"_s.arg(m_at + 1)};
        m_tokens.append({TokenKind::end, {}, m_at});
        return m_tokens;
    }

private:
    /// False at the end.
    bool passOverBlanks()
    {
        while (m_at < m_text.size()) {
            if (QByteArrayView(" \t\r\n").contains(m_text[m_at]))
                ++m_at;
            else if (startsWith("#") || startsWith("//"))
                passTo("\n");
            else if (startsWith("/*"))
                passTo("*/");
            else
                return true;
        }
        return false;
    }

    void passTo(QByteArrayView end)
    {
        const qsizetype found = m_text.indexOf(end, m_at + 1);
        m_at = found < 0 ? m_text.size() : found + end.size();
    }

    void takeOne()
    {
        if (startsWith("H\""))
            takeHash();
        else if (m_text[m_at] == '"')
            takeQuoted();
        else if (startsWith("0x"))
            takeHexadecimal();
        else if (isWordByte(m_text[m_at]))
            takeWord();
        else
            takeSymbol();
    }

    void takeHash()
    {
        const qsizetype end = m_text.indexOf('"', m_at + 2);
        const QByteArray digits = m_text.mid(m_at + 2, end - m_at - 2);
        const QByteArray bytes = QByteArray::fromHex(digits);
        if (end < 0 || bytes.isEmpty() || bytes.toHex() != digits.toLower())
            m_outcome = platform::Error{u"invalid hash"_s};
        add(TokenKind::hash, bytes, end + 1);
    }

    void takeQuoted()
    {
        QByteArray bytes;
        qsizetype at = m_at + 1;
        for (; at < m_text.size() && m_text[at] != '"'; ++at) {
            at += m_text[at] == '\\' && at + 1 < m_text.size();
            bytes.append(m_text[at]);
        }
        if (at >= m_text.size())
            m_outcome = platform::Error{u"unterminated string"_s};
        add(TokenKind::text, bytes, at + 1);
    }

    void takeHexadecimal()
    {
        const qsizetype end = wordEnd();
        const QByteArray digits = m_text.mid(m_at + 2, end - m_at - 2);
        const QByteArray bytes = QByteArray::fromHex(digits);
        if (bytes.toHex() != digits.toLower())
            m_outcome = platform::Error{u"invalid bytes"_s};
        add(TokenKind::text, bytes, end);
    }

    void takeWord()
    {
        const qsizetype end = wordEnd();
        add(TokenKind::word, m_text.mid(m_at, end - m_at), end);
    }

    /// A hyphen belongs to a word that has begun.
    [[nodiscard]] qsizetype wordEnd() const
    {
        qsizetype end = m_at;
        while (end < m_text.size() && (isWordByte(m_text[end]) || m_text[end] == '-'))
            ++end;
        return end;
    }

    void takeSymbol()
    {
        for (const char *symbol : {"=>", "<=", ">=", "(", ")", "[", "]", "=", "!", "<", ">", "*", ";", "-"}) {
            if (startsWith(symbol))
                return add(TokenKind::symbol, symbol, m_at + qsizetype(strlen(symbol)));
        }
        m_outcome = platform::Error{u"unexpected character"_s};
    }

    void add(TokenKind kind, const QByteArray &bytes, qsizetype end)
    {
        if (!m_outcome)
            return;
        m_tokens.append({kind, bytes, m_at});
        m_at = end;
    }

    [[nodiscard]] bool startsWith(QByteArrayView start) const
    {
        return QByteArrayView(m_text).sliced(m_at).startsWith(start);
    }

    QByteArray m_text;
    qsizetype m_at = 0;
    QList<Token> m_tokens;
    platform::Outcome m_outcome;
};

} // namespace

Result<QList<Token>> requirementTokens(const QString &text)
{
    if (text.size() > longestText)
        return Error{u"the text is too long"_s};
    return Tokenizer(text.toUtf8()).tokens();
}

} // namespace toolchain::codesignature
