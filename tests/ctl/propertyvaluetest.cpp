#include "ctl/propertyvalue.h"

#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusObjectPath>
#include <QDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

std::optional<QVariant> read(const QString &className, const QString &property, const QStringList &words)
{
    return readValue(typeOfProperty(className, property).value(), words);
}

} // namespace

TEST(PropertyValue, aTextIsTakenAsItStands)
{
    for (const QString &text : {u"true"_s, u"12"_s, u""_s, u" a b "_s, u"[]"_s, u"file:///a"_s})
        EXPECT_EQ(read(u"document"_s, u"AppleID"_s, {text}), QVariant(text));
}

TEST(PropertyValue, aBooleanIsOneOfTwoWords)
{
    EXPECT_EQ(read(u"document"_s, u"AllowJITCode"_s, {u"true"_s}), QVariant(true));
    EXPECT_EQ(read(u"document"_s, u"AllowJITCode"_s, {u"false"_s}), QVariant(false));
    for (const QString &word : {u"yes"_s, u"1"_s, u"True"_s, QString()})
        EXPECT_EQ(read(u"document"_s, u"AllowJITCode"_s, {word}), std::nullopt);
}

TEST(PropertyValue, aNumberIsWholeWhereThePropertyIs)
{
    EXPECT_EQ(read(u"application"_s, u"PollingDelay"_s, {u"45.5"_s}), QVariant(45.5));
    EXPECT_EQ(read(u"application"_s, u"ErrorRetryLimit"_s, {u"-3"_s}), QVariant(qlonglong{-3}));
    EXPECT_EQ(read(u"application"_s, u"ErrorRetryLimit"_s, {u"4.5"_s}), std::nullopt);
    for (const QString &word : {u"soon"_s, u"nan"_s, u"inf"_s})
        EXPECT_EQ(read(u"application"_s, u"PollingDelay"_s, {word}), std::nullopt) << word.toStdString();
}

TEST(PropertyValue, aListIsAnArrayOfTexts)
{
    EXPECT_EQ(read(u"document"_s, u"PathsToSkip"_s, {u"[\"a b\", \"ü\"]"_s}),
              QVariant(QStringList{u"a b"_s, u"ü"_s}));
    EXPECT_EQ(read(u"document"_s, u"PathsToSkip"_s, {u"[]"_s}), QVariant(QStringList()));
    for (const QString &word : {u"a"_s, u"[1]"_s, u"{}"_s, u"[\"a\""_s})
        EXPECT_EQ(read(u"document"_s, u"PathsToSkip"_s, {word}), std::nullopt) << word.toStdString();
}

TEST(PropertyValue, aFileIsAPathOrAnAddress)
{
    const QString here = QDir::currentPath();
    EXPECT_EQ(read(u"document"_s, u"ExtraEntitlements"_s, {u"a b.plist"_s}),
              QVariant(QUrl::fromLocalFile(here + u"/a b.plist"_s).toString(QUrl::FullyEncoded)));
    EXPECT_EQ(read(u"document"_s, u"ExtraEntitlements"_s, {u"file:///a%20b.plist"_s}),
              QVariant(u"file:///a%20b.plist"_s));
}

TEST(PropertyValue, aWindowIsItsNumber)
{
    const auto window = read(u"window"_s, u"ParentWindow"_s, {u"12"_s});
    ASSERT_TRUE(window);
    EXPECT_EQ(window->value<QDBusObjectPath>().path(), bus::windowsPath + u"/12"_s);
    for (const QString &word : {u"front"_s, u"-1"_s, u"+1"_s, u"1.5"_s, QString()})
        EXPECT_EQ(read(u"window"_s, u"ParentWindow"_s, {word}), std::nullopt) << word.toStdString();
}

TEST(PropertyValue, boundsAreFourNumbersInOneWordOrInFour)
{
    for (const QStringList &words :
         {QStringList{u"20 -10 500 700"_s}, QStringList{u"20"_s, u"-10"_s, u"500"_s, u"700"_s},
          QStringList{u"20,-10,500,700"_s}}) {
        const auto bounds = read(u"window"_s, u"BoundsAsQDRect"_s, words);
        ASSERT_TRUE(bounds);
        EXPECT_EQ(bounds->value<platform::QDRect>(), (platform::QDRect{20, -10, 500, 700}));
    }
    for (const QString &word : {u"1 2 3"_s, u"1 2 3 4 5"_s, u"1 2 3 x"_s, u"1 2 3 40000"_s})
        EXPECT_EQ(read(u"window"_s, u"BoundsAsQDRect"_s, {word}), std::nullopt) << word.toStdString();
}

TEST(PropertyValue, onlyBoundsTakeMoreThanOneWord)
{
    EXPECT_EQ(read(u"document"_s, u"AppleID"_s, {u"a"_s, u"b"_s}), std::nullopt);
}

TEST(PropertyValue, ofAnUnknownPropertyThereIsNoType)
{
    EXPECT_EQ(typeOfProperty(u"document"_s, u"Nothing"_s), std::nullopt);
    EXPECT_EQ(typeOfProperty(u"application"_s, u"PathsToSkip"_s), std::nullopt);
}
