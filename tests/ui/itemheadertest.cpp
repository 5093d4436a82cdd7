#include "ui/itempanel.h"
#include "windowtest.h"

#include "support/items.h"
#include "ui/itemfacts.h"
#include "ui/itemicon.h"

#include <QBuffer>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

QByteArray pngOf(int side)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImage(side, side, QImage::Format_ARGB32).save(&buffer, "PNG");
    return bytes;
}

QByteArray element(const QByteArray &type, const QByteArray &data)
{
    QByteArray length(4, 0);
    qToBigEndian(quint32(data.size() + 8), length.data());
    return type + length + data;
}

class ItemHeaderTest : public WindowTest {
protected:
    QString facts() { return part<QLabel>(u"itemFacts"_s).text(); }
};

} // namespace

TEST(AnIconFile, givesItsLargestPicture)
{
    const QByteArray small = pngOf(16);
    const QByteArray large = pngOf(256);
    const QByteArray file =
        element("icns", element("icp4", small) + element("ic08", large) + element("TOC ", "x"));
    EXPECT_EQ(itemicon::pictureIn(file), large);
}

TEST(AnIconFile, thatIsCutOrLiesAboutItsLengthGivesNoMoreThanItHas)
{
    const QByteArray small = pngOf(16);
    const QByteArray file = element("icns", element("icp4", small) + element("ic08", pngOf(256)));
    EXPECT_EQ(itemicon::pictureIn(file.chopped(5)), small);
    EXPECT_EQ(itemicon::pictureIn("icns"_ba), std::nullopt);
    EXPECT_EQ(itemicon::pictureIn(element("icns", "ic08"_ba + QByteArray(4, 0))), std::nullopt) << "and ends";
    EXPECT_EQ(itemicon::pictureIn(element("icns", "ic08\xff\xff\xff\xff"_ba)), std::nullopt);
    EXPECT_EQ(itemicon::pictureIn("no icon file at all"_ba), std::nullopt);
}

TEST_F(ItemHeaderTest, tellsWhatTheItemIsAndWillBecome)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.application().applicationOpenFiles({host.item(u"Foo.app"_s)});
    host.settle();
    EXPECT_TRUE(facts().startsWith(u"Application"_s)) << facts().toStdString();
    EXPECT_TRUE(facts().endsWith(u"uploaded as a zip archive"_s)) << facts().toStdString();
    document().useDiskImage.set(true);
    EXPECT_TRUE(facts().endsWith(u"uploaded as a disk image"_s)) << facts().toStdString();
    EXPECT_FALSE(part<QLabel>(u"itemIcon"_s).pixmap(Qt::ReturnByValue).isNull());
}

TEST_F(ItemHeaderTest, tellsNothingWithoutAnItem)
{
    EXPECT_EQ(facts(), QString());
}

TEST_F(ItemHeaderTest, theFocusOfANewTabIsWhereOneTypes)
{
    host.application().newDocument(2);
    until([this] { return widget().isActiveWindow() && QApplication::focusWidget(); });
    const auto *const edit = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_TRUE(edit);
    EXPECT_FALSE(edit->isReadOnly());
}

TEST_F(ItemHeaderTest, theEmptyPlaceOfTheItemIsAWayToChooseOne)
{
    auto &icon = part<QLabel>(u"itemIcon"_s);
    EXPECT_EQ(icon.cursor().shape(), Qt::PointingHandCursor);
    QTest::mouseClick(&icon, Qt::LeftButton);
    until([this] { return page().findChild<ItemPanel *>(); });
    page().findChild<ItemPanel *>()->reject();
    until([this] { return !page().findChild<ItemPanel *>(); });
    document().appletNameField.setStringValue(u"Foo.app"_s);
    EXPECT_EQ(icon.cursor().shape(), Qt::ArrowCursor);
    QTest::mouseClick(&icon, Qt::LeftButton);
    EXPECT_FALSE(page().findChild<ItemPanel *>());
    document().appletNameField.setStringValue({});
}
