#include "scripting/dbus/busvalue.h"
#include "scripting/dbus/busnames.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(BusValue, noValueIsAnEmptyListOfVariants)
{
    EXPECT_EQ(busvalue::toBus({}), QVariant(QVariantList()));
    EXPECT_EQ(busvalue::toBus(QUrl()), QVariant(QVariantList()));
    EXPECT_EQ(busvalue::fromBus(QVariantList(), u"b"_s), std::optional(QVariant()));
}

TEST(BusValue, anItemIsTheTextOfItsURL)
{
    EXPECT_EQ(busvalue::toBus(QUrl::fromLocalFile(u"/a/My App#1.app"_s)),
              QVariant(u"file:///a/My%20App%231.app"_s));
}

TEST(BusValue, anotherTypeThanTheWantedOneIsNoValueOfIt)
{
    EXPECT_EQ(busvalue::fromBus(true, u"b"_s), std::optional(QVariant(true)));
    EXPECT_EQ(busvalue::fromBus(1, u"b"_s), std::nullopt);
    EXPECT_EQ(busvalue::fromBus(u"true"_s, u"b"_s), std::nullopt);
    EXPECT_EQ(busvalue::fromBus(QVariantList{true}, u"b"_s), std::nullopt);
}

TEST(BusValue, aTextWithoutTheSchemeIsNoFile)
{
    EXPECT_TRUE(busvalue::fileUrl(u"/a/Foo.app"_s).isEmpty());
    EXPECT_TRUE(busvalue::fileUrl(u"https://example.com/Foo.app"_s).isEmpty());
    EXPECT_TRUE(busvalue::fileUrl(u"file://host/Foo.app"_s).isEmpty());
    EXPECT_EQ(busvalue::fileUrl(u"file:///a/My%20App.app"_s).toLocalFile(), u"/a/My App.app"_s);
}

TEST(BusNames, anIdentifierInAPathKeepsItsLettersAndDigitsOnly)
{
    EXPECT_EQ(bus::pathElement(u"a1B2-c3.d4 é²"_s), u"a1B2_c3_d4___"_s);
}

TEST(BusValue, aFileIsMeantByItsPathWithoutDotsAndEmptySteps)
{
    const QTemporaryDir folder;
    QDir(folder.path()).mkpath(u"Foo.app/Contents"_s);
    ASSERT_TRUE(QFile::link(folder.filePath(u"Foo.app/Contents"_s), folder.filePath(u"link"_s)));
    const QString real = QFileInfo(folder.path()).canonicalFilePath();
    const std::pair<QString, QString> rows[] = {
        {u"/Foo.app/Contents/../../Foo.app"_s, real + u"/Foo.app"_s},
        {u"/link/../Contents"_s, real + u"/Foo.app/Contents"_s},
        {u"/./Foo.app"_s, folder.path() + u"/Foo.app"_s},
        {u"//Foo.app"_s, folder.path() + u"/Foo.app"_s},
        {u"/link"_s, folder.path() + u"/link"_s},
        {u"/Foo.app/Contents/.."_s, real + u"/Foo.app"_s},
    };
    for (const auto &[given, meant] : rows)
        EXPECT_EQ(busvalue::fileUrl(u"file://"_s + folder.path() + given).toLocalFile(), meant);
    EXPECT_EQ(busvalue::fileUrl(u"file:////tmp/x/Foo.app"_s).toString(), u"file:///tmp/x/Foo.app"_s);
}
