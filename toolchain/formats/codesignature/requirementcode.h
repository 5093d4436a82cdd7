#pragma once

#include "formats/bigendian.h"

#include <QByteArray>
#include <QString>

#include <algorithm>

#include "platform/result.h"

/// The numbers of the binary form of requirements, and what writes and reads its parts.
namespace toolchain::codesignature {

enum class Operation : quint32 {
    False = 0,
    True = 1,
    Identifier = 2,
    AppleAnchor = 3,
    AnchorHash = 4,
    InfoKeyValue = 5,
    And = 6,
    Or = 7,
    CdHash = 8,
    Not = 9,
    InfoKeyField = 10,
    CertificateField = 11,
    TrustedCertificate = 12,
    TrustedCertificates = 13,
    CertificateGeneric = 14,
    AppleGenericAnchor = 15,
    EntitlementField = 16,
    CertificatePolicy = 17,
    NamedAnchor = 18,
    NamedCode = 19,
    Platform = 20,
    Notarized = 21,
    CertificateFieldDate = 22,
    LegacyDevId = 23
};

enum class Match : quint32 {
    Exists = 0,
    Equal = 1,
    Contains = 2,
    BeginsWith = 3,
    EndsWith = 4,
    LessThan = 5,
    GreaterThan = 6,
    LessEqual = 7,
    GreaterEqual = 8,
    On = 9,
    Before = 10,
    After = 11,
    OnOrBefore = 12,
    OnOrAfter = 13,
    Absent = 14
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
