#include "formats/package/cpio.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::package {

namespace {

constexpr qsizetype portableHead = 76; // bytes
constexpr qsizetype newerHead = 110;
constexpr qsizetype longestName = 16'384;
constexpr QByteArrayView lastName = "TRAILER!!!";
constexpr quint32 typeMask = 0170000;

platform::Error damaged()
{
    return {u"no cpio archive, or a damaged one"_s};
}

struct Field {
    qsizetype offset;
    qsizetype length;
};

/// A number of digits, or nothing if they are none.
std::optional<quint64> numberAt(QByteArrayView head, const Field &field, int base)
{
    bool isNumber = false;
    const QByteArrayView digits = head.sliced(field.offset, field.length);
    const bool areDigits = std::all_of(digits.begin(), digits.end(),
                                       [](char digit) { return std::isxdigit(uchar(digit)) != 0; });
    const quint64 number = digits.toULongLong(&isNumber, base);
    return isNumber && areDigits ? std::optional(number) : std::nullopt;
}

CpioType typeOf(quint64 mode)
{
    switch (mode & typeMask) {
    case 0100000:
        return CpioType::file;
    case 0040000:
        return CpioType::folder;
    case 0120000:
        return CpioType::link;
    default:
        return CpioType::other;
    }
}

qsizetype toFour(quint64 length)
{
    return qsizetype((4 - length % 4) % 4);
}

/// The path without what means nothing; nothing if it leads out of its folder.
std::optional<QByteArray> cleanPath(const QByteArray &path)
{
    if (path.startsWith('/'))
        return std::nullopt;
    QByteArrayList parts;
    for (const QByteArray &part : path.split('/')) {
        if (part == "..")
            return std::nullopt;
        if (!part.isEmpty() && part != ".")
            parts.append(part);
    }
    return parts.join('/');
}

} // namespace

platform::Outcome CpioReader::add(QByteArrayView bytes)
{
    while (!bytes.isEmpty() && m_state != State::end) {
        const auto outcome = step(bytes);
        if (!outcome)
            return outcome;
    }
    return {};
}

platform::Outcome CpioReader::finish() const
{
    return m_state == State::end ? platform::Outcome() : platform::Outcome(damaged());
}

platform::Outcome CpioReader::step(QByteArrayView &bytes)
{
    switch (m_state) {
    case State::head:
        if (!gather(bytes, 6))
            return {};
        m_form = m_gathered.startsWith("070707") ? Form::portable : Form::newer;
        return gather(bytes, m_form == Form::portable ? portableHead : newerHead) ? takeHead()
                                                                                  : platform::Outcome();
    case State::name:
        return gather(bytes, m_nameSize) ? takeName() : platform::Outcome();
    case State::content:
        return giveContent(bytes);
    case State::padding:
        skipPadding(bytes);
        return {};
    case State::end:
        break;
    }
    return {};
}

bool CpioReader::gather(QByteArrayView &bytes, qsizetype wanted)
{
    const qsizetype taken = std::min(bytes.size(), std::max(qsizetype(0), wanted - m_gathered.size()));
    m_gathered.append(bytes.first(taken));
    bytes = bytes.sliced(taken);
    return m_gathered.size() >= wanted;
}

platform::Outcome CpioReader::takeHead()
{
    const bool isPortable = m_form == Form::portable;
    if (!isPortable && !m_gathered.startsWith("070701") && !m_gathered.startsWith("070702"))
        return damaged();
    const int base = isPortable ? 8 : 16;
    const auto mode = numberAt(m_gathered, isPortable ? Field{18, 6} : Field{14, 8}, base);
    const auto modified = numberAt(m_gathered, isPortable ? Field{48, 11} : Field{46, 8}, base);
    const auto nameSize = numberAt(m_gathered, isPortable ? Field{59, 6} : Field{94, 8}, base);
    const auto size = numberAt(m_gathered, isPortable ? Field{65, 11} : Field{54, 8}, base);
    if (!mode || !modified || !nameSize || !size || *nameSize < 1 || *nameSize > quint64(longestName))
        return damaged();
    m_entry = {{}, typeOf(*mode), quint32(*mode & 07777), *size, qint64(*modified)};
    m_nameSize = qsizetype(*nameSize) + (isPortable ? 0 : toFour(newerHead + *nameSize));
    m_padding = isPortable ? 0 : toFour(*size);
    m_gathered.clear();
    m_state = State::name;
    return {};
}

platform::Outcome CpioReader::takeName()
{
    const QByteArray name =
        m_gathered.first(m_gathered.indexOf('\0') < 0 ? m_gathered.size() : m_gathered.indexOf('\0'));
    m_gathered.clear();
    if (name == lastName) {
        m_state = State::end;
        return {};
    }
    const auto path = cleanPath(name);
    if (!path)
        return platform::Error{
            u"%1: the name leads out of the archive's folder"_s.arg(QString::fromUtf8(name))};
    m_entry.path = *path;
    m_left = m_entry.size;
    m_state = State::content;
    const auto outcome = m_visitor.entry(m_entry);
    if (outcome && m_left == 0)
        beginNext();
    return outcome;
}

platform::Outcome CpioReader::giveContent(QByteArrayView &bytes)
{
    const auto length = qsizetype(std::min<quint64>(quint64(bytes.size()), m_left));
    const auto outcome = m_visitor.content(bytes.first(length));
    bytes = bytes.sliced(length);
    m_left -= quint64(length);
    if (m_left == 0) {
        m_state = m_padding > 0 ? State::padding : State::head;
        m_left = quint64(m_padding);
    }
    return outcome;
}

void CpioReader::skipPadding(QByteArrayView &bytes)
{
    const auto length = qsizetype(std::min<quint64>(quint64(bytes.size()), m_left));
    bytes = bytes.sliced(length);
    m_left -= quint64(length);
    if (m_left == 0)
        beginNext();
}

void CpioReader::beginNext()
{
    m_state = State::head;
    m_left = 0;
}

} // namespace toolchain::package
