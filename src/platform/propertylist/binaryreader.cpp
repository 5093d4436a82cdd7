#include "platform/propertylist/binarytrailer.h"
#include "platform/propertylist/limits.h"
#include "platform/propertylist/readers.h"

#include <QDateTime>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace platform::propertylist {

namespace {

/// Seconds between 1970 and 2001, where the dates of the binary form begin to count.
constexpr double secondsToReferenceDate = 978'307'200;
/// Dates further away than this (some 31,000 years) are damage, not dates.
constexpr double farthestSeconds = 1e12;

enum ObjectKind {
    singleton = 0x0,
    integer = 0x1,
    real = 0x2,
    date = 0x3,
    data = 0x4,
    asciiString = 0x5,
    utf16String = 0x6,
    uid = 0x8,
    array = 0xa,
    set = 0xc,
    dictionary = 0xd,
};

class BinaryReader {
public:
    explicit BinaryReader(const QByteArray &data)
        : m_data(data)
    {
    }
    Result<QVariant> read();

private:
    /// The marker byte of an object, and what follows from it.
    struct Marker {
        qint64 position = 0;
        int kind = 0;
        int low = 0;
    };
    /// Where the contents of an object lie and of how many units they are.
    struct Contents {
        qint64 position = 0;
        qint64 count = 0;
    };

    // Each answers an invalid value (or false) after it has called fail().
    QVariant object(quint64 index, qint64 referredAt, int depth);
    QVariant objectAt(const Marker &marker, int depth);
    QVariant singleton(const Marker &marker);
    QVariant integer(const Marker &marker);
    QVariant wideInteger(const Marker &marker);
    QVariant real(const Marker &marker);
    QVariant date(const Marker &marker);
    QVariant data(const Marker &marker);
    QVariant asciiString(const Marker &marker);
    QVariant utf16String(const Marker &marker);
    QVariant uid(const Marker &marker);
    QVariant array(const Marker &marker, int depth);
    QVariant dictionary(const Marker &marker, int depth);

    bool measure(const Marker &marker, int unitSize, Contents &contents);
    bool fits(qint64 position, qint64 size);
    bool take(const Marker &marker, qint64 bytes);
    quint64 field(qint64 position, int size) const { return fieldAt(m_data, position, size); }
    quint64 reference(qint64 position) const { return field(position, m_trailer.referenceSize); }
    QVariant fail(qint64 position, const QString &message);

    QByteArrayView m_data;
    Trailer m_trailer;
    /// Objects that are being read, so that one that holds itself is found.
    std::vector<bool> m_isOpen;
    Budget m_budget;
    Outcome m_outcome;
};

Result<QVariant> BinaryReader::read()
{
    const auto trailer = readTrailer(m_data);
    if (!trailer)
        return trailer.failure();
    m_trailer = *trailer;
    m_isOpen.resize(m_trailer.objectCount);
    const QVariant value = object(m_trailer.topObject, m_data.size() - trailerSize + 16, 1);
    return m_outcome ? Result(value) : m_outcome.failure();
}

/// Reads one object; referredAt is the byte of the reference to it, for the error.
QVariant BinaryReader::object(quint64 index, qint64 referredAt, int depth)
{
    if (index >= m_trailer.objectCount)
        return fail(
            referredAt,
            u"object %1 is not among the %2 objects of the list"_s.arg(index).arg(m_trailer.objectCount));
    const qint64 entry = qint64(m_trailer.tableOffset + index * quint64(m_trailer.offsetSize));
    const quint64 position = field(entry, m_trailer.offsetSize);
    if (position < quint64(binaryMagic.size()) || position >= m_trailer.tableOffset)
        return fail(entry, u"object %1 lies outside the list"_s.arg(index));
    if (m_isOpen[index])
        return fail(referredAt, u"object %1 contains itself"_s.arg(index));

    m_isOpen[index] = true;
    const auto byte = static_cast<uchar>(m_data[qsizetype(position)]);
    QVariant value = objectAt({qint64(position), byte >> 4, byte & 0xf}, depth);
    m_isOpen[index] = false;
    return value;
}

QVariant BinaryReader::objectAt(const Marker &marker, int depth)
{
    switch (marker.kind) {
    case ObjectKind::singleton:
        return singleton(marker);
    case ObjectKind::integer:
        return integer(marker);
    case ObjectKind::real:
        return real(marker);
    case ObjectKind::date:
        return date(marker);
    case ObjectKind::data:
        return data(marker);
    case ObjectKind::asciiString:
        return asciiString(marker);
    case ObjectKind::utf16String:
        return utf16String(marker);
    case ObjectKind::uid:
        return uid(marker);
    case ObjectKind::array:
    case ObjectKind::set:
        return array(marker, depth);
    case ObjectKind::dictionary:
        return dictionary(marker, depth);
    default:
        return fail(marker.position,
                    u"unknown object type 0x%1"_s.arg(marker.kind << 4 | marker.low, 2, 16, QChar(u'0')));
    }
}

QVariant BinaryReader::singleton(const Marker &marker)
{
    constexpr int no = 0x8;
    constexpr int yes = 0x9;
    if (marker.low != no && marker.low != yes)
        return fail(marker.position, u"unknown object type 0x%1"_s.arg(marker.low, 2, 16, QChar(u'0')));
    return take(marker, 0) ? QVariant(marker.low == yes) : QVariant();
}

QVariant BinaryReader::integer(const Marker &marker)
{
    constexpr int log2OfWide = 4;
    if (marker.low > log2OfWide)
        return fail(marker.position, u"an integer of 2^%1 bytes is not possible"_s.arg(marker.low));
    const int size = 1 << marker.low;
    if (!fits(marker.position + 1, size) || !take(marker, 0))
        return {};
    // Those of eight bytes are signed, shorter ones are not, and sixteen bytes hold the unsigned ones beyond.
    return marker.low == log2OfWide ? wideInteger(marker)
                                    : QVariant(qlonglong(field(marker.position + 1, size)));
}

QVariant BinaryReader::wideInteger(const Marker &marker)
{
    const quint64 high = field(marker.position + 1, 8);
    const quint64 low = field(marker.position + 9, 8);
    const bool hasSign = qint64(low) < 0;
    if (high == 0)
        return hasSign ? QVariant(qulonglong(low)) : QVariant(qlonglong(low));
    if (high == std::numeric_limits<quint64>::max() && hasSign)
        return qlonglong(low);
    return fail(marker.position, u"the integer does not fit into 64 bits"_s);
}

QVariant BinaryReader::real(const Marker &marker)
{
    if (marker.low != 2 && marker.low != 3)
        return fail(marker.position, u"a real of 2^%1 bytes is not possible"_s.arg(marker.low));
    if (!fits(marker.position + 1, 1 << marker.low) || !take(marker, 0))
        return {};
    const char *bytes = m_data.data() + marker.position + 1;
    return marker.low == 2 ? double(qFromBigEndian<float>(bytes)) : qFromBigEndian<double>(bytes);
}

QVariant BinaryReader::date(const Marker &marker)
{
    if (marker.low != 3)
        return fail(marker.position, u"a date of 2^%1 bytes is not possible"_s.arg(marker.low));
    if (!fits(marker.position + 1, sizeof(double)) || !take(marker, 0))
        return {};
    const auto seconds = qFromBigEndian<double>(m_data.data() + marker.position + 1);
    if (!(std::abs(seconds) <= farthestSeconds))
        return fail(marker.position, u"the date is out of range"_s);
    return QDateTime::fromMSecsSinceEpoch(std::llround((seconds + secondsToReferenceDate) * 1000), Qt::UTC);
}

QVariant BinaryReader::data(const Marker &marker)
{
    Contents contents;
    if (!measure(marker, 1, contents) || !take(marker, contents.count))
        return {};
    return m_data.sliced(contents.position, contents.count).toByteArray();
}

QVariant BinaryReader::asciiString(const Marker &marker)
{
    Contents contents;
    if (!measure(marker, 1, contents) || !take(marker, contents.count * qint64(sizeof(QChar))))
        return {};
    const QByteArrayView bytes = m_data.sliced(contents.position, contents.count);
    const auto wrong =
        std::find_if(bytes.begin(), bytes.end(), [](char c) { return static_cast<uchar>(c) > 0x7f; });
    if (wrong != bytes.end())
        return fail(contents.position + (wrong - bytes.begin()),
                    u"an ASCII string holds a byte beyond ASCII"_s);
    return QString::fromLatin1(bytes);
}

QVariant BinaryReader::utf16String(const Marker &marker)
{
    Contents contents;
    if (!measure(marker, sizeof(QChar), contents) || !take(marker, contents.count * qint64(sizeof(QChar))))
        return {};
    QString text(contents.count, Qt::Uninitialized);
    qFromBigEndian<char16_t>(m_data.data() + contents.position, contents.count, text.data());
    return text;
}

/// Shown as Apple's tools show it in the forms that have no type for it.
QVariant BinaryReader::uid(const Marker &marker)
{
    const int size = marker.low + 1;
    if (size > largestField)
        return fail(marker.position, u"a UID of %1 bytes is not possible"_s.arg(size));
    if (!fits(marker.position + 1, size) || !take(marker, 0))
        return {};
    const quint64 number = field(marker.position + 1, size);
    const bool isSmall = number <= quint64(std::numeric_limits<qint64>::max());
    return QVariantMap{{u"CF$UID"_s, isSmall ? QVariant(qlonglong(number)) : QVariant(qulonglong(number))}};
}

QVariant BinaryReader::array(const Marker &marker, int depth)
{
    if (const Outcome bounded = Budget::checkDepth(depth); !bounded)
        return fail(marker.position, bounded.error());
    Contents contents;
    if (!measure(marker, m_trailer.referenceSize, contents) || !take(marker, 0))
        return {};
    QVariantList
        items; // not reserved: the count is bounded by the file, what becomes of it only by the budget
    for (qint64 i = 0; i < contents.count; ++i) {
        const qint64 position = contents.position + i * m_trailer.referenceSize;
        const QVariant item = object(reference(position), position, depth + 1);
        if (!item.isValid())
            return {};
        items.append(item);
    }
    return items;
}

QVariant BinaryReader::dictionary(const Marker &marker, int depth)
{
    if (const Outcome bounded = Budget::checkDepth(depth); !bounded)
        return fail(marker.position, bounded.error());
    Contents contents; // all keys, then all values
    if (!measure(marker, 2 * m_trailer.referenceSize, contents) || !take(marker, 0))
        return {};
    QVariantMap entries;
    for (qint64 i = 0; i < contents.count; ++i) {
        const qint64 keyPosition = contents.position + i * m_trailer.referenceSize;
        const qint64 valuePosition = keyPosition + contents.count * m_trailer.referenceSize;
        const QVariant key = object(reference(keyPosition), keyPosition, depth + 1);
        if (key.isValid() && key.typeId() != QMetaType::QString)
            return fail(keyPosition, u"a key of the dictionary is not a string"_s);
        const QVariant value =
            key.isValid() ? object(reference(valuePosition), valuePosition, depth + 1) : QVariant();
        if (!value.isValid())
            return {};
        entries.insert(key.toString(), value);
    }
    return entries;
}

/// Finds the contents of an object whose length stands in its marker or, when too long, in an integer after
/// it.
bool BinaryReader::measure(const Marker &marker, int unitSize, Contents &contents)
{
    constexpr int lengthFollows = 0xf;
    contents = {marker.position + 1, marker.low};
    if (marker.low == lengthFollows) {
        if (!fits(contents.position, 1))
            return false;
        const auto byte = static_cast<uchar>(m_data[contents.position]);
        const int size = 1 << (byte & 0xf);
        if (byte >> 4 != ObjectKind::integer || size > largestField) {
            fail(contents.position, u"the length of an object is no integer"_s);
            return false;
        }
        if (!fits(contents.position + 1, size))
            return false;
        const quint64 count = field(contents.position + 1, size);
        contents = {contents.position + 1 + size, qint64(std::min<quint64>(count, maximumInputBytes + 1))};
    }
    return fits(contents.position, contents.count * unitSize);
}

/// Whether so many bytes lie among the objects.
bool BinaryReader::fits(qint64 position, qint64 size)
{
    if (size <= qint64(m_trailer.tableOffset) - position)
        return true;
    fail(position, u"the object runs past the end of the objects"_s);
    return false;
}

bool BinaryReader::take(const Marker &marker, qint64 bytes)
{
    const Outcome taken = m_budget.take(bytes);
    if (!taken)
        fail(marker.position, taken.error());
    return bool(taken);
}

QVariant BinaryReader::fail(qint64 position, const QString &message)
{
    if (m_outcome)
        m_outcome = errorAt(position, message);
    return {};
}

} // namespace

Result<QVariant> readBinaryList(const QByteArray &data)
{
    return BinaryReader(data).read();
}

} // namespace platform::propertylist
