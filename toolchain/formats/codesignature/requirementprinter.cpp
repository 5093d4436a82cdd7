#include "formats/codesignature/requirement.h"
#include "formats/codesignature/requirementcode.h"

#include <QDateTime>
#include <QStringList>
#include <QTimeZone>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr qsizetype longestText = 1 << 20;

/// What stands around an expression, and so whether it needs parentheses.
enum class Around { nothing, disjunction, conjunction, negation };

bool isLetterOrDigit(QChar character)
{
    return character.unicode() < 0x80 && character.isLetterOrNumber();
}

bool isKeyword(const QString &word)
{
    static const QStringList keywords{
        u"guest"_s,   u"host"_s,        u"designated"_s, u"library"_s, u"plugin"_s,   u"or"_s,
        u"and"_s,     u"always"_s,      u"true"_s,       u"never"_s,   u"false"_s,    u"identifier"_s,
        u"cdhash"_s,  u"platform"_s,    u"notarized"_s,  u"legacy"_s,  u"anchor"_s,   u"apple"_s,
        u"generic"_s, u"certificate"_s, u"cert"_s,       u"trusted"_s, u"info"_s,     u"entitlement"_s,
        u"exists"_s,  u"absent"_s,      u"leaf"_s,       u"root"_s,    u"timestamp"_s};
    return keywords.contains(word);
}

bool isBareWord(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isLetterOrDigit) && !text[0].isDigit()
        && !isKeyword(text);
}

QString quoted(QString text)
{
    text.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
    return u'"' + text + u'"';
}

QString stringText(const QByteArray &bytes)
{
    const bool isPrintable =
        std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= 0x20 && byte < 0x7f; });
    const QString text = QString::fromLatin1(bytes);
    if (!isPrintable)
        return u"0x"_s + QString::fromLatin1(bytes.toHex());
    return isBareWord(text) ? text : quoted(text);
}

/// Where a bare word would be taken for the next part of the expression.
QString alwaysQuoted(const QByteArray &bytes)
{
    const QString text = stringText(bytes);
    return text.startsWith(u'"') || text.startsWith(u"0x"_s) ? text : quoted(text);
}

/// A key between brackets, where dots need no quotes.
QString keyText(const QByteArray &bytes)
{
    const QString text = QString::fromLatin1(bytes);
    const bool isPlain = !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar character) {
        return isLetterOrDigit(character) || character == u'.' || character == u'-' || character == u'_';
    });
    return isPlain ? text : stringText(bytes);
}

QString hashText(const QByteArray &bytes)
{
    return u"H\"%1\""_s.arg(QString::fromLatin1(bytes.toHex()));
}

QString certificateSlot(quint32 slotNumber)
{
    const auto number = qint32(slotNumber);
    if (number == 0)
        return u"leaf"_s;
    return number == -1 ? u"root"_s : QString::number(number);
}

QString dateText(qint64 seconds)
{
    return u"timestamp \"%1\""_s.arg(QDateTime::fromSecsSinceEpoch(seconds + referenceDate, QTimeZone::utc())
                                         .toString(u"yyyyMMddHHmmss'Z'"_s));
}

class Printer {
public:
    explicit Printer(QByteArrayView expression)
        : m_reader(expression)
    {
    }

    Result<QString> print()
    {
        expression(Around::nothing, 0);
        if (!m_outcome)
            return m_outcome.failure();
        if (m_reader.isCut() || !m_reader.isAtEnd())
            return Error{u"the requirement does not end where it should"_s};
        return m_text;
    }

private:
    void expression(Around around, int depth)
    {
        if (depth > deepestExpression || m_text.size() > longestText)
            m_outcome = platform::Error{u"the requirement is too large"_s};
        const quint32 operation = m_reader.number();
        if (!m_outcome || m_reader.isCut())
            return;
        switch (Operation(operation & operationMask)) {
        case Operation::conjunction:
            return pair(u" and "_s, Around::conjunction, around == Around::negation, depth);
        case Operation::disjunction:
            return pair(u" or "_s, Around::disjunction,
                        around == Around::conjunction || around == Around::negation, depth);
        case Operation::negation:
            m_text += u"! "_s;
            return expression(Around::negation, depth + 1);
        default:
            return simple(operation);
        }
    }

    void pair(const QString &word, Around around, bool needsParentheses, int depth)
    {
        m_text += needsParentheses ? u"("_s : QString();
        expression(around, depth + 1);
        m_text += word;
        expression(around, depth + 1);
        m_text += needsParentheses ? u")"_s : QString();
    }

    void simple(quint32 operation)
    {
        switch (Operation(operation & operationMask)) {
        case Operation::never:
            return add(u"never"_s);
        case Operation::always:
            return add(u"always"_s);
        case Operation::identifier:
            return add(u"identifier "_s + stringText(m_reader.data()));
        case Operation::appleAnchor:
            return add(u"anchor apple"_s);
        case Operation::appleGenericAnchor:
            return add(u"anchor apple generic"_s);
        case Operation::namedAnchor:
            return add(u"anchor apple "_s + alwaysQuoted(m_reader.data()));
        case Operation::namedCode:
            return add(u'(' + stringText(m_reader.data()) + u')');
        case Operation::cdHash:
            return add(u"cdhash "_s + hashText(m_reader.data()));
        case Operation::trustedCertificates:
            return add(u"anchor trusted"_s);
        case Operation::platform:
            return add(u"platform = %1"_s.arg(qint32(m_reader.number())));
        case Operation::notarized:
            return add(u"notarized"_s);
        case Operation::legacyDevId:
            return add(u"legacy"_s);
        default:
            return keyed(operation);
        }
    }

    void keyed(quint32 operation)
    {
        switch (Operation(operation & operationMask)) {
        case Operation::infoKeyValue: {
            const QString key = keyText(m_reader.data());
            return add(u"info[%1] = "_s.arg(key) + stringText(m_reader.data()));
        }
        case Operation::infoKeyField:
            add(u"info[%1]"_s.arg(keyText(m_reader.data())));
            return match();
        case Operation::entitlementField:
            add(u"entitlement[%1]"_s.arg(keyText(m_reader.data())));
            return match();
        default:
            return ofCertificate(operation);
        }
    }

    void ofCertificate(quint32 operation)
    {
        switch (Operation(operation & operationMask)) {
        case Operation::anchorHash:
            certificate();
            return add(u" = "_s + hashText(m_reader.data()));
        case Operation::trustedCertificate:
            certificate();
            return add(u" trusted"_s);
        case Operation::certificateField:
            certificate();
            add(u"[%1]"_s.arg(keyText(m_reader.data())));
            return match();
        case Operation::certificateGeneric:
            return ofObject(u"field"_s);
        case Operation::certificatePolicy:
            return ofObject(u"policy"_s);
        case Operation::certificateFieldDate:
            return ofObject(u"timestamp"_s);
        default:
            return unknown(operation);
        }
    }

    void certificate() { m_text += u"certificate "_s + certificateSlot(m_reader.number()); }

    void ofObject(const QString &kind)
    {
        certificate();
        m_text += u"[%1.%2]"_s.arg(kind, oidText(m_reader.data()));
        match();
    }

    void match()
    {
        const auto match = Match(m_reader.number());
        if (match >= Match::on && match <= Match::onOrAfter)
            return dateMatch(match);
        switch (match) {
        case Match::exists:
            return add(u" /* exists */"_s);
        case Match::absent:
            return add(u" absent"_s);
        case Match::equal:
            return add(u" = "_s + stringText(m_reader.data()));
        case Match::contains:
            return add(u" = *%1*"_s.arg(stringText(m_reader.data())));
        case Match::beginsWith:
            return add(u" = %1*"_s.arg(stringText(m_reader.data())));
        case Match::endsWith:
            return add(u" = *"_s + stringText(m_reader.data()));
        case Match::lessThan:
            return add(u" < "_s + stringText(m_reader.data()));
        case Match::greaterThan:
            return add(u" > "_s + stringText(m_reader.data()));
        case Match::lessEqual:
            return add(u" <= "_s + stringText(m_reader.data()));
        case Match::greaterEqual:
            return add(u" >= "_s + stringText(m_reader.data()));
        default:
            m_outcome =
                platform::Error{u"the requirement has an unknown comparison %1"_s.arg(quint32(match))};
        }
    }

    void dateMatch(Match match)
    {
        static const QMap<Match, QString> signs{{Match::on, u" = "_s},
                                                {Match::before, u" < "_s},
                                                {Match::after, u" > "_s},
                                                {Match::onOrBefore, u" <= "_s},
                                                {Match::onOrAfter, u" >= "_s}};
        add(signs.value(match) + dateText(m_reader.date()));
    }

    /// Later versions of the language may have said how a reader that does not know an operation passes over
    /// it.
    void unknown(quint32 operation)
    {
        const quint32 number = operation & operationMask;
        if (operation & unknownIsFalse)
            add(u" false /* opcode %1 */"_s.arg(number));
        else if (operation & unknownIsSkipped)
            add(u" /* opcode %1 */"_s.arg(number));
        else
            m_outcome = platform::Error{u"the requirement has an unknown operation %1"_s.arg(number)};
        if (operation & (unknownIsFalse | unknownIsSkipped))
            (void)m_reader.data();
    }

    void add(const QString &text) { m_text += text; }

    RequirementReader m_reader;
    QString m_text;
    platform::Outcome m_outcome;
};

} // namespace

Result<QString> requirementText(QByteArrayView blob)
{
    const auto expression = expressionIn(blob);
    if (!expression)
        return expression.failure();
    return Printer(*expression).print();
}

Result<QString> requirementSetText(const RequirementSet &set)
{
    QString lines;
    for (auto requirement = set.begin(); requirement != set.end(); ++requirement) {
        const auto text = requirementText(*requirement);
        if (!text)
            return text.failure();
        lines += requirementTypeName(requirement.key()) + u" => "_s + *text + u'\n';
    }
    return lines;
}

} // namespace toolchain::codesignature
