#include "toolchain/machobuilder.h"

#include <QtEndian>

namespace bundlebuilder {

namespace {

/// Numbers in a file's own byte order and width.
class Numbers {
public:
    Numbers(ByteOrder order, bool is64Bit)
        : m_order(order)
        , m_is64Bit(is64Bit)
    {
    }

    Numbers &number(std::uint32_t value)
    {
        const std::uint32_t ordered =
            m_order == ByteOrder::little ? qToLittleEndian(value) : qToBigEndian(value);
        m_bytes.append(reinterpret_cast<const char *>(&ordered), sizeof ordered);
        return *this;
    }
    /// As wide as the file's addresses.
    Numbers &word(std::uint32_t value)
    {
        if (m_is64Bit && m_order == ByteOrder::big)
            number(0);
        number(value);
        return m_is64Bit && m_order == ByteOrder::little ? number(0) : *this;
    }
    Numbers &name(const QByteArray &name)
    {
        m_bytes += name.leftJustified(16, '\0');
        return *this;
    }
    Numbers &raw(const QByteArray &bytes)
    {
        m_bytes += bytes;
        return *this;
    }

    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

private:
    ByteOrder m_order;
    bool m_is64Bit;
    QByteArray m_bytes;
};

QByteArray section(const MachORecipe &recipe, const QByteArray &name, std::uint32_t offset,
                   std::uint32_t length)
{
    Numbers bytes(recipe.order, recipe.architecture.is64Bit);
    bytes.name(name).name("__TEXT").word(offset).word(length).number(offset);
    for (int field = 0; field < (recipe.architecture.is64Bit ? 7 : 6); ++field)
        bytes.number(0);
    return bytes.bytes();
}

QByteArray segment(const MachORecipe &recipe, const QByteArray &name, std::uint32_t offset,
                   std::uint32_t length, const QList<QByteArray> &sections)
{
    const bool is64Bit = recipe.architecture.is64Bit;
    QByteArray all;
    for (const QByteArray &one : sections)
        all += one;
    const auto size = std::uint32_t((is64Bit ? 72 : 56) + all.size());
    Numbers bytes(recipe.order, is64Bit);
    bytes.number(is64Bit ? 0x19 : 0x1)
        .number(size)
        .name(name)
        .word(offset)
        .word((length + 0x3fff) & ~0x3fffU);
    bytes.word(offset).word(length).number(7).number(5).number(std::uint32_t(sections.size())).number(0);
    return bytes.raw(all).bytes();
}

QList<QByteArray> commands(const MachORecipe &recipe)
{
    const auto infoLength = std::uint32_t(recipe.infoPropertyList.size());
    const std::uint32_t codeEnd = recipe.codeLength - infoLength;
    QList<QByteArray> sections{section(recipe, "__text", recipe.firstSection, codeEnd - recipe.firstSection)};
    if (infoLength > 0)
        sections.append(section(recipe, "__info_plist", codeEnd, infoLength));
    QList<QByteArray> commands{segment(recipe, "__TEXT", 0, recipe.codeLength, sections),
                               segment(recipe, "__LINKEDIT", recipe.codeLength, recipe.linkeditLength, {})};
    if (recipe.hasSymbolTable)
        commands.append(Numbers(recipe.order, true)
                            .number(0x2)
                            .number(24)
                            .number(recipe.codeLength)
                            .number(0)
                            .number(recipe.codeLength)
                            .number(recipe.linkeditLength)
                            .bytes());
    if (recipe.hasUuid)
        commands.append(Numbers(recipe.order, true).number(0x1b).number(24).raw("0123456789abcdef").bytes());
    if (recipe.platform != 0)
        commands.append(Numbers(recipe.order, true)
                            .number(0x32)
                            .number(24)
                            .number(recipe.platform)
                            .number(recipe.minimumSystem)
                            .number(recipe.sdk)
                            .number(0)
                            .bytes());
    return commands;
}

} // namespace

QByteArray machO(const MachORecipe &recipe)
{
    const QList<QByteArray> all = commands(recipe);
    QByteArray body;
    for (const QByteArray &command : all)
        body += command;
    const bool is64Bit = recipe.architecture.is64Bit;
    Numbers header(recipe.order, is64Bit);
    header.number(is64Bit ? 0xfeedfacf : 0xfeedface).number(recipe.architecture.cpu).number(0);
    header.number(recipe.fileType)
        .number(std::uint32_t(all.size()))
        .number(std::uint32_t(body.size()))
        .number(0);
    if (is64Bit)
        header.number(0);
    QByteArray bytes = header.raw(body).bytes();
    bytes.append(recipe.firstSection - bytes.size(), '\0');
    while (std::uint32_t(bytes.size()) < recipe.codeLength)
        bytes += QByteArray::number(bytes.size()) + ' ';
    bytes.truncate(recipe.codeLength - recipe.infoPropertyList.size());
    return bytes + recipe.infoPropertyList + QByteArray(recipe.linkeditLength, 'L');
}

QByteArray universalOf(const QList<QByteArray> &slices, bool hasWideHeader)
{
    constexpr std::uint32_t alignment = 0x4000;
    constexpr std::uint32_t alignmentShift = 14;
    Numbers header(ByteOrder::big, hasWideHeader);
    header.number(hasWideHeader ? 0xcafebabf : 0xcafebabe).number(std::uint32_t(slices.size()));
    std::uint32_t offset = alignment;
    QByteArray body;
    for (const QByteArray &slice : slices) {
        header.number(qFromLittleEndian<std::uint32_t>(slice.constData() + 4)).number(0).word(offset);
        header.word(std::uint32_t(slice.size())).number(alignmentShift);
        if (hasWideHeader)
            header.number(0);
        body.append(qsizetype(offset) - alignment - body.size(), '\0');
        body += slice;
        offset += (std::uint32_t(slice.size()) + alignment - 1) & ~(alignment - 1);
    }
    QByteArray bytes = header.bytes();
    return bytes + QByteArray(alignment - bytes.size(), '\0') + body;
}

} // namespace bundlebuilder
