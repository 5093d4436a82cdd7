// What the header of a window tells of an item beyond its name: how large it is, for which processors, and in
// how many places it will be signed.

#include "ui/itemsurvey.h"

#include "platform/itempath.h"
#include "support/items.h"
#include "ui/examinedwindow.h"
#include "ui/itemfacts.h"
#include "ui/windowtest.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

QByteArray bigEndian(const QList<quint32> &numbers)
{
    QByteArray bytes;
    for (const quint32 number : numbers) {
        for (const int shift : {24, 16, 8, 0})
            bytes.append(char(number >> shift));
    }
    return bytes;
}

QByteArray littleEndian(const QList<quint32> &numbers)
{
    QByteArray bytes;
    for (const quint32 number : numbers) {
        for (const int shift : {0, 8, 16, 24})
            bytes.append(char(number >> shift));
    }
    return bytes;
}

const QByteArray arm = littleEndian({0xfeedfacf, 0x0100000c, 0, 2});
const QByteArray both = bigEndian({0xcafebabe, 2, 0x01000007, 3, 4096, 16, 12, 0x0100000c, 0, 8192, 16, 14});

class SurveyOfAnItem : public WindowTest {
protected:
    SurveyOfAnItem()
    {
        const QString app = host.item(u"Foo.app"_s);
        items::makeBundle(app);
        items::makeFile(app + u"/Contents/MacOS/Foo"_s, both, true);
        items::makeFile(app + u"/Contents/MacOS/helper"_s, arm, true);
        items::makeFile(app + u"/Contents/Frameworks/libfoo.dylib"_s, arm);
        items::makeFile(app + u"/Contents/Resources/notes.txt"_s, QByteArray(2'000'000, 'x'));
    }
    QString facts() { return part<QLabel>(u"itemFacts"_s).text(); }
};

} // namespace

TEST(Architectures, areThoseOfThinAndUniversalFiles)
{
    EXPECT_EQ(architecturesIn(arm), QStringList{u"arm64"_s});
    EXPECT_EQ(architecturesIn(both), (QStringList{u"x86_64"_s, u"arm64"_s}));
    EXPECT_EQ(architecturesIn(littleEndian({0xfeedfacf, 0x0100000c, 0x80000002, 2})),
              QStringList{u"arm64e"_s});
}

TEST(Architectures, ofWhatIsNoCodeAreNone)
{
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("#!/bin/sh\n exit\n"), QByteArray("\xca\xfe\xba\xbe"),
          bigEndian({0xcafebabe, 52, 0, 0, 0}), bigEndian({0xcafebabe, 3, 7})})
        EXPECT_EQ(architecturesIn(bytes), QStringList()) << bytes.toHex().constData();
}

TEST_F(SurveyOfAnItem, countsWhatARunSignsOnItsOwn)
{
    const ItemSurvey survey = surveyOf(host.files, host.item(u"Foo.app"_s));
    EXPECT_EQ(survey.places, 3) << "the library, the helper, and the app with its main executable";
    EXPECT_EQ(survey.architectures, (QStringList{u"x86_64"_s, u"arm64"_s}));
    EXPECT_GT(survey.bytes, 2'000'000);
}

TEST_F(SurveyOfAnItem, ofAnImageIsItsSizeAlone)
{
    items::makeFile(host.item(u"Foo.dmg"_s), QByteArray(1234, 'x'));
    EXPECT_EQ(surveyOf(host.files, host.item(u"Foo.dmg"_s)), (ItemSurvey{1234, {}, 0}));
}

TEST_F(SurveyOfAnItem, standsBesideTheNameOfTheItem)
{
    host.application().applicationOpenFiles({host.item(u"Foo.app"_s)});
    until([this] { return facts().contains(u"in 3 places"_s); });
    EXPECT_TRUE(facts().contains(u" · 2 MB · x86_64, arm64 · will be signed in 3 places by "_s))
        << facts().toStdString();
    document().dontSignEnclosuresCheckbox.setState(1);
    EXPECT_FALSE(facts().contains(u"places"_s)) << "the main item alone";
}

namespace {

/// A window with a program that looks at items and tells more of them than is so, or fails.
class OneLookAtAnItem : public ExaminedWindow {
protected:
    OneLookAtAnItem() { items::makeFile(host.item(u"Foo.app/Contents/MacOS/Foo"_s), both, true); }

    template <class Widget>
    Widget &part(const QString &name)
    {
        return *page().findChild<Widget *>(name);
    }
    QString facts() { return part<QLabel>(u"itemFacts"_s).text(); }
};

} // namespace

TEST_F(OneLookAtAnItem, servesTheHeaderAndTheFindings)
{
    open("echo once >> \"${0%/*}/looks\"\n"
         "echo '{\"item\": \"'\"$4\"'\", \"size\": 7000000, \"refused\": false, \"findings\": [], \"code\": "
         "['\n"
         "echo '{\"path\": \".\", \"kind\": \"app\", \"order\": 2, \"architectures\": [\"i386\"]},'\n"
         "echo '{\"path\": \"Contents/a\", \"kind\": \"library\", \"order\": 1, \"architectures\": "
         "[\"arm64\"]}'\n"
         "echo ']}'\n");
    until([this] { return facts().contains(u"i386"_s); });
    EXPECT_TRUE(facts().contains(u" · 7 MB · i386"_s)) << "what the look tells, " << facts().toStdString();
    EXPECT_EQ(part<QTreeWidget>(u"examineTree"_s).topLevelItemCount(), 3);
    QFile looks(host.item(u"looks"_s));
    ASSERT_TRUE(looks.open(QIODevice::ReadOnly));
    EXPECT_EQ(looks.readAll(), "once\n");
}

TEST_F(OneLookAtAnItem, thatFailsLeavesTheHeaderToAWalk)
{
    open("echo 'sealwright-examine: No.' >&2\nexit 4\n");
    until([this] { return facts().contains(u"x86_64, arm64"_s); });
    EXPECT_EQ(part<QLabel>(u"examineSummary"_s).text(), u"No."_s);
}

TEST(SurveyInALook, countsWhatIsSignedAndKnowsTheMainExecutable)
{
    const QJsonArray code{
        QJsonObject{{u"path"_s, u"."_s}, {u"order"_s, 2}, {u"architectures"_s, QJsonArray{u"arm64"_s}}},
        QJsonObject{{u"path"_s, u"a"_s}, {u"order"_s, 1}},
        QJsonObject{{u"path"_s, u"b"_s}, {u"order"_s, QJsonValue::Null}}};
    const QJsonObject look{{u"item"_s, u"/Foo.app"_s}, {u"size"_s, 12}, {u"code"_s, code}};
    EXPECT_EQ(surveyIn(look), (ItemSurvey{12, {u"arm64"_s}, 2}));
    EXPECT_EQ(surveyIn({{u"item"_s, u"/Foo.app"_s}}).places, 1) << "the item itself";
    EXPECT_EQ(surveyIn({{u"item"_s, u"/Foo.pkg"_s}, {u"size"_s, 12}, {u"code"_s, code}}),
              (ItemSurvey{12, {}, 0}));
}

TEST(SurveyInALook, knowsWhatAPackageAndAnImageCallThemselves)
{
    const QJsonObject product{{u"identifier"_s, u"com.example.foo"_s}, {u"version"_s, u"1.2"_s}};
    const ItemSurvey package = surveyIn({{u"item"_s, u"/Foo.pkg"_s}, {u"product"_s, product}});
    EXPECT_EQ(itemfacts::describe(package), u"com.example.foo · version 1.2"_s);
    const QJsonObject volume{{u"volume"_s, u"Foo 1.2"_s}};
    const ItemSurvey image = surveyIn({{u"item"_s, u"/Foo.dmg"_s}, {u"product"_s, volume}});
    EXPECT_EQ(itemfacts::describe(image), u"volume “Foo 1.2”"_s);
}

TEST_F(OneLookAtAnItem, tellsTheHeaderWhatAPackageCallsItself)
{
    items::makeFile(host.item(u"Foo.pkg"_s), QByteArray(1000, 'x'));
    open("echo '{\"item\": \"'\"$4\"'\", \"size\": 7, \"refused\": false, \"findings\": [], \"code\": [], '\n"
         "echo '\"product\": {\"identifier\": \"com.example.foo\", \"version\": \"1.2\"}}'\n");
    host.document().originalAppletURL.set(QUrl::fromLocalFile(host.item(u"Foo.pkg"_s)));
    host.document().appletNameField.setStringValue(u"Foo.pkg"_s);
    until([this] { return facts().contains(u"com.example.foo · version 1.2 · 1 kB"_s); });
}
