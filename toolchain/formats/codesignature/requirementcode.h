#pragma once

#include "formats/bigendian.h"

#include <QByteArray>
#include <QString>

#include <algorithm>

#include "platform/result.h"

/// The numbers of the binary form of requirements, and what writes and reads its parts.
namespace toolchain::codesignature {

enum class Operation : quint32 {
    never = 0,
    always = 1,
    identifier = 2,
    appleAnchor = 3,
    anchorHash = 4,
    infoKeyValue = 5,
    conjunction = 6,
    disjunction = 7,
    cdHash = 8,
    negation = 9,
    infoKeyField = 10,
    certificateField = 11,
    trustedCertificate = 12,
    trustedCertificates = 13,
    certificateGeneric = 14,
    appleGenericAnchor = 15,
    entitlementField = 16,
    certificatePolicy = 17,
    namedAnchor = 18,
    namedCode = 19,
    platform = 20,
    notarized = 21,
    certificateFieldDate = 22,
    legacyDevId = 23
};

enum class Match : quint32 {
    exists = 0,
    equal = 1,
    contains = 2,
    beginsWith = 3,
    endsWith = 4,
    lessThan = 5,
    greaterThan = 6,
    lessEqual = 7,
    greaterEqual = 8,
    on = 9,
    before = 10,
    after = 11,
    onOrBefore = 12,
    onOrAfter = 13,
    absent = 14
};

inline constexpr quint32 operationMask = 0x00ffffff;
inline constexpr quint32 unknownIsFalse = 0x80000000;
inline constexpr quint32 unknownIsSkipped = 0x40000000;
inline constexpr quint32 expressionKind = 1;
inline constexpr int deepestExpression = 200;

/// An expression in the making, in prefix form.
class RequirementWriter {
public:
    RequirementWriter &operation(Operation operation) { return number(quint32(operation)); }
    RequirementWriter &match(Match match) { return number(quint32(match)); }
    RequirementWriter &number(quint32 number)
    {
        m_bytes.u32(number);
        return *this;
    }
    /// Its length, the bytes and zeros up to the next multiple of four.
    RequirementWriter &data(QByteArrayView bytes)
    {
        m_bytes.u32(quint32(bytes.size())).raw(bytes).zeros(-bytes.size() & 3);
        return *this;
    }
    RequirementWriter &expression(QByteArrayView bytes)
    {
        m_bytes.raw(bytes);
        return *this;
    }

    [[nodiscard]] const QByteArray &bytes() const { return m_bytes.bytes(); }

private:
    BigEndianBytes m_bytes;
};

/// Takes an expression apart from its beginning. After something that is not there all that follows is 0 or
/// empty.
class RequirementReader {
public:
    explicit RequirementReader(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }

    [[nodiscard]] quint32 number()
    {
        m_isCut = m_isCut || m_bytes.size() - m_at < 4;
        if (m_isCut)
            return 0;
        m_at += 4;
        return bigEndianAt<quint32>(m_bytes, m_at - 4);
    }

    [[nodiscard]] QByteArray data()
    {
        const auto length = qsizetype(number());
        m_isCut = m_isCut || length > m_bytes.size() - m_at;
        if (m_isCut)
            return {};
        const qsizetype at = m_at;
        m_at = std::min(m_bytes.size(), at + ((length + 3) & ~qsizetype(3)));
        return m_bytes.sliced(at, length).toByteArray();
    }

    [[nodiscard]] qint64 date()
    {
        const quint64 high = number();
        return qint64(high << 32 | number());
    }

    void skip(qsizetype length) { m_at = std::min(m_bytes.size(), m_at + length); }
    [[nodiscard]] bool isCut() const { return m_isCut; }
    [[nodiscard]] bool isAtEnd() const { return m_at == m_bytes.size(); }

private:
    QByteArrayView m_bytes;
    qsizetype m_at = 0;
    bool m_isCut = false;
};

/// The blob of a requirement with this expression.
[[nodiscard]] QByteArray requirementBlob(const QByteArray &expression);

/// The expression within a blob.
[[nodiscard]] platform::Result<QByteArrayView> expressionIn(QByteArrayView blob);

/// "1.2.840.113635" of the content of an object identifier, and back; empty where it is none.
[[nodiscard]] QString oidText(QByteArrayView body);
[[nodiscard]] QByteArray oidBody(const QString &text);

/// What 2001-01-01 00:00 UTC is in seconds since 1970: dates in requirements are counted from there.
inline constexpr qint64 referenceDate = 978307200;

} // namespace toolchain::codesignature
