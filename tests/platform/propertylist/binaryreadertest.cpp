#include "platform/propertylist/binarylistbuilder.h"
#include "platform/propertylist/limits.h"
#include "platform/propertylist/listexpectations.h"
#include "platform/propertylist/propertylist.h"

#include <QDateTime>
#include <QtEndian>

#include <bit>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Builder = BinaryListBuilder;

QByteArray single(const QByteArray &object)
{
    return Builder().add(object).build();
}

QByteArray real(double value)
{
    return '\x23' + Builder::number(std::bit_cast<quint64>(value), 8);
}

QByteArray date(double seconds)
{
    return '\x33' + Builder::number(std::bit_cast<quint64>(seconds), 8);
}

QByteArray utf16(const QString &text)
{
    QByteArray object = Builder::marker(0x6, text.size());
    for (const QChar character : text)
        object += Builder::number(character.unicode(), 2);
    return object;
}

/// A dictionary with an array, a string, data and a number, for damaging.
QByteArray smallList()
{
    Builder list;
    list.add(list.dictionary({1, 2}, {3, 4}));
    list.add(Builder::ascii("key")).add(utf16(u"\u00e9"_s)).add(list.array({5, 6, 7}));
    list.add(QByteArray(1, '\x09'))
        .add('\x10' + Builder::number(7, 1))
        .add(Builder::marker(0x4, 20) + QByteArray(20, 'x'));
    return list.add(real(0.5)).build();
}

/// Each array holds the next one ten times; the last holds an object of its own.
QByteArray multiplyingList(int levels, const QByteArray &last)
{
    Builder list;
    for (int level = 1; level <= levels; ++level)
        list.add(list.array(QList<quint64>(10, quint64(level))));
    return list.add(last).build();
}

class BinaryValue : public testing::TestWithParam<ValueRow> { };
class BinaryListWithError : public testing::TestWithParam<ErrorRow> { };
class BinaryFieldSizes : public testing::TestWithParam<int> { };

/// The small list with one byte of its trailer (from its start) replaced.
QByteArray withTrailerByte(int index, char byte)
{
    QByteArray list = smallList();
    list[list.size() - 32 + index] = byte;
    return list;
}

} // namespace

TEST(BinaryReader, aListReadsWithItsContainers)
{
    expectSame(valueOf(smallList()),
               QVariantMap{{u"key"_s, QVariantList{7LL, QByteArray(20, 'x'), 0.5}}, {u"\u00e9"_s, true}});
}

TEST(BinaryReader, theTopObjectNeedNotBeTheFirst)
{
    Builder list;
    list.add(Builder::ascii("inner"));
    list.add(list.array({0}));
    list.topObject = 1;
    expectSame(valueOf(list.build()), QVariantList{u"inner"_s});
}

TEST(BinaryReader, sharedObjectsAppearAtEachPlace)
{
    Builder list;
    list.add(list.array({1, 1, 2})).add(Builder::ascii("a")).add(list.array({1}));
    expectSame(valueOf(list.build()), QVariantList{u"a"_s, u"a"_s, QVariantList{u"a"_s}});
}

TEST(BinaryReader, ofTwoEqualKeysTheLastOneWins)
{
    Builder list;
    list.add(list.dictionary({1, 1}, {2, 3}))
        .add(Builder::ascii("a"))
        .add(Builder::ascii("b"))
        .add(Builder::ascii("c"));
    expectSame(valueOf(list.build()), QVariantMap{{u"a"_s, u"c"_s}});
}

TEST(BinaryReader, aSetReadsAsAList)
{
    Builder list;
    list.add(Builder::marker(0xc, 1) + list.references({1})).add(Builder::ascii("a"));
    expectSame(valueOf(list.build()), QVariantList{u"a"_s});
}

TEST(BinaryReader, aLongArrayHasItsLengthInAnInteger)
{
    Builder list;
    list.add(list.array(QList<quint64>(300, 1))).add(Builder::ascii("a"));
    EXPECT_EQ(valueOf(list.build()).toList(), QVariantList(300, u"a"_s));
}

TEST_P(BinaryFieldSizes, areReadForOffsetsAndReferences)
{
    Builder list;
    list.offsetSize = GetParam();
    list.referenceSize = GetParam();
    list.add(list.dictionary({1}, {2})).add(Builder::ascii("key")).add(list.array({1, 3})).add(real(2));
    expectSame(valueOf(list.build()), QVariantMap{{u"key"_s, QVariantList{u"key"_s, 2.0}}});
}

INSTANTIATE_TEST_SUITE_P(OneToEightBytes, BinaryFieldSizes, testing::Range(1, 9));

TEST_P(BinaryValue, reads)
{
    expectSame(valueOf(single(GetParam().data)), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Scalars, BinaryValue,
    testing::Values(
        ValueRow{"no", QByteArray(1, '\x08'), false}, //
        ValueRow{"yes", QByteArray(1, '\x09'), true}, //
        ValueRow{"oneByteIsUnsigned", '\x10' + Builder::number(255, 1), 255LL},
        ValueRow{"twoBytesAreUnsigned", '\x11' + Builder::number(0xffff, 2), 0xffffLL},
        ValueRow{"fourBytesAreUnsigned", '\x12' + Builder::number(0xffffffff, 4), 0xffffffffLL},
        ValueRow{"eightBytesAreSigned", '\x13' + Builder::number(quint64(-2), 8), -2LL},
        ValueRow{"sixteenBytesBeyondSigned", '\x14' + Builder::number(0, 8) + Builder::number(quint64(-2), 8),
                 std::numeric_limits<qulonglong>::max() - 1},
        ValueRow{"sixteenBytesSmall", '\x14' + Builder::number(0, 8) + Builder::number(5, 8), 5LL},
        ValueRow{"sixteenBytesNegative",
                 '\x14' + Builder::number(quint64(-1), 8) + Builder::number(quint64(-5), 8), -5LL},
        ValueRow{"shortReal", '\x22' + Builder::number(std::bit_cast<quint32>(1.5F), 4), 1.5},
        ValueRow{"longReal", real(-0.1), -0.1},
        ValueRow{"referenceDate", date(0), QDateTime({2001, 1, 1}, {0, 0}, Qt::UTC)},
        ValueRow{"dateBeforeTheReferenceDate", date(-978307200.0 - 0.5),
                 QDateTime({1969, 12, 31}, {23, 59, 59, 500}, Qt::UTC)},
        ValueRow{"emptyData", QByteArray(1, '\x40'), QByteArray("")},
        ValueRow{"emptyText", QByteArray(1, '\x50'), u""_s},
        ValueRow{"emptyUtf16Text", QByteArray(1, '\x60'), u""_s},
        ValueRow{"asciiText", Builder::ascii("a text of more than fourteen letters"),
                 u"a text of more than fourteen letters"_s},
        ValueRow{"utf16Text", utf16(u"\u4e2d\U0001f600"_s), u"\u4e2d\U0001f600"_s},
        ValueRow{"uid", '\x81' + Builder::number(300, 2), QVariantMap{{u"CF$UID"_s, 300LL}}},
        ValueRow{"emptyArray", QByteArray(1, '\xa0'), QVariantList()},
        ValueRow{"emptyDictionary", QByteArray(1, '\xd0'), QVariantMap()}),
    nameOfRow<ValueRow>);

TEST(BinaryReader, aDateIsInUniversalTime)
{
    EXPECT_EQ(valueOf(single(date(1e8))).toDateTime().timeSpec(), Qt::UTC);
}

TEST(BinaryReader, aListCutAnywhereIsAnError)
{
    const QByteArray whole = smallList();
    for (qsizetype size = 7; size < whole.size(); ++size)
        EXPECT_FALSE(platform::propertyListFromData(whole.first(size))) << size;
}

TEST(BinaryReader, aDamagedByteGetsAVerdict)
{
    const QByteArray whole = smallList();
    for (qsizetype i = 8; i < whole.size(); ++i) {
        for (int byte = 0; byte < 256; ++byte) {
            QByteArray damaged = whole;
            damaged[i] = char(byte);
            expectVerdict(damaged);
        }
    }
}

TEST(BinaryReader, theDeepestListReadsAndOneLevelMoreDoesNot)
{
    const auto nested = [](int levels) {
        Builder list;
        list.offsetSize = 4;
        list.referenceSize = 4;
        for (int level = 1; level < levels; ++level)
            list.add(list.array({quint64(level)}));
        return list.add(list.array({})).build();
    };
    constexpr int depth = platform::propertylist::maximumDepth;
    valueOf(nested(depth));
    EXPECT_EQ(errorOf(nested(depth + 1)), "Byte 2568: the list is nested deeper than 512 levels");
    EXPECT_EQ(errorOf(nested(100'000)), "Byte 2568: the list is nested deeper than 512 levels");
}

TEST(BinaryReader, sharedReferencesThatMultiplyAreRefusedByTheirCount)
{
    EXPECT_EQ(valueOf(multiplyingList(5, QByteArray(1, '\x09'))).toList().size(), 10);
    EXPECT_EQ(errorOf(multiplyingList(20, QByteArray(1, '\x09'))),
              "Byte 228: the list holds more than 1000000 objects");
}

TEST(BinaryReader, sharedTextAndDataThatMultiplyAreRefusedByTheirSize)
{
    const QByteArray text = Builder::ascii(QByteArray(1024 * 1024, 'a'));
    const QByteArray data = Builder::marker(0x4, 1024 * 1024) + QByteArray(1024 * 1024, 'a');
    EXPECT_EQ(errorOf(multiplyingList(3, text)), "Byte 41: the list expands to more than 256 MiB");
    EXPECT_EQ(errorOf(multiplyingList(3, data)), "Byte 41: the list expands to more than 256 MiB");
    valueOf(multiplyingList(2, text));
}

TEST(BinaryReader, anObjectThatContainsItselfIsRefused)
{
    Builder direct;
    direct.add(direct.array({0}));
    EXPECT_EQ(errorOf(direct.build()), "Byte 9: object 0 contains itself");

    Builder roundabout;
    roundabout.add(roundabout.dictionary({1}, {2})).add(Builder::ascii("a")).add(roundabout.array({1, 0}));
    EXPECT_EQ(errorOf(roundabout.build()), "Byte 15: object 0 contains itself");
}

TEST_P(BinaryListWithError, saysWhatIsWrongAndWhere)
{
    EXPECT_EQ(errorOf(GetParam().data), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Frame, BinaryListWithError,
    testing::Values(
        ErrorRow{"otherVersion", "bplist01" + smallList().sliced(8),
                 "Byte 7: this version of the binary form is not known"},
        ErrorRow{"noRoomForATrailer", "bplist00" + QByteArray(31, '\0'),
                 "Byte 39: the list ends before its trailer"},
        ErrorRow{"offsetsOfNoBytes", withTrailerByte(6, 0), "Byte 88: offsets of 0 bytes are not possible"},
        ErrorRow{"offsetsOfNineBytes", withTrailerByte(6, 9), "Byte 88: offsets of 9 bytes are not possible"},
        ErrorRow{"referencesOfNoBytes", withTrailerByte(7, 0),
                 "Byte 89: references of 0 bytes are not possible"},
        ErrorRow{"referencesOfNineBytes", withTrailerByte(7, 9),
                 "Byte 89: references of 9 bytes are not possible"},
        ErrorRow{"noObjects", withTrailerByte(15, 0), "Byte 90: the list holds no object"},
        ErrorRow{"moreObjectsThanOffsets", withTrailerByte(15, 9),
                 "Byte 90: the offset table is too short for 9 objects"},
        ErrorRow{"enormousNumberOfObjects", withTrailerByte(8, '\xff'),
                 "Byte 90: the offset table is too short for 18374686479671623688 objects"},
        ErrorRow{"fewerObjectsThanOffsets", withTrailerByte(15, 7),
                 "Byte 82: there are bytes between the offset table and the trailer"},
        ErrorRow{"topObjectOutside", withTrailerByte(23, 8),
                 "Byte 98: object 8 is not among the 8 objects of the list"},
        ErrorRow{"tableBehindTheTrailer", withTrailerByte(24, '\x7f'),
                 "Byte 106: the offset table lies outside the list"},
        ErrorRow{"tableInTheHeader", withTrailerByte(31, 4),
                 "Byte 106: the offset table lies outside the list"}),
    nameOfRow<ErrorRow>);

INSTANTIATE_TEST_SUITE_P(
    Objects, BinaryListWithError,
    testing::Values(
        ErrorRow{"referenceOutside", single("\xa1\x05"),
                 "Byte 9: object 5 is not among the 1 objects of the list"},
        ErrorRow{"null", single(QByteArray(1, '\0')), "Byte 8: unknown object type 0x00"},
        ErrorRow{"fillByte", single("\x0f"), "Byte 8: unknown object type 0x0f"},
        ErrorRow{"unknownType", single("\xe1"), "Byte 8: unknown object type 0xe1"},
        ErrorRow{"integerTooWide", single("\x15" + QByteArray(32, '\0')),
                 "Byte 8: an integer of 2^5 bytes is not possible"},
        ErrorRow{"integerBeyond64Bits", single('\x14' + Builder::number(1, 8) + Builder::number(0, 8)),
                 "Byte 8: the integer does not fit into 64 bits"},
        ErrorRow{"integerBelow64Bits",
                 single('\x14' + Builder::number(quint64(-1), 8) + Builder::number(1, 8)),
                 "Byte 8: the integer does not fit into 64 bits"},
        ErrorRow{"integerCut", single("\x13\x01\x02"), "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"realOfOneByte", single("\x20\x01"), "Byte 8: a real of 2^0 bytes is not possible"},
        ErrorRow{"realCut", single("\x22\x01"), "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"dateOfFourBytes", single("\x32" + QByteArray(4, '\0')),
                 "Byte 8: a date of 2^2 bytes is not possible"},
        ErrorRow{"dateCut", single("\x33\x01"), "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"dateThatIsNoNumber", single(date(std::numeric_limits<double>::quiet_NaN())),
                 "Byte 8: the date is out of range"},
        ErrorRow{"dateOutOfRange", single(date(-1e300)), "Byte 8: the date is out of range"},
        ErrorRow{"dataCut", single("\x42\x01"), "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"asciiCut",
                 single("\x52"
                        "a"),
                 "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"asciiBeyondAscii",
                 single("\x53"
                        "ab\x80"),
                 "Byte 11: an ASCII string holds a byte beyond ASCII"},
        ErrorRow{"utf16Cut",
                 single("\x61"
                        "a"),
                 "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"uidTooWide", single("\x88" + QByteArray(9, '\0')),
                 "Byte 8: a UID of 9 bytes is not possible"},
        ErrorRow{"uidCut",
                 single("\x81"
                        "a"),
                 "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"arrayCut", single("\xa9"), "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"dictionaryCut", single(QByteArray("\xd1\x00", 2)),
                 "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"lengthMissing", single("\x5f"), "Byte 9: the object runs past the end of the objects"},
        ErrorRow{"lengthThatIsText",
                 single("\x5f\x51"
                        "a"),
                 "Byte 9: the length of an object is no integer"},
        ErrorRow{"lengthTooWide", single("\x5f\x14" + QByteArray(16, '\0')),
                 "Byte 9: the length of an object is no integer"},
        ErrorRow{"lengthCut",
                 single("\x5f\x11"
                        "a"),
                 "Byte 10: the object runs past the end of the objects"},
        ErrorRow{"negativeLength", single("\x5f\x13" + QByteArray(8, '\xff')),
                 "Byte 18: the object runs past the end of the objects"},
        ErrorRow{"lengthThatOverflowsWhenMultiplied", single("\xdf\x13\x7f" + QByteArray(7, '\xff')),
                 "Byte 18: the object runs past the end of the objects"}),
    nameOfRow<ErrorRow>);

TEST(BinaryReader, anOffsetOutsideTheObjectsIsAnError)
{
    Builder list;
    list.add(list.array({1})).add(Builder::ascii("a"));
    list.offsets[1] = 4000;
    EXPECT_EQ(errorOf(list.build()), "Byte 14: object 1 lies outside the list");
    list.offsets[1] = 7;
    EXPECT_EQ(errorOf(list.build()), "Byte 14: object 1 lies outside the list");
    list.offsets[1] = 12; // the offset table itself
    EXPECT_EQ(errorOf(list.build()), "Byte 14: object 1 lies outside the list");
}

TEST(BinaryReader, aKeyThatIsNoStringIsAnError)
{
    Builder list;
    list.add(list.dictionary({1}, {1})).add(real(1));
    EXPECT_EQ(errorOf(list.build()), "Byte 9: a key of the dictionary is not a string");
}
