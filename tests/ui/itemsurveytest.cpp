// What the header of a window tells of an item beyond its name: how large it is, for which processors, and in
// how many places it will be signed.

#include "ui/itemsurvey.h"

#include "platform/itempath.h"
#include "support/items.h"
#include "windowtest.h"

#include <QLabel>

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
