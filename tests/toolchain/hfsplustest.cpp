#include "formats/bigendian.h"
#include "formats/hfsplus/hfsplusnames.h"
#include "formats/hfsplus/hfspluswriter.h"
#include "formats/hfsplus/volumecopy.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QDir>
#include <QFile>

#include <cstring>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

QByteArray inUtf16(const QString &text)
{
    BigEndianBytes bytes;
    for (const QChar unit : text)
        bytes.u16(unit.unicode());
    return bytes.bytes();
}

/// Goes down a tree whose keys are numbers, as a file system does.
QByteArray dataFoundIn(const QByteArray &tree, qsizetype nodeSize, quint32 number)
{
    constexpr qsizetype keySize = 6;
    QByteArray data = tree.mid(16, 4); // the root's number
    for (int level = bigEndianAt<quint16>(tree, 14); level > 0; --level) {
        const QByteArray node = tree.mid(bigEndianAt<quint32>(data, 0) * nodeSize, nodeSize);
        if (bigEndianAt<quint8>(node, 9) != level)
            return {};
        for (qsizetype place = bigEndianAt<quint16>(node, 10); place > 0; --place) {
            const qsizetype begin = bigEndianAt<quint16>(node, nodeSize - 2 * place);
            const qsizetype end = bigEndianAt<quint16>(node, nodeSize - 2 * (place + 1));
            data = node.mid(begin + keySize, end - begin - keySize);
            const auto key = bigEndianAt<quint32>(node, begin + 2);
            if (level == 1 ? key == number : key <= number)
                break;
            data.clear();
        }
    }
    return data;
}

/// A volume in memory that a test may damage.
class HfsPlusVolume : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        for (int block = 0; block < 10; ++block)
            m_content += QByteArray(4096, char('a' + block));
        bundlebuilder::writeFile(path(u"folder/inner/ee"_s), m_content);
        bundlebuilder::writeFile(path(u"folder/file"_s), "plain");
        const auto root = hfsplus::VolumeRoot::contents;
        HfsPlusWriter writer(hfsplus::readSourceTree(path(u"folder"_s).toStdString(), root, "Volume", 1), 1);
        ASSERT_TRUE(writer.write([this](QByteArrayView bytes) {
            m_volume.append(bytes);
            return true;
        }));
        ASSERT_EQ(quint64(m_volume.size()), writer.size());
    }

    /// Replaces the one place where the bytes are found by others of the same length.
    void replace(const QByteArray &old, const QByteArray &other)
    {
        ASSERT_EQ(old.size(), other.size());
        ASSERT_EQ(m_volume.count(old), 1);
        m_volume.replace(old, other);
    }

    [[nodiscard]] HfsPlusReader reader() const
    {
        return HfsPlusReader([this](quint64 offset, char *target, qsizetype size) {
            if (offset > quint64(m_volume.size()) || quint64(size) > quint64(m_volume.size()) - offset)
                return false;
            std::memcpy(target, m_volume.constData() + offset, std::size_t(size));
            return true;
        });
    }

    /// Copies the volume, and answers what went wrong.
    [[nodiscard]] std::string copied() const
    {
        const QString target = path(u"copy"_s);
        EXPECT_TRUE(QDir().mkpath(target));
        const HfsPlusReader volume = reader();
        const auto copied = volume.outcome() ? copyVolume(volume, target.toStdString()) : volume.outcome();
        return copied.error().toStdString();
    }

    /// How a catalog describes where the large file lies.
    [[nodiscard]] QByteArray forkWith(const std::vector<quint32> &runs) const
    {
        BigEndianBytes fork;
        fork.u64(quint64(m_content.size())).u32(0).u32(10);
        for (const quint32 number : runs)
            fork.u32(number);
        return fork.zeros(80 - fork.bytes().size()).bytes();
    }

    QByteArray m_content;
    QByteArray m_volume;
};

} // namespace

TEST(HfsPlusNames, areStoredTakenApartAndComeBackInTheFormTheyHad)
{
    using namespace hfsplus;
    const QString name = u"Gr\u00f6\u00dfe \ud55c \U0001F600:\u212b"_s;
    EXPECT_EQ(storedName(name.toStdString()), u"Gro\u0308\u00dfe \u1112\u1161\u11ab \U0001F600/\u212b"_s);
    EXPECT_EQ(formOf(name.toStdString(), *storedName(name.toStdString())), NameForm::composed);
    EXPECT_EQ(fileName(*storedName(name.toStdString()), NameForm::composed), name.toUtf8());
    EXPECT_EQ(fileName(*storedName(name.toStdString())),
              u"Gro\u0308\u00dfe \u1112\u1161\u11ab \U0001F600:\u212b"_s.toUtf8());
}

TEST(HfsPlusNames, areAtMost255UnitsLong)
{
    EXPECT_TRUE(hfsplus::storedName(std::string(255, 'x')));
    EXPECT_FALSE(hfsplus::storedName(std::string(256, 'x')));
    EXPECT_FALSE(hfsplus::storedName("\xff"));
}

TEST(HfsPlusNames, thatNoFileCanHaveHaveNoFileName)
{
    for (const QString &name : {u""_s, u"."_s, u".."_s, u"a\0b"_s, QString(QChar(0xd800))})
        EXPECT_FALSE(hfsplus::fileName(name)) << name.toStdString();
    EXPECT_EQ(hfsplus::fileName(u"../x"_s), "..:x");
}

TEST(HfsPlusNames, areComparedWithoutCaseAndWithoutWhatCannotBeSeen)
{
    using hfsplus::foldedName;
    for (const auto &[one, other] :
         {std::pair(u"ABZ"_s, u"abz"_s), std::pair(u"\u0416\u0409"_s, u"\u0436\u0459"_s),
          std::pair(u"\u0391\u03a9"_s, u"\u03b1\u03c9"_s), std::pair(u"a\u200db\ufeff"_s, u"ab"_s),
          std::pair(u"\u01c4\u01c5"_s, u"\u01c6\u01c6"_s), std::pair(u"\u0141\u00d8"_s, u"\u0142\u00f8"_s),
          std::pair(u"\uff21\u2160"_s, u"\uff41\u2170"_s)})
        EXPECT_EQ(foldedName(one), foldedName(other)) << one.toStdString();
    for (const auto &[one, other] :
         {std::pair(u"\u00c0"_s, u"\u00e0"_s), std::pair(u"\u0419"_s, u"\u0439"_s),
          std::pair(u"\u03a2"_s, u"\u03c2"_s), std::pair(u"\u0476"_s, u"\u0477"_s)})
        EXPECT_NE(foldedName(one), foldedName(other)) << one.toStdString();
    EXPECT_LT(foldedName(u"Z"_s), foldedName(u"_"_s).replace(0, 1, u"{")) << "letters order as small ones";
    EXPECT_GT(foldedName(QString(QChar(u'\0'))), foldedName(u"\uff5e"_s)) << "a null comes last";
}

TEST(HfsPlusTree, everyRecordIsFoundOnTheWayDownFromTheRoot)
{
    constexpr quint32 count = 20'000;
    constexpr qsizetype nodeSize = 1024;
    std::vector<hfsplus::TreeRecord> records;
    for (quint32 number = 0; number < count; ++number)
        records.push_back({BigEndianBytes().u16(4).u32(number).bytes(), QByteArray(16, char(number))});
    const QByteArray tree = hfsplus::treeFile(records, {nodeSize, 4, 0});
    EXPECT_EQ(bigEndianAt<quint16>(tree, 14), 3) << "levels";
    EXPECT_EQ(bigEndianAt<quint32>(tree, 20), count);
    EXPECT_EQ(bigEndianAt<quint32>(tree, 36), tree.size() / nodeSize);
    for (quint32 number = 0; number < count; ++number)
        ASSERT_EQ(dataFoundIn(tree, nodeSize, number), QByteArray(16, char(number))) << number;
}

TEST_F(HfsPlusVolume, isCopiedWhole)
{
    EXPECT_EQ(copied(), "");
    EXPECT_EQ(bundlebuilder::readFile(path(u"copy/inner/ee"_s)), m_content);
    EXPECT_EQ(reader().volumeName(), u"Volume"_s);
}

TEST_F(HfsPlusVolume, givesAFileThatLiesInMorePiecesThanItsRecordHolds)
{
    const auto first = quint32(m_volume.indexOf(QByteArray(4096, 'a')) / 4096);
    std::vector<quint32> runs;
    for (quint32 block = 0; block < 8; ++block)
        runs.insert(runs.end(), {first + block, 1});
    replace(forkWith({first, 10}), forkWith(runs));
    const quint32 number = reader().entriesOf(reader().entriesOf(2).back().number).front().number;
    const QByteArray key = BigEndianBytes().u16(10).u8(0).u8(0).u32(number).u32(8).bytes();
    const QByteArray pieces = BigEndianBytes().u32(first + 8).u32(1).u32(first + 9).u32(1).zeros(48).bytes();
    const QByteArray tree = hfsplus::treeFile({{key, pieces}}, hfsplus::extentsForm);
    const qsizetype end = m_volume.size();
    m_volume.append(tree);
    const QByteArray place = BigEndianBytes()
                                 .u64(quint64(tree.size()))
                                 .u32(0)
                                 .u32(2)
                                 .u32(quint32(end / 4096))
                                 .u32(2)
                                 .zeros(56)
                                 .bytes();
    m_volume.replace(1024 + 192, place.size(), place);
    EXPECT_EQ(copied(), "");
    EXPECT_EQ(bundlebuilder::readFile(path(u"copy/inner/ee"_s)), m_content);
}

TEST_F(HfsPlusVolume, withAFileThatLiesOutsideOfItCannotBeCopied)
{
    const auto first = quint32(m_volume.indexOf(QByteArray(4096, 'a')) / 4096);
    replace(forkWith({first, 10}), forkWith({0x7fffffff, 10}));
    EXPECT_TRUE(QString::fromStdString(copied()).endsWith(u"/inner/ee: cannot be read from the image"_s));
}

TEST_F(HfsPlusVolume, thatClaimsToHoldMoreThanThereIsRoomForIsRefusedAtOnce)
{
    const auto first = quint32(m_volume.indexOf(QByteArray(4096, 'a')) / 4096);
    QByteArray large = forkWith({first, 10});
    large.replace(0, 8, BigEndianBytes().u64(quint64(1) << 61).bytes());
    replace(forkWith({first, 10}), large);
    EXPECT_TRUE(QString::fromStdString(copied()).endsWith(u" bytes, for which there is no room"_s));
    EXPECT_TRUE(QDir(path(u"copy"_s)).isEmpty());
}

TEST_F(HfsPlusVolume, cannotWriteOutsideOfTheCopy)
{
    const QByteArray length("\0\2", 2);
    m_volume.replace(length + inUtf16(u"ee"_s), length + inUtf16(u".."_s));
    EXPECT_TRUE(
        QString::fromStdString(copied()).endsWith(u"/inner: holds a name that no file can have here"_s));
    m_volume.replace(length + inUtf16(u".."_s), length + inUtf16(u"/x"_s));
    QDir(path(u"copy"_s)).removeRecursively();
    EXPECT_EQ(copied(), "");
    EXPECT_TRUE(QFile::exists(path(u"copy/inner/:x"_s)));
}

TEST_F(HfsPlusVolume, whoseLeavesAreARingIsDamaged)
{
    const quint32 firstLeaf = 1;
    const auto catalog = m_volume.lastIndexOf(BigEndianBytes().zeros(4).zeros(4).u8(1).u8(0).u16(3).bytes());
    ASSERT_GT(catalog, 0);
    m_volume.replace(catalog + 8192, 4, BigEndianBytes().u32(firstLeaf).bytes());
    EXPECT_EQ(copied(), "the volume is damaged");
}

TEST_F(HfsPlusVolume, whoseBytesChangeNeverBringsTheReaderDown)
{
    const QByteArray whole = m_volume;
    const qsizetype catalog = whole.lastIndexOf(BigEndianBytes().zeros(8).u8(1).u8(0).u16(3).bytes());
    for (qsizetype offset = 1024; offset < whole.size();
         offset += offset < 1536 || offset >= catalog ? 3 : 4096) {
        m_volume = whole;
        m_volume[offset] = char(~m_volume[offset]);
        const HfsPlusReader volume = reader();
        for (const auto &entry : volume.entriesOf(2))
            (void)volume.read(entry.data, [](QByteArrayView) { return true; });
    }
}

TEST_F(HfsPlusVolume, withWhatCannotBeReadHereIsRefused)
{
    const QByteArray finderInfo =
        BigEndianBytes().u16(0100644).u32(1).zeros(20).u32(1).zeros(16).u64(5).bytes();
    QByteArray hardLink = finderInfo;
    hardLink.replace(6, 8, "hlnkhfs+");
    const qsizetype place = m_volume.indexOf(finderInfo);
    ASSERT_GT(place, 0);
    const QByteArray whole = m_volume;
    m_volume.replace(place, hardLink.size(), hardLink);
    EXPECT_TRUE(
        QString::fromStdString(copied()).endsWith(u"/file: a hard link, which cannot be read here"_s));
    m_volume = whole;
    m_volume[place - 1] = 0x20;
    QDir(path(u"copy"_s)).removeRecursively();
    EXPECT_TRUE(QString::fromStdString(copied()).endsWith(
        u"/file: compressed by the file system, which cannot be read here"_s));
}
