#include "formats/codesignature/requirement.h"
#include "formats/codesignature/requirementcode.h"
#include "formats/codesignature/requirementtokens.h"

#include <QDateTime>
#include <QTimeZone>

#include <optional>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr qsizetype sha1Size = 20;

class Parser {
public:
    explicit Parser(QList<Token> tokens)
        : m_tokens(std::move(tokens))
    {
    }

    Result<QByteArray> single()
    {
        const QByteArray code = alternatives(0);
        while (accept(";")) { }
        if (m_outcome && next().kind != TokenKind::end)
            complain(u"unexpected \"%1\""_s.arg(QString::fromUtf8(next().bytes)));
        return m_outcome ? Result<QByteArray>(requirementBlob(code)) : m_outcome.failure();
    }

    Result<RequirementSet> set()
    {
        RequirementSet set;
        while (m_outcome && next().kind != TokenKind::end) {
            const auto type = requirementType();
            expect("=>");
            const QByteArray code = alternatives(0);
            if (set.contains(type))
                complain(u"a requirement of this type stands there already"_s);
            set.insert(type, requirementBlob(code));
            while (accept(";")) { }
        }
        if (set.isEmpty())
            complain(u"there is no requirement"_s);
        return m_outcome ? Result<RequirementSet>(set) : m_outcome.failure();
    }

private:
    RequirementType requirementType()
    {
        for (const RequirementType type :
             {RequirementType::host, RequirementType::guest, RequirementType::designated,
              RequirementType::library, RequirementType::plugin}) {
            if (accept(requirementTypeName(type).toLatin1()))
                return type;
        }
        complain(u"a type is missing, such as \"designated =>\""_s);
        return {};
    }

    // Operators of equal rank group from the left.
    QByteArray alternatives(int depth)
    {
        QByteArray code = conjunction(depth);
        while (accept("or"))
            code = joined(Operation::disjunction, code, conjunction(depth));
        return code;
    }

    QByteArray conjunction(int depth)
    {
        QByteArray code = primary(depth);
        while (accept("and"))
            code = joined(Operation::conjunction, code, primary(depth));
        return code;
    }

    static QByteArray joined(Operation operation, const QByteArray &left, const QByteArray &right)
    {
        return RequirementWriter().operation(operation).expression(left).expression(right).bytes();
    }

    QByteArray primary(int depth)
    {
        if (++m_terms > mostTerms || depth > deepestExpression)
            complain(u"the requirement is too large"_s);
        if (!m_outcome)
            return {};
        if (accept("("))
            return closed(alternatives(depth + 1));
        if (accept("!"))
            return RequirementWriter().operation(Operation::negation).expression(primary(depth + 1)).bytes();
        if (accept("always") || accept("true"))
            return plain(Operation::always);
        if (accept("never") || accept("false"))
            return plain(Operation::never);
        if (accept("notarized"))
            return plain(Operation::notarized);
        if (accept("legacy"))
            return plain(Operation::legacyDevId);
        return term();
    }

    QByteArray term()
    {
        if (accept("identifier")) {
            (void)accept("=");
            return RequirementWriter().operation(Operation::identifier).data(string()).bytes();
        }
        if (accept("cdhash"))
            return RequirementWriter().operation(Operation::cdHash).data(hash()).bytes();
        if (accept("platform"))
            return platform();
        if (accept("anchor"))
            return anchor();
        if (accept("certificate") || accept("cert"))
            return ofCertificate(certificateSlot());
        if (accept("info"))
            return RequirementWriter()
                .operation(Operation::infoKeyField)
                .data(key())
                .expression(match())
                .bytes();
        if (accept("entitlement"))
            return RequirementWriter()
                .operation(Operation::entitlementField)
                .data(key())
                .expression(match())
                .bytes();
        complain(u"unexpected \"%1\""_s.arg(QString::fromUtf8(next().bytes)));
        return {};
    }

    static QByteArray plain(Operation operation) { return RequirementWriter().operation(operation).bytes(); }

    QByteArray closed(const QByteArray &code)
    {
        expect(")");
        return code;
    }

    QByteArray platform()
    {
        expect("=");
        return RequirementWriter().operation(Operation::platform).number(number()).bytes();
    }

    QByteArray anchor()
    {
        if (accept("apple")) {
            if (accept("generic"))
                return plain(Operation::appleGenericAnchor);
            if (next().kind != TokenKind::text)
                return plain(Operation::appleAnchor);
            return RequirementWriter().operation(Operation::namedAnchor).data(string()).bytes();
        }
        if (accept("generic")) {
            expect("apple");
            return plain(Operation::appleGenericAnchor);
        }
        if (accept("trusted"))
            return plain(Operation::trustedCertificates);
        return ofCertificate(quint32(-1));
    }

    quint32 certificateSlot()
    {
        if (accept("leaf"))
            return 0;
        if (accept("root") || accept("anchor"))
            return quint32(-1);
        return number();
    }

    quint32 number()
    {
        const bool isNegative = accept("-");
        bool isNumber = false;
        const int number = take().bytes.toInt(&isNumber);
        if (!isNumber)
            complain(u"a number is missing"_s);
        return quint32(isNegative ? -number : number);
    }

    QByteArray ofCertificate(quint32 slotNumber)
    {
        if (accept("trusted"))
            return RequirementWriter().operation(Operation::trustedCertificate).number(slotNumber).bytes();
        if (next().bytes == "[")
            return ofCertificateField(slotNumber);
        (void)accept("=");
        return RequirementWriter().operation(Operation::anchorHash).number(slotNumber).data(hash()).bytes();
    }

    QByteArray ofCertificateField(quint32 slotNumber)
    {
        static const QList<std::pair<QByteArray, Operation>> kinds{
            {"field.", Operation::certificateGeneric},
            {"extension.", Operation::certificateGeneric},
            {"policy.", Operation::certificatePolicy},
            {"timestamp.", Operation::certificateFieldDate}};
        const QByteArray name = key();
        for (const auto &[prefix, operation] : kinds) {
            if (name.startsWith(prefix))
                return ofObject(slotNumber, operation, name.sliced(prefix.size()));
        }
        if (!name.startsWith("subject."))
            complain(u"unknown field \"%1\" of a certificate"_s.arg(QString::fromUtf8(name)));
        return RequirementWriter()
            .operation(Operation::certificateField)
            .number(slotNumber)
            .data(name)
            .expression(match())
            .bytes();
    }

    QByteArray ofObject(quint32 slotNumber, Operation operation, const QByteArray &name)
    {
        const QByteArray body = oidBody(QString::fromLatin1(name));
        if (body.isEmpty())
            complain(u"\"%1\" is no object identifier"_s.arg(QString::fromUtf8(name)));
        return RequirementWriter()
            .operation(operation)
            .number(slotNumber)
            .data(body)
            .expression(match())
            .bytes();
    }

    QByteArray match()
    {
        static const QList<std::pair<QByteArray, std::pair<Match, Match>>> signs{
            {"<", {Match::lessThan, Match::before}},
            {">", {Match::greaterThan, Match::after}},
            {"<=", {Match::lessEqual, Match::onOrBefore}},
            {">=", {Match::greaterEqual, Match::onOrAfter}}};
        if (accept("="))
            return accept("timestamp") ? dated(Match::on) : equalMatch();
        for (const auto &[sign, matches] : signs) {
            if (accept(sign))
                return accept("timestamp") ? dated(matches.second)
                                           : RequirementWriter().match(matches.first).data(string()).bytes();
        }
        if (accept("absent"))
            return RequirementWriter().match(Match::absent).bytes();
        (void)accept("exists");
        return RequirementWriter().match(Match::exists).bytes();
    }

    QByteArray equalMatch()
    {
        const bool isOpenBefore = accept("*");
        const QByteArray text = string();
        const bool isOpenBehind = accept("*");
        Match match = isOpenBefore ? Match::endsWith : Match::equal;
        if (isOpenBehind)
            match = isOpenBefore ? Match::contains : Match::beginsWith;
        return RequirementWriter().match(match).data(text).bytes();
    }

    QByteArray dated(Match match)
    {
        QDateTime date = QDateTime::fromString(QString::fromLatin1(string()), u"yyyyMMddHHmmss'Z'"_s);
        date.setTimeZone(QTimeZone::utc());
        if (!date.isValid())
            complain(u"a date is missing, such as \"20260131000000Z\""_s);
        const auto seconds = quint64(date.toSecsSinceEpoch() - referenceDate);
        return RequirementWriter()
            .match(match)
            .number(quint32(seconds >> 32))
            .number(quint32(seconds))
            .bytes();
    }

    QByteArray key()
    {
        expect("[");
        const QByteArray name = string();
        expect("]");
        return name;
    }

    QByteArray string()
    {
        const Token token = take();
        if (token.kind != TokenKind::word && token.kind != TokenKind::text)
            complain(u"a string is missing"_s);
        return token.bytes;
    }

    QByteArray hash()
    {
        const Token token = take();
        if (token.kind != TokenKind::hash || token.bytes.size() != sha1Size)
            complain(u"a hash of 20 bytes is missing, such as H\"…\""_s);
        return token.bytes;
    }

    [[nodiscard]] const Token &next() const { return m_tokens[m_at]; }

    Token take()
    {
        const Token token = next();
        m_at = std::min(m_at + 1, m_tokens.size() - 1);
        return token;
    }

    bool accept(QByteArrayView word)
    {
        const Token &token = next();
        const bool isWord = token.kind == TokenKind::word || token.kind == TokenKind::symbol;
        if (!isWord || token.bytes != word)
            return false;
        ++m_at;
        return true;
    }

    void expect(QByteArrayView word)
    {
        if (!accept(word))
            complain(u"\"%1\" is missing"_s.arg(QString::fromLatin1(word)));
    }

    void complain(const QString &problem)
    {
        if (m_outcome)
            m_outcome = platform::Error{problem + u" at character %1"_s.arg(next().at + 1)};
    }

    static constexpr int mostTerms = 2000;

    QList<Token> m_tokens;
    qsizetype m_at = 0;
    int m_terms = 0;
    platform::Outcome m_outcome;
};

} // namespace

Result<QByteArray> compileRequirement(const QString &text)
{
    auto tokens = requirementTokens(text);
    if (!tokens)
        return tokens.failure();
    return Parser(*std::move(tokens)).single();
}

Result<RequirementSet> compileRequirementSet(const QString &text)
{
    auto tokens = requirementTokens(text);
    if (!tokens)
        return tokens.failure();
    return Parser(*std::move(tokens)).set();
}

} // namespace toolchain::codesignature
