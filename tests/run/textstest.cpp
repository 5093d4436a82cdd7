// How texts show where a comparison fails.

#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ComparedTexts, areShownAsTexts)
{
    EXPECT_EQ(testing::PrintToString(u"Für „Foo.app“"_s), "\"Für „Foo.app“\"");
    EXPECT_EQ(testing::PrintToString(QString()), "no text");
    EXPECT_EQ(testing::PrintToString(QStringList{u"a"_s, u"b"_s}), "{ \"a\", \"b\" }");
}

TEST(ComparedTexts, areShownAsTextsAlsoAsBytesAndAddresses)
{
    EXPECT_EQ(testing::PrintToString(QByteArray("a\0b", 3)), "\"a\\x00\"\"b\"");
    EXPECT_EQ(testing::PrintToString(QUrl(u"file:///a%20b"_s)), "<file:///a%20b>");
}
