#include "formats/codesignature/certificatefacts.h"
#include "formats/codesignature/requirement.h"
#include "formats/codesignature/requirementcode.h"

#include <QCollator>
#include <QDateTime>
#include <QTimeZone>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr qint32 mostCertificates = 16;

/// The comparison of a field, as it stands in a requirement.
struct Comparison {
    Match match = Match::exists;
    QString text;
    qint64 date = 0;
};

/// Numbers within texts count by their value, so that 10.9 comes before 10.15.
int compared(const QString &one, const QString &other)
{
    const QStringList left = one.split(u'.');
    const QStringList right = other.split(u'.');
    for (qsizetype index = 0; index < std::min(left.size(), right.size()); ++index) {
        bool isLeftNumber = false;
        bool isRightNumber = false;
        const qlonglong leftNumber = left[index].toLongLong(&isLeftNumber);
        const qlonglong rightNumber = right[index].toLongLong(&isRightNumber);
        const int order = isLeftNumber && isRightNumber
            ? (leftNumber < rightNumber ? -1 : int(leftNumber > rightNumber))
            : QString::compare(left[index], right[index]);
        if (order != 0)
            return order;
    }
    return left.size() < right.size() ? -1 : int(left.size() > right.size());
}

bool matchesText(const QString &value, const Comparison &comparison)
{
    switch (comparison.match) {
    case Match::equal:
        return value == comparison.text;
    case Match::contains:
        return value.contains(comparison.text);
    case Match::beginsWith:
        return value.startsWith(comparison.text);
    case Match::endsWith:
        return value.endsWith(comparison.text);
    case Match::lessThan:
        return compared(value, comparison.text) < 0;
    case Match::greaterThan:
        return compared(value, comparison.text) > 0;
    case Match::lessEqual:
        return compared(value, comparison.text) <= 0;
    case Match::greaterEqual:
        return compared(value, comparison.text) >= 0;
    default:
        return false;
    }
}

bool matchesDate(const QString &value, const Comparison &comparison)
{
    QDateTime date = QDateTime::fromString(value, u"yyyyMMddHHmmss'Z'"_s);
    if (!date.isValid())
        date = QDateTime::fromString(u"20"_s + value, u"yyyyMMddHHmmss'Z'"_s);
    date.setTimeZone(QTimeZone::utc());
    const qint64 seconds = date.toSecsSinceEpoch() - referenceDate;
    switch (comparison.match) {
    case Match::on:
        return date.isValid() && seconds == comparison.date;
    case Match::before:
        return date.isValid() && seconds < comparison.date;
    case Match::after:
        return date.isValid() && seconds > comparison.date;
    case Match::onOrBefore:
        return date.isValid() && seconds <= comparison.date;
    default:
        return date.isValid() && seconds >= comparison.date;
    }
}

/// An invalid value stands for a field that is not there. Of a list one element is enough.
bool matches(const QVariant &value, const Comparison &comparison)
{
    if (comparison.match == Match::absent)
        return !value.isValid();
    if (!value.isValid())
        return false;
    const bool isFalse = value.metaType() == QMetaType::fromType<bool>() && !value.toBool();
    if (comparison.match == Match::exists)
        return !isFalse;
    if (value.metaType() == QMetaType::fromType<QVariantList>()) {
        const QVariantList list = value.toList();
        return std::any_of(list.begin(), list.end(),
                           [&comparison](const QVariant &element) { return matches(element, comparison); });
    }
    const bool isDated = comparison.match >= Match::on && comparison.match <= Match::onOrAfter;
    return isDated ? matchesDate(value.toString(), comparison) : matchesText(value.toString(), comparison);
}

class Evaluation {
public:
    Evaluation(QByteArrayView expression, const RequirementSubject &subject)
        : m_reader(expression)
        , m_subject(subject)
    {
    }

    Result<bool> run()
    {
        const bool isMet = expression(0);
        if (!m_outcome)
            return m_outcome.failure();
        if (m_reader.isCut() || !m_reader.isAtEnd())
            return Error{u"the requirement does not end where it should"_s};
        return isMet;
    }

private:
    // Both sides of a pair are read in every case, since what follows begins where they end.
    bool expression(int depth)
    {
        if (depth > deepestExpression)
            m_outcome = platform::Error{u"the requirement is too large"_s};
        const quint32 operation = m_reader.number();
        if (!m_outcome || m_reader.isCut())
            return false;
        switch (Operation(operation & operationMask)) {
        case Operation::conjunction: {
            const bool left = expression(depth + 1);
            return expression(depth + 1) && left;
        }
        case Operation::disjunction: {
            const bool left = expression(depth + 1);
            return expression(depth + 1) || left;
        }
        case Operation::negation:
            return !expression(depth + 1);
        default:
            return simple(operation);
        }
    }

    bool simple(quint32 operation)
    {
        switch (Operation(operation & operationMask)) {
        case Operation::never:
            return false;
        case Operation::always:
            return true;
        case Operation::identifier:
            return QString::fromUtf8(m_reader.data()) == m_subject.identifier;
        case Operation::cdHash:
            return m_subject.cdHashes.contains(m_reader.data());
        case Operation::appleAnchor:
            return isApplesOwn();
        case Operation::appleGenericAnchor:
            return m_subject.endsInApplesRoot;
        case Operation::namedAnchor:
        case Operation::namedCode:
            (void)m_reader.data();
            return false;
        case Operation::platform:
            (void)m_reader.number();
            return false;
        case Operation::notarized:
            return m_subject.isNotarized;
        case Operation::legacyDevId:
            return false;
        default:
            return keyed(operation);
        }
    }

    bool keyed(quint32 operation)
    {
        switch (Operation(operation & operationMask)) {
        case Operation::infoKeyValue: {
            const QVariant value = m_subject.info.value(QString::fromUtf8(m_reader.data()));
            return value.isValid() && value.toString() == QString::fromUtf8(m_reader.data());
        }
        case Operation::infoKeyField:
            return isMatched(m_subject.info.value(QString::fromUtf8(m_reader.data())));
        case Operation::entitlementField:
            return isMatched(m_subject.entitlements.value(QString::fromUtf8(m_reader.data())));
        default:
            return ofCertificate(operation);
        }
    }

    bool ofCertificate(quint32 operation)
    {
        switch (Operation(operation & operationMask)) {
        case Operation::anchorHash: {
            const QByteArray certificate = certificateAt(m_reader.number());
            const QByteArray hash = m_reader.data();
            return !certificate.isEmpty() && CertificateFacts(certificate).sha1() == hash;
        }
        case Operation::certificateField:
            return fieldOfCertificate();
        case Operation::certificateGeneric:
        case Operation::certificateFieldDate:
            return extensionOfCertificate();
        case Operation::certificatePolicy:
            return policyOfCertificate();
        case Operation::trustedCertificate:
            return isTrusted(indexOf(m_reader.number()));
        case Operation::trustedCertificates:
            return isAnyTrusted();
        default:
            return unknown(operation);
        }
    }

    bool fieldOfCertificate()
    {
        const QByteArray certificate = certificateAt(m_reader.number());
        QString name = QString::fromUtf8(m_reader.data());
        const auto value = certificate.isEmpty() || !name.startsWith(u"subject."_s)
            ? std::nullopt
            : CertificateFacts(certificate).subject(name.sliced(u"subject."_s.size()));
        return isMatched(value ? QVariant(*value) : QVariant());
    }

    bool extensionOfCertificate()
    {
        const QByteArray certificate = certificateAt(m_reader.number());
        const QString oid = oidText(m_reader.data());
        const auto value =
            certificate.isEmpty() ? std::nullopt : CertificateFacts(certificate).extension(oid);
        return isMatched(value ? QVariant(QString::fromUtf8(*value)) : QVariant());
    }

    bool policyOfCertificate()
    {
        const QByteArray certificate = certificateAt(m_reader.number());
        const QString oid = oidText(m_reader.data());
        const bool hasPolicy = !certificate.isEmpty() && CertificateFacts(certificate).hasPolicy(oid);
        return isMatched(hasPolicy ? QVariant(true) : QVariant());
    }

    bool unknown(quint32 operation)
    {
        if (operation & (unknownIsFalse | unknownIsSkipped))
            (void)m_reader.data();
        else
            m_outcome = platform::Error{
                u"the requirement has an unknown operation %1"_s.arg(operation & operationMask)};
        return (operation & unknownIsFalse) == 0;
    }

    bool isMatched(const QVariant &value)
    {
        Comparison comparison{Match(m_reader.number()), {}, 0};
        if (comparison.match > Match::absent)
            m_outcome = platform::Error{
                u"the requirement has an unknown comparison %1"_s.arg(quint32(comparison.match))};
        else if (comparison.match >= Match::on && comparison.match <= Match::onOrAfter)
            comparison.date = m_reader.date();
        else if (comparison.match != Match::exists && comparison.match != Match::absent)
            comparison.text = QString::fromUtf8(m_reader.data());
        return matches(value, comparison);
    }

    [[nodiscard]] qsizetype indexOf(quint32 slotNumber) const
    {
        const auto number = qint32(slotNumber);
        if (number < -mostCertificates || number > mostCertificates)
            return -1;
        const qsizetype index = number < 0 ? m_subject.chain.size() + number : number;
        return index >= 0 && index < m_subject.chain.size() ? index : -1;
    }

    [[nodiscard]] QByteArray certificateAt(quint32 slotNumber) const
    {
        const qsizetype index = indexOf(slotNumber);
        return index < 0 ? QByteArray() : m_subject.chain[index];
    }

    [[nodiscard]] bool isTrusted(qsizetype index) const
    {
        return index >= 0 && m_subject.isTrusted && m_subject.isTrusted(index);
    }

    [[nodiscard]] bool isAnyTrusted() const
    {
        for (qsizetype index = 0; index < m_subject.chain.size(); ++index) {
            if (isTrusted(index))
                return true;
        }
        return false;
    }

    /// What Apple itself has made, not what it lets others sign.
    [[nodiscard]] bool isApplesOwn() const
    {
        return m_subject.endsInApplesRoot && m_subject.chain.size() == 3
            && CertificateFacts(m_subject.chain[0]).commonName() == u"Software Signing"_s
            && CertificateFacts(m_subject.chain[1]).commonName()
            == u"Apple Code Signing Certification Authority"_s;
    }

    RequirementReader m_reader;
    const RequirementSubject &m_subject;
    platform::Outcome m_outcome;
};

} // namespace

Result<bool> meetsRequirement(QByteArrayView blob, const RequirementSubject &subject)
{
    const auto expression = expressionIn(blob);
    if (!expression)
        return expression.failure();
    return Evaluation(*expression, subject).run();
}

} // namespace toolchain::codesignature
