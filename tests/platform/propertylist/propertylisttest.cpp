#include "platform/propertylist/propertylist.h"
#include "platform/propertylist/limits.h"
#include "platform/propertylist/listexpectations.h"

#include <QDateTime>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using platform::propertyListFromData;
using platform::xmlPropertyListData;

TEST(PropertyList, emptyDataIsAnErrorAndNoDictionary)
{
    EXPECT_EQ(errorOf(QByteArray()), "The property list is empty");
    EXPECT_EQ(errorOf(" \t\r\n\n "), "The property list is empty");
    EXPECT_EQ(errorOf("\xef\xbb\xbf \n"), "The property list is empty");
}

TEST(PropertyList, aFileBeyondTheLargestSizeIsRefusedUnread)
{
    QByteArray data("word");
    data.append(platform::propertylist::maximumInputBytes, ' ');
    EXPECT_EQ(errorOf(data), "The property list is larger than 64 MiB");
    data.chop(4);
    expectSame(valueOf(data), u"word"_s);
}

TEST(PropertyList, theFormIsToldByTheContent)
{
    expectSame(valueOf("<plist><string>a</string></plist>"), u"a"_s);
    expectSame(valueOf("<array/>"), QVariantList());
    expectSame(valueOf("<data>AA==</data>"), QByteArray(1, '\0'));
    expectSame(valueOf("<abcd>"), QByteArray::fromHex("abcd"));
    expectSame(valueOf("{a=b;}"), QVariantMap{{u"a"_s, u"b"_s}});
    EXPECT_EQ(errorOf("bplist00"), "Byte 8: the list ends before its trailer");
}

TEST(PropertyList, whatIsWrittenReadsBackTheSame)
{
    const QVariantMap list{
        {u"array"_s, QVariantList{1LL, u"two"_s, QVariantList(), QVariantMap()}},
        {u"blanks"_s, u"  \t\n around \r\n "_s},
        {u"data"_s, QByteArray::fromHex("00ff10")},
        {u"date"_s, QDateTime({2024, 2, 29}, {23, 59, 58}, Qt::UTC)},
        {u"empty"_s, u""_s},
        {u"emptyData"_s, QByteArray("")},
        {u"false"_s, false},
        {u"huge"_s, std::numeric_limits<qulonglong>::max()},
        {u"infinity"_s, -std::numeric_limits<double>::infinity()},
        {u"keys & <signs>"_s, u"<&>\"']]>"_s},
        {u"real"_s, 0.1},
        {u"small"_s, std::numeric_limits<qlonglong>::min()},
        {u"true"_s, true},
        {u"\u00fcmlaut \U0001f600"_s, u"\u4e2d\u6587 \U0001f600"_s},
    };
    const auto written = xmlPropertyListData(list);
    ASSERT_TRUE(written) << written.error().toStdString();
    expectSame(valueOf(*written), list);
    const QVariantMap read = valueOf(*written).toMap();
    for (auto entry = list.begin(); entry != list.end(); ++entry)
        expectSame(read.value(entry.key()), entry.value());
}

TEST(PropertyList, noNumberStaysNoNumberOnTheWayThroughAFile)
{
    const QVariant read = valueOf(xmlPropertyListData(std::nan("")).valueOr({}));
    EXPECT_EQ(read.typeId(), QMetaType::Double);
    EXPECT_TRUE(std::isnan(read.toDouble()));
}

TEST(PropertyList, theDeepestListThatIsWrittenReadsBack)
{
    QVariant deep = QVariantList();
    for (int level = 1; level < platform::propertylist::maximumDepth; ++level)
        deep = QVariantList{deep};
    const auto written = xmlPropertyListData(deep);
    ASSERT_TRUE(written) << written.error().toStdString();
    expectSame(valueOf(*written), deep);
}
