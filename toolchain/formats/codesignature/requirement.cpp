#include "formats/codesignature/requirement.h"

#include "formats/codesignature/requirementcode.h"
#include "formats/codesignature/superblob.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr int bitsOfOidByte = 7;
constexpr quint64 largestOidPart = quint64(1) << 56;

void appendBase128(QByteArray &body, quint64 number)
{
    QByteArray bytes(1, char(number & 0x7f));
    for (number >>= bitsOfOidByte; number > 0; number >>= bitsOfOidByte)
        bytes.prepend(char(0x80 | (number & 0x7f)));
    body += bytes;
}

} // namespace

QString requirementTypeName(RequirementType type)
{
    switch (type) {
    case RequirementType::host:
        return u"host"_s;
    case RequirementType::guest:
        return u"guest"_s;
    case RequirementType::designated:
        return u"designated"_s;
    case RequirementType::library:
        return u"library"_s;
    case RequirementType::plugin:
        return u"plugin"_s;
    }
    return u"/*unknown type*/ %1"_s.arg(quint32(type));
}

QByteArray requirementBlob(const QByteArray &expression)
{
    return makeBlob(magic::requirement, BigEndianBytes().u32(expressionKind).raw(expression).bytes());
}

Result<QByteArrayView> expressionIn(QByteArrayView blob)
{
    const auto all = blobIn(blob, magic::requirement);
    if (!all)
        return Error{u"the requirement is damaged: "_s + all.error()};
    if (bigEndianAt<quint32>(*all, 8) != expressionKind || all->size() % 4 != 0)
        return Error{u"the requirement is no expression"_s};
    return all->sliced(12);
}

QByteArray requirementSetBlob(const RequirementSet &set)
{
    SuperBlob blobs(magic::requirementSet);
    for (auto requirement = set.begin(); requirement != set.end(); ++requirement)
        blobs.set(quint32(requirement.key()), *requirement);
    return blobs.bytes();
}

Result<RequirementSet> readRequirementSet(QByteArrayView blob)
{
    const auto blobs = SuperBlob::parse(blob, magic::requirementSet);
    if (!blobs)
        return Error{u"the set of requirements is damaged: "_s + blobs.error()};
    RequirementSet set;
    for (const IndexedBlob &requirement : blobs->blobs())
        set.insert(RequirementType(requirement.type), requirement.bytes);
    return set;
}

QString oidText(QByteArrayView body)
{
    QStringList parts;
    quint64 number = 0;
    for (const char byte : body) {
        if (number >= largestOidPart)
            return {};
        number = number << bitsOfOidByte | (quint8(byte) & 0x7f);
        if (quint8(byte) & 0x80)
            continue;
        if (parts.isEmpty()) {
            const quint64 first = std::min<quint64>(number / 40, 2);
            parts.append(QString::number(first));
            number -= first * 40;
        }
        parts.append(QString::number(number));
        number = 0;
    }
    return parts.join(u'.');
}

QByteArray oidBody(const QString &text)
{
    QList<quint64> parts;
    for (const QString &part : text.split(u'.')) {
        bool isNumber = false;
        parts.append(part.toULongLong(&isNumber));
        if (!isNumber || parts.last() >= largestOidPart)
            return {};
    }
    if (parts.size() < 2 || parts[0] > 2 || (parts[0] < 2 && parts[1] >= 40))
        return {};
    QByteArray body;
    appendBase128(body, parts[0] * 40 + parts[1]);
    for (const quint64 part : parts.sliced(2))
        appendBase128(body, part);
    return body;
}

QByteArray requirementForCdHashes(const QList<QByteArray> &cdHashes)
{
    QByteArray expression;
    for (const QByteArray &cdHash : cdHashes) {
        const QByteArray one = RequirementWriter().operation(Operation::cdHash).data(cdHash).bytes();
        expression = expression.isEmpty() ? one
                                          : RequirementWriter()
                                                .operation(Operation::disjunction)
                                                .expression(expression)
                                                .expression(one)
                                                .bytes();
    }
    return requirementBlob(expression);
}

} // namespace toolchain::codesignature
