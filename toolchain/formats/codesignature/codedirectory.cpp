#include "formats/codesignature/codedirectory.h"

#include "formats/bigendian.h"
#include "formats/codesignature/superblob.h"
#include "formats/zeros.h"

#include <QStringList>

#include <array>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr quint32 withScatter = 0x20100;
constexpr quint32 withTeam = 0x20200;
constexpr quint32 withLongLimit = 0x20300;
constexpr quint32 withExecSegment = 0x20400;
constexpr quint32 withRuntime = 0x20500;
constexpr quint32 withLinkage = 0x20600;
constexpr quint32 earliestVersion = 0x20001;
constexpr quint32 nextFormat = 0x30000;
constexpr quint8 largestPageShift = 20;

struct FlagName {
    quint32 flag;
    const char *name; ///< as codesign shows it
    const char *word; ///< as codesign takes it
};
constexpr std::array flagNames{FlagName{codeflag::host, "host", "host"},
                               FlagName{codeflag::adhoc, "adhoc", "adhoc"},
                               FlagName{codeflag::hard, "hard", "hard"},
                               FlagName{codeflag::kill, "kill", "kill"},
                               FlagName{codeflag::expires, "expires", "expires"},
                               FlagName{codeflag::restrict, "restrict", "restrict"},
                               FlagName{codeflag::enforcement, "enforcement", "enforcement"},
                               FlagName{codeflag::libraryValidation, "library-validation", "library"},
                               FlagName{codeflag::runtime, "runtime", "runtime"},
                               FlagName{codeflag::linkerSigned, "linker-signed", "linker-signed"}};

quint64 fixedSize(quint32 version)
{
    if (version >= withLinkage)
        return 108;
    if (version >= withRuntime)
        return 96;
    if (version >= withExecSegment)
        return 88;
    if (version >= withLongLimit)
        return 64;
    if (version >= withTeam)
        return 52;
    return version >= withScatter ? 48 : 44;
}

quint32 flagOf(const QString &word)
{
    for (const FlagName &flag : flagNames) {
        if (word == QLatin1StringView(flag.word) || word == QLatin1StringView(flag.name))
            return flag.flag;
    }
    bool isNumber = false;
    const quint32 number = word.toUInt(&isNumber, 0);
    return isNumber ? number : 0;
}

bool isNumberText(const QString &word)
{
    bool isNumber = false;
    (void)word.toUInt(&isNumber, 0);
    return isNumber;
}

} // namespace

QString codeFlagsText(quint32 flags)
{
    QStringList names;
    for (const FlagName &flag : flagNames) {
        if (flags & flag.flag)
            names.append(QString::fromLatin1(flag.name));
        flags &= ~flag.flag;
    }
    return names.isEmpty() ? u"none"_s : names.join(u',');
}

Result<quint32> codeFlagsNamed(const QString &words)
{
    quint32 flags = 0;
    for (const QString &word : words.split(u',', Qt::SkipEmptyParts)) {
        const quint32 flag = flagOf(word.trimmed());
        if (flag == 0 && !isNumberText(word))
            return Error{u"unknown option flag \"%1\""_s.arg(word)};
        flags |= flag;
    }
    return flags;
}

quint32 CodeDirectoryFields::neededVersion() const
{
    if (runtime != 0)
        return withRuntime;
    if (execSegmentLimit > 0)
        return withExecSegment;
    if (codeLimit > 0xffffffff)
        return withLongLimit;
    return team.isEmpty() ? withScatter : withTeam;
}

quint32 CodeDirectoryFields::codeSlotCount() const
{
    if (codeLimit == 0)
        return 0;
    return pageShift == 0 ? 1 : quint32((codeLimit + (quint64(1) << pageShift) - 1) >> pageShift);
}

Result<CodeDirectory> CodeDirectory::parse(const QByteArray &blob)
{
    const auto all = blobIn(blob, magic::codeDirectory);
    if (!all)
        return Error{u"a code directory is damaged: "_s + all.error()};
    CodeDirectory directory;
    directory.m_bytes = all->size() == blob.size() ? blob : all->toByteArray();
    for (const Outcome &read : {directory.readNumbers(), directory.checkSlots(), directory.readTexts()}) {
        if (!read)
            return Error{u"a code directory is damaged: "_s + read.error()};
    }
    return directory;
}

Outcome CodeDirectory::readNumbers()
{
    const QByteArrayView bytes(m_bytes);
    m_version = bigEndianAt<quint32>(bytes, 8);
    if (m_version < earliestVersion || m_version >= nextFormat)
        return Error{u"its version %1 is unknown"_s.arg(m_version, 0, 16)};
    if (quint64(bytes.size()) < fixedSize(m_version))
        return Error{u"it is cut off"_s};
    m_fields.flags = bigEndianAt<quint32>(bytes, 12);
    m_hashOffset = bigEndianAt<quint32>(bytes, 16);
    m_specialSlots = bigEndianAt<quint32>(bytes, 24);
    m_codeSlots = bigEndianAt<quint32>(bytes, 28);
    m_fields.codeLimit = bigEndianAt<quint32>(bytes, 32);
    m_fields.hashType = HashType(bigEndianAt<quint8>(bytes, 37));
    m_fields.platform = bigEndianAt<quint8>(bytes, 38);
    m_fields.pageShift = bigEndianAt<quint8>(bytes, 39);
    if (m_version >= withLongLimit && bigEndianAt<quint64>(bytes, 56) != 0)
        m_fields.codeLimit = bigEndianAt<quint64>(bytes, 56);
    if (m_version >= withExecSegment) {
        m_fields.execSegmentBase = bigEndianAt<quint64>(bytes, 64);
        m_fields.execSegmentLimit = bigEndianAt<quint64>(bytes, 72);
        m_fields.execSegmentFlags = bigEndianAt<quint64>(bytes, 80);
    }
    if (m_version >= withRuntime)
        m_fields.runtime = bigEndianAt<quint32>(bytes, 88);
    return {};
}

Outcome CodeDirectory::checkSlots() const
{
    const auto size = quint64(hashSize(m_fields.hashType));
    if (size == 0 || bigEndianAt<quint8>(m_bytes, 36) != size)
        return Error{u"its kind of digest is unknown"_s};
    if (m_fields.pageShift > largestPageShift)
        return Error{u"its page size is impossible"_s};
    if (m_version >= withScatter && bigEndianAt<quint32>(m_bytes, 44) != 0)
        return Error{u"it describes scattered code"_s};
    const quint64 before = m_specialSlots * size;
    const quint64 behind = m_codeSlots * size;
    const auto length = quint64(m_bytes.size());
    if (m_hashOffset > length || behind > length - m_hashOffset)
        return Error{u"the digests of the code reach beyond its end"_s};
    if (before > m_hashOffset - std::min<quint64>(m_hashOffset, fixedSize(m_version)))
        return Error{u"the digests of the special slots overlap its head"_s};
    return {};
}

Outcome CodeDirectory::readTexts()
{
    const auto identifier = textAt(bigEndianAt<quint32>(m_bytes, 20));
    if (!identifier)
        return identifier.failure();
    m_fields.identifier = *identifier;
    const quint32 teamOffset = m_version >= withTeam ? bigEndianAt<quint32>(m_bytes, 48) : 0;
    if (teamOffset == 0)
        return {};
    const auto team = textAt(teamOffset);
    if (!team)
        return team.failure();
    m_fields.team = *team;
    return {};
}

Result<QString> CodeDirectory::textAt(qsizetype offset) const
{
    const qsizetype end = m_bytes.indexOf('\0', offset);
    if (offset < qsizetype(fixedSize(m_version)) || offset >= m_bytes.size() || end < 0)
        return Error{u"a text in it reaches beyond its end"_s};
    return QString::fromUtf8(m_bytes.constData() + offset, end - offset);
}

QByteArrayView CodeDirectory::specialSlot(quint32 number) const
{
    const qsizetype size = hashSize(m_fields.hashType);
    if (number == 0 || number > m_specialSlots)
        return {};
    return QByteArrayView(m_bytes).sliced(m_hashOffset - qsizetype(number) * size, size);
}

bool CodeDirectory::hasSpecialSlot(quint32 number) const
{
    return !isZero(specialSlot(number));
}

QByteArrayView CodeDirectory::codeSlot(quint32 index) const
{
    const qsizetype size = hashSize(m_fields.hashType);
    return index < m_codeSlots ? QByteArrayView(m_bytes).sliced(m_hashOffset + qsizetype(index) * size, size)
                               : QByteArrayView();
}

QByteArray CodeDirectory::digest() const
{
    return digestOf(m_bytes, m_fields.hashType);
}

quint64 codeDirectorySize(const CodeDirectoryFields &fields, quint32 specialSlots, quint32 version)
{
    const auto team = quint64(fields.team.isEmpty() ? 0 : fields.team.toUtf8().size() + 1);
    const auto texts = quint64(fields.identifier.toUtf8().size() + 1) + team;
    const auto slots = quint64(specialSlots) + fields.codeSlotCount();
    return fixedSize(version) + texts + slots * quint64(hashSize(fields.hashType));
}

QByteArray codeDirectoryHead(const CodeDirectoryFields &fields, const SpecialSlots &specialSlots)
{
    const quint32 version = fields.neededVersion();
    const quint32 specialCount = specialSlots.isEmpty() ? 0 : specialSlots.lastKey();
    const quint64 size = codeDirectorySize(fields, specialCount, version);
    const qsizetype digestSize = hashSize(fields.hashType);
    const QByteArray identifier = fields.identifier.toUtf8() + '\0';
    const QByteArray team = fields.team.isEmpty() ? QByteArray() : fields.team.toUtf8() + '\0';
    const auto fixed = quint32(fixedSize(version));
    const bool isLong = fields.codeLimit > 0xffffffff;
    BigEndianBytes bytes;
    bytes.u32(magic::codeDirectory).u32(quint32(size)).u32(version).u32(fields.flags);
    bytes.u32(quint32(size - fields.codeSlotCount() * quint64(digestSize))).u32(fixed);
    bytes.u32(specialCount).u32(fields.codeSlotCount());
    bytes.u32(isLong ? 0xffffffff : quint32(fields.codeLimit));
    bytes.u8(quint8(digestSize)).u8(quint8(fields.hashType)).u8(fields.platform).u8(fields.pageShift);
    bytes.u32(0).u32(0);
    if (version >= withTeam)
        bytes.u32(team.isEmpty() ? 0 : fixed + quint32(identifier.size()));
    if (version >= withLongLimit)
        bytes.u32(0).u64(isLong ? fields.codeLimit : 0);
    if (version >= withExecSegment)
        bytes.u64(fields.execSegmentBase).u64(fields.execSegmentLimit).u64(fields.execSegmentFlags);
    if (version >= withRuntime)
        bytes.u32(fields.runtime).u32(0);
    bytes.raw(identifier).raw(team);
    for (quint32 number = specialCount; number > 0; --number) {
        const QByteArray digest = specialSlots.value(number);
        bytes.raw(digest.isEmpty() ? QByteArray(digestSize, '\0') : digest);
    }
    return bytes.bytes();
}

} // namespace toolchain::codesignature
