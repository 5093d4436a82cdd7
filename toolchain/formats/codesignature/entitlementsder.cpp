#include "formats/codesignature/entitlementsder.h"

#include "formats/codesignature/codedirectory.h"

#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

namespace tag {
constexpr quint8 boolean = 0x01;
constexpr quint8 integer = 0x02;
constexpr quint8 octets = 0x04;
constexpr quint8 utf8 = 0x0c;
constexpr quint8 sequence = 0x30;
constexpr quint8 set = 0x31;
constexpr quint8 top = 0x70; // APPLICATION 16
constexpr quint8 dictionary = 0xb0; // CONTEXT 16
} // namespace tag

constexpr int deepest = 64;
constexpr qsizetype mostValues = 100000;

QByteArray element(quint8 tag, QByteArrayView content)
{
    constexpr qsizetype longestShort = 0x7f;
    QByteArray bytes(1, char(tag));
    if (content.size() <= longestShort)
        return bytes.append(char(content.size())).append(content);
    QByteArray length;
    for (auto rest = quint64(content.size()); rest > 0; rest >>= 8)
        length.prepend(char(rest & 0xff));
    return bytes.append(char(0x80 | length.size())).append(length).append(content);
}

QByteArray integerContent(qint64 number)
{
    QByteArray bytes(1, char(number & 0xff));
    while (number < -0x80 || number > 0x7f) {
        number >>= 8;
        bytes.prepend(char(number & 0xff));
    }
    return bytes;
}

bool isInteger(const QVariant &value)
{
    const int type = value.metaType().id();
    return type == QMetaType::Int || type == QMetaType::LongLong || type == QMetaType::UInt
        || type == QMetaType::ULongLong;
}

class Encoder {
public:
    QByteArray dictionary(const QVariantMap &map, int depth)
    {
        QMap<QByteArray, QVariant> sorted;
        for (auto entry = map.begin(); entry != map.end(); ++entry)
            sorted.insert(entry.key().toUtf8(), *entry);
        QByteArray content;
        for (auto entry = sorted.begin(); entry != sorted.end(); ++entry) {
            m_key = QString::fromUtf8(entry.key());
            content += element(tag::sequence, element(tag::utf8, entry.key()) + value(*entry, depth));
        }
        return element(tag::dictionary, content);
    }

    [[nodiscard]] const platform::Outcome &outcome() const { return m_outcome; }

private:
    QByteArray value(const QVariant &value, int depth)
    {
        if (depth > deepest)
            return complain(u"is nested too deeply"_s);
        if (value.metaType().id() == QMetaType::Bool)
            return element(tag::boolean, QByteArray(1, value.toBool() ? '\xff' : '\0'));
        if (isInteger(value))
            return element(tag::integer, integerContent(value.toLongLong()));
        switch (value.metaType().id()) {
        case QMetaType::QString:
            return element(tag::utf8, value.toString().toUtf8());
        case QMetaType::QByteArray:
            return element(tag::octets, value.toByteArray());
        case QMetaType::QVariantMap:
            return dictionary(value.toMap(), depth + 1);
        case QMetaType::QVariantList:
            return array(value.toList(), depth + 1);
        default:
            return complain(
                u"is neither a boolean, a whole number, a string, data, an array nor a dictionary"_s);
        }
    }

    QByteArray array(const QVariantList &list, int depth)
    {
        QByteArray content;
        for (const QVariant &entry : list)
            content += value(entry, depth);
        return element(tag::sequence, content);
    }

    QByteArray complain(const QString &problem)
    {
        if (m_outcome)
            m_outcome = platform::Error{u"the value of \"%1\" "_s.arg(m_key) + problem};
        return {};
    }

    QString m_key;
    platform::Outcome m_outcome;
};

/// An element at the beginning of some bytes.
struct Element {
    quint8 tag = 0;
    QByteArrayView content;
};

class Decoder {
public:
    Result<QVariantMap> decode(QByteArrayView der)
    {
        QByteArrayView rest = der;
        const Element whole = takeAny(rest);
        m_isBad = m_isBad || !rest.isEmpty();
        const QVariantMap result = whole.tag == tag::set ? dictionary(whole.content, 0) : versioned(whole);
        return m_isBad ? Result<QVariantMap>(Error{u"the entitlements are no valid DER"_s}) : result;
    }

private:
    QVariantMap versioned(const Element &whole)
    {
        QByteArrayView parts = whole.content;
        const Element version = take(parts, tag::integer);
        const Element map = take(parts, tag::dictionary);
        if (whole.tag != tag::top || !parts.isEmpty() || version.content != QByteArrayView("\1"))
            m_isBad = true;
        return dictionary(map.content, 0);
    }

    QVariantMap dictionary(QByteArrayView content, int depth)
    {
        QVariantMap map;
        while (!content.isEmpty() && !m_isBad) {
            QByteArrayView pair = take(content, tag::sequence).content;
            const QString key = QString::fromUtf8(take(pair, tag::utf8).content);
            const QVariant entry = value(pair, depth);
            m_isBad = m_isBad || !pair.isEmpty() || map.contains(key);
            map.insert(key, entry);
        }
        return map;
    }

    QVariant value(QByteArrayView &bytes, int depth)
    {
        const Element next = takeAny(bytes);
        if (depth > deepest || ++m_values > mostValues)
            m_isBad = true;
        if (m_isBad)
            return {};
        switch (next.tag) {
        case tag::boolean:
            m_isBad = m_isBad || next.content.size() != 1;
            return !m_isBad && next.content[0] != 0;
        case tag::integer:
            return integer(next.content);
        case tag::utf8:
            return QString::fromUtf8(next.content);
        case tag::octets:
            return next.content.toByteArray();
        case tag::sequence:
            return array(next.content, depth + 1);
        case tag::set:
        case tag::dictionary:
            return dictionary(next.content, depth + 1);
        default:
            m_isBad = true;
            return {};
        }
    }

    QVariantList array(QByteArrayView content, int depth)
    {
        QVariantList list;
        while (!content.isEmpty() && !m_isBad)
            list.append(value(content, depth));
        return list;
    }

    QVariant integer(QByteArrayView content)
    {
        m_isBad = m_isBad || content.isEmpty() || content.size() > qsizetype(sizeof(qint64));
        if (m_isBad)
            return {};
        auto number = quint64(qint64(qint8(content[0])));
        for (const char byte : content.sliced(1))
            number = number << 8 | quint8(byte);
        return qlonglong(number);
    }

    Element take(QByteArrayView &bytes, quint8 tag)
    {
        const Element next = takeAny(bytes);
        m_isBad = m_isBad || next.tag != tag;
        return m_isBad ? Element() : next;
    }

    Element takeAny(QByteArrayView &bytes)
    {
        const qsizetype lengthBytes = bytes.size() > 1 && (bytes[1] & 0x80) ? bytes[1] & 0x7f : 0;
        m_isBad = m_isBad || bytes.size() < 2 + lengthBytes || lengthBytes > 4
            || (lengthBytes == 0 && (bytes[1] & 0x80));
        if (m_isBad)
            return {};
        quint64 length = lengthBytes == 0 ? quint8(bytes[1]) : 0;
        for (const char byte : bytes.sliced(2, lengthBytes))
            length = length << 8 | quint8(byte);
        const qsizetype header = 2 + lengthBytes;
        m_isBad = length > quint64(bytes.size() - header);
        if (m_isBad)
            return {};
        const Element next{quint8(bytes[0]), bytes.sliced(header, qsizetype(length))};
        bytes = bytes.sliced(header + qsizetype(length));
        return next;
    }

    bool m_isBad = false;
    qsizetype m_values = 0;
};

/// A list without what stands behind its end, which Apple's reader does not look at.
QByteArray withoutRest(const QByteArray &propertyList)
{
    constexpr QByteArrayView end("</plist>");
    const qsizetype at = propertyList.startsWith("bplist") ? -1 : propertyList.lastIndexOf(end);
    return at < 0 ? propertyList : propertyList.first(at + end.size());
}

} // namespace

Result<QByteArray> entitlementsAsDer(const QVariantMap &entitlements)
{
    Encoder encoder;
    const QByteArray dictionary = encoder.dictionary(entitlements, 0);
    if (!encoder.outcome())
        return encoder.outcome().failure();
    return element(tag::top, element(tag::integer, integerContent(1)) + dictionary);
}

Result<QVariantMap> entitlementsFromDer(QByteArrayView der)
{
    return Decoder().decode(der);
}

Result<QVariantMap> readEntitlements(const QByteArray &propertyList)
{
    const auto list = platform::propertyListFromData(withoutRest(propertyList));
    if (!list)
        return list.failure();
    if (list->metaType() != QMetaType::fromType<QVariantMap>())
        return Error{u"not a dictionary"_s};
    return list->toMap();
}

quint64 execSegmentFlagsFor(const QVariantMap &entitlements)
{
    static const QList<std::pair<QString, quint64>> flags{
        {u"get-task-allow"_s, execseg::allowUnsigned},
        {u"run-unsigned-code"_s, execseg::allowUnsigned},
        {u"com.apple.private.cs.debugger"_s, execseg::debugger},
        {u"dynamic-codesigning"_s, execseg::jit},
        {u"com.apple.private.skip-library-validation"_s, execseg::skipLibraryValidation},
        {u"com.apple.private.amfi.can-load-cdhash"_s, execseg::canLoadCdHash},
        {u"com.apple.private.amfi.can-execute-cdhash"_s, execseg::canExecuteCdHash}};
    quint64 result = 0;
    for (const auto &[key, flag] : flags) {
        const QVariant value = entitlements.value(key);
        if (value.metaType() == QMetaType::fromType<bool>() && value.toBool())
            result |= flag;
    }
    return result;
}

} // namespace toolchain::codesignature
