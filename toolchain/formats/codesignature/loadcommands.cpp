#include "formats/codesignature/loadcommands.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr quint32 sectionTypeMask = 0xff;
constexpr qsizetype mostSegments = 1000;

bool hasNoBytesInFile(quint32 sectionFlags)
{
    const quint32 type = sectionFlags & sectionTypeMask;
    return type == 0x01 || type == 0x0c || type == 0x12; // S_ZEROFILL, S_GB_ZEROFILL, S_THREAD_LOCAL_ZEROFILL
}

/// How the fields of a segment and of its sections lie in the two widths.
struct SegmentLayout {
    quint64 size, sectionSize;
    quint64 virtualSize, fileOffset, fileSize, sectionCount;
    quint64 sectionLength, sectionOffset, sectionFlags;
};
constexpr SegmentLayout narrowLayout{56, 68, 28, 32, 36, 48, 36, 40, 56};
constexpr SegmentLayout wideLayout{72, 80, 32, 40, 48, 64, 40, 48, 64};

class CommandReader {
public:
    explicit CommandReader(MachOSlice slice)
        : m_slice(std::move(slice))
        , m_numbers(m_slice.head, m_slice.isBigEndian)
    {
    }

    Result<MachOSlice> read()
    {
        readHeader();
        quint64 at = m_slice.headerSize();
        const auto end = quint64(m_slice.head.size());
        for (quint32 index = 0; index < m_slice.commandCount && m_outcome; ++index) {
            const quint64 size = m_numbers.u32(at + 4);
            if (end - at < 8 || size < 8 || size % 4 != 0 || size > end - at)
                return Error{u"load command %1 does not fit in its place"_s.arg(index)};
            readCommand(at, size);
            at += size;
        }
        if (!m_outcome)
            return m_outcome.failure();
        return std::move(m_slice);
    }

private:
    void readHeader()
    {
        m_slice.cpuType = m_numbers.u32(4);
        m_slice.cpuSubtype = m_numbers.u32(8);
        m_slice.fileType = MachOFileType(m_numbers.u32(12));
        m_slice.commandCount = m_numbers.u32(16);
        m_slice.flags = m_numbers.u32(24);
    }

    void readCommand(quint64 at, quint64 size)
    {
        switch (m_numbers.u32(at)) {
        case command::segment32:
            return readSegment(at, size, narrowLayout);
        case command::segment64:
            return readSegment(at, size, wideLayout);
        case command::symbolTable:
            return readSymbolTable(at, size);
        case command::uuid:
            return readUuid(at, size);
        case command::codeSignature:
            return readSignature(at, size);
        default:
            return readVersion(at, size);
        }
    }

    void readSegment(quint64 at, quint64 size, const SegmentLayout &layout)
    {
        const quint64 sections = size < layout.size ? 0 : m_numbers.u32(at + layout.sectionCount);
        if (size < layout.size || sections > (size - layout.size) / layout.sectionSize)
            return complain(u"a segment command is cut off"_s);
        MachOSegment segment{m_numbers.name(at + 8),
                             at,
                             {word(at + layout.fileOffset), word(at + layout.fileSize)},
                             word(at + layout.virtualSize)};
        if (!isInside(segment.file))
            return complain(u"the segment %1 reaches beyond the end of its slice"_s.arg(
                QString::fromLatin1(segment.name)));
        if (m_slice.segments.size() == mostSegments)
            return complain(u"there are more than %1 segments"_s.arg(mostSegments));
        for (const MachOSegment &other : m_slice.segments) {
            if (segment.file.length > 0 && other.file.length > 0 && segment.file.offset < other.file.end()
                && other.file.offset < segment.file.end())
                return complain(u"the segments %1 and %2 overlap"_s.arg(QString::fromLatin1(other.name),
                                                                        QString::fromLatin1(segment.name)));
        }
        for (quint64 index = 0; index < sections; ++index)
            readSection(at + layout.size + index * layout.sectionSize, layout);
        m_slice.segments.append(segment);
    }

    void readSection(quint64 at, const SegmentLayout &layout)
    {
        const ByteRange range{m_numbers.u32(at + layout.sectionOffset), word(at + layout.sectionLength)};
        if (hasNoBytesInFile(m_numbers.u32(at + layout.sectionFlags)) || range.length == 0)
            return;
        const QByteArray name = m_numbers.name(at);
        // Files that hold symbols alone keep the sections of the code that they describe.
        if (m_slice.fileType == MachOFileType::debugSymbols)
            return;
        if (!isInside(range))
            return complain(
                u"the section %1 reaches beyond the end of its slice"_s.arg(QString::fromLatin1(name)));
        if (range.offset != 0 && (!m_slice.firstSection || range.offset < *m_slice.firstSection))
            m_slice.firstSection = range.offset;
        if (name == "__info_plist" && m_numbers.name(at + 16) == "__TEXT")
            m_slice.infoPropertyList = range;
    }

    void readSymbolTable(quint64 at, quint64 size)
    {
        const ByteRange strings{m_numbers.u32(at + 16), m_numbers.u32(at + 20)};
        if (size < 24 || !isInside(strings))
            return complain(u"the table of symbols reaches beyond the end of its slice"_s);
        m_slice.stringTableEnd = strings.end();
    }

    void readUuid(quint64 at, quint64 size)
    {
        if (size >= 24)
            m_slice.uuid = m_slice.head.mid(qsizetype(at) + 8, 16);
    }

    void readSignature(quint64 at, quint64 size)
    {
        const ByteRange data{m_numbers.u32(at + 8), m_numbers.u32(at + 12)};
        if (m_slice.signature)
            return complain(u"there are two commands for a code signature"_s);
        if (size != 16 || !isInside(data))
            return complain(u"the code signature reaches beyond the end of its slice"_s);
        if (data.offset < quint64(m_slice.head.size()))
            return complain(u"the code signature overlaps the load commands"_s);
        m_slice.signature = MachOSignatureCommand{at, data};
    }

    void readVersion(quint64 at, quint64 size)
    {
        if (size < 16)
            return;
        const quint32 first = m_numbers.u32(at + 8);
        const quint32 second = m_numbers.u32(at + 12);
        switch (m_numbers.u32(at)) {
        case command::buildVersion:
            if (size >= 24)
                m_slice.versions.append({first, second, m_numbers.u32(at + 16)});
            return;
        case command::minimumMacOS:
            return m_slice.versions.append({MachOVersion::macOS, first, second});
        case command::minimumIOS:
            return m_slice.versions.append({MachOVersion::iOS, first, second});
        case command::minimumTvOS:
            return m_slice.versions.append({MachOVersion::tvOS, first, second});
        case command::minimumWatchOS:
            return m_slice.versions.append({MachOVersion::watchOS, first, second});
        default:
            return;
        }
    }

    /// A number as wide as the file's addresses.
    [[nodiscard]] quint64 word(quint64 offset) const
    {
        return m_slice.is64Bit ? m_numbers.u64(offset) : m_numbers.u32(offset);
    }

    [[nodiscard]] bool isInside(ByteRange range) const
    {
        return range.offset <= m_slice.place.length && range.length <= m_slice.place.length - range.offset;
    }

    void complain(const QString &problem)
    {
        if (m_outcome)
            m_outcome = platform::Error{problem};
    }

    MachOSlice m_slice;
    const HeadReader m_numbers;
    platform::Outcome m_outcome;
};

} // namespace

QByteArray HeadReader::name(quint64 offset) const
{
    constexpr qsizetype longest = 16;
    const QByteArrayView rest = m_head.sliced(std::min(qsizetype(offset), m_head.size()));
    const QByteArrayView field = rest.first(std::min(longest, rest.size()));
    const qsizetype end = field.indexOf('\0');
    return (end < 0 ? field : field.first(end)).toByteArray();
}

Result<MachOSlice> readLoadCommands(MachOSlice slice)
{
    return CommandReader(std::move(slice)).read();
}

} // namespace toolchain::codesignature
