// Windows that are low or narrow, and fonts that are large: nothing is cut that a person has to read or
// press.

#include "ui/alertbox.h"
#include "ui/bannerrow.h"
#include "ui/controlstyle.h"
#include "ui/findbar.h"
#include "ui/framewindow.h"
#include "ui/issuetable.h"
#include "ui/keychainwindow.h"
#include "ui/logview.h"
#include "ui/outcomebanner.h"
#include "ui/providernamesheet.h"
#include "ui/runpanes.h"
#include "ui/settingspane.h"
#include "ui/setupbanner.h"
#include "ui/setupdialog.h"

#include "germanwindows.h"
#include "support/items.h"
#include "windowtest.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize low(1024, 600);
constexpr QSize usual(1024, 768);

class TightRoom : public WindowTest {
protected:
    ~TightRoom() override { QApplication::setFont(m_font); }

    void useLargeFont()
    {
        QFont large = m_font;
        large.setPointSizeF(2 * m_font.pointSizeF());
        QApplication::setFont(large);
        host.application().addedDocument();
    }
    void resize(QSize size)
    {
        widget().resize(size);
        QCoreApplication::processEvents();
    }
    /// Of what a person sets, so many pixels are out of sight.
    int cut()
    {
        const auto &settings = *page().findChild<SettingsPane *>();
        return settings.verticalScrollBar()->maximum();
    }
    void refuse()
    {
        document().serviceIssues.set(
            uR"([{"severity": "error", "path": "Foo.zip/Foo.app/Contents/MacOS/a-long-name-of-a-file",
 "architecture": "arm64", "message": "The executable does not have the hardened runtime enabled, nor a time stamp."},
 {"severity": "warning", "path": "Foo.zip", "message": "Short.", "architecture": "arm64"}])"_s);
        part<QTabWidget>(u"sidePane"_s).setCurrentIndex(2);
        QCoreApplication::processEvents();
    }

private:
    const QFont m_font = QApplication::font();
};

/// A style as it is where the desktop has none.
class PlainStyle : public ControlStyle {
public:
    PlainStyle() { setBaseStyle(QStyleFactory::create(u"Fusion"_s)); }
};

/// In the longer language, with the font twice the size.
class TightRoomInGerman : protected German, public TightRoom {
protected:
    TightRoomInGerman()
    {
        QApplication::setStyle(new PlainStyle);
        useLargeFont();
        items::makeBundle(host.item(u"Foo.app"_s));
    }
    ~TightRoomInGerman() override { QApplication::setStyle(QStyleFactory::create(u"Fusion"_s)); }

    /// What a banner needs of the others' room is told to the window when the events are idle.
    void expectToFit()
    {
        until([this] {
            resize(usual);
            return widget().height() <= usual.height() && widget().width() <= usual.width();
        });
    }
};

} // namespace

TEST_F(TightRoomInGerman, aWindowWhoseItemIsNotarizedFits)
{
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    answer(u"OK"_s);
    expectToFit();
}

TEST_F(TightRoomInGerman, aWindowWhoseItemIsRefusedFits)
{
    host.tools.answer(u"altool--notarization-info"_s, {.output = FakeTools::infoReport(u"invalid"_s)});
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    answer(u"OK"_s);
    refuse();
    expectToFit();
}

TEST_F(TightRoomInGerman, aWindowThatHasBeenCancelledFits)
{
    host.submit(host.item(u"Foo.app"_s));
    document().perform(Action::doCancel);
    answer(u"OK"_s);
    expectToFit();
}

TEST_F(TightRoomInGerman, theKeychainFits)
{
    const KeychainWindow keychain(host.host(), u"/usr/bin/sealwright-keychain"_s);
    EXPECT_LE(keychain.minimumSizeHint().width(), usual.width());
    EXPECT_LE(keychain.minimumSizeHint().height(), usual.height());
    host.settle();
}

TEST_F(TightRoom, aWindowThatItsPartsHaveMadeTallerThanTheScreenComesBack)
{
    const int screen = widget().screen()->availableSize().height();
    page().setMinimumHeight(screen + 100);
    until([&] { return widget().height() > screen; });
    page().setMinimumHeight(0);
    until([&] { return widget().height() == screen; });
}

TEST_F(TightRoom, aWindowThatSomebodyHasMadeTallerThanTheScreenStaysSo)
{
    const int tall = widget().screen()->availableSize().height() + 100;
    resize({usual.width(), tall});
    page().banner().setVisible(true);
    QCoreApplication::processEvents();
    page().banner().setVisible(false);
    QCoreApplication::processEvents();
    EXPECT_EQ(widget().height(), tall);
}

TEST_F(TightRoom, aLowWindowShowsAllThatIsSet)
{
    resize(low);
    EXPECT_EQ(widget().height(), low.height());
    EXPECT_EQ(cut(), 0);
}

TEST_F(TightRoom, aLowWindowShowsAllThatIsSetBelowTheWelcomeToo)
{
    page().setupBanner().setVisible(true);
    resize(low);
    EXPECT_EQ(widget().height(), low.height());
    EXPECT_EQ(cut(), 0);
}

TEST_F(TightRoom, aWindowWithALargeFontAndABannerFitsItsScreen)
{
    useLargeFont();
    items::makeBundle(host.item(u"Foo.app"_s));
    host.submit(host.item(u"Foo.app"_s));
    document().perform(Action::doCancel);
    answer(u"OK"_s);
    ASSERT_TRUE(page().banner().isVisible());
    until([this] { // what the banner needs of the others' room is told to the window when the events are idle
        resize(usual);
        return widget().height() <= usual.height() && widget().width() <= usual.width();
    });
}

TEST_F(TightRoom, theLogHasMoreOfTheWidthThanTheStepsWithALargeFont)
{
    useLargeFont();
    resize(usual);
    const auto &panes = *page().findChild<RunPanes *>();
    EXPECT_GT(panes.sizes().at(0), panes.sizes().at(1));
}

TEST_F(TightRoom, theFirstStepsEndAboveTheEdgeOfALowWindow)
{
    resize(low);
    for (const SetupRoad road : {SetupRoad::practice, SetupRoad::developerID}) {
        SetupDialog steps(document(), road, &page());
        const int room = page().height() - page().header().height();
        EXPECT_LE(steps.layout()->totalHeightForWidth(steps.minimumWidth()), room - 60) << "with its title";
    }
}

TEST_F(TightRoom, aSheetIsNoWiderThanItsPage)
{
    useLargeFont();
    resize(usual);
    const ProviderNameSheet providers(document(), &page());
    EXPECT_LT(providers.minimumWidth(), page().width());
    const SetupDialog steps(document(), SetupRoad::practice, &page());
    EXPECT_LT(steps.minimumWidth(), page().width());
}

TEST_F(TightRoom, aLongTextIsWiderThanAShortOneButNoWiderThanThePage)
{
    const auto widthOf = [this](const QString &text) {
        const AlertBox box({u"Title"_s, text, {}}, &page());
        return box.findChild<QLabel *>(u"qt_msgbox_informativelabel"_s)->minimumWidth();
    };
    resize(usual);
    const QString longText = QString(u"many words "_s).repeated(60);
    EXPECT_GT(widthOf(longText), widthOf(u"few words"_s));
    constexpr int narrow = 400;
    QWidget narrowPage;
    narrowPage.resize(narrow, narrow);
    const AlertBox box({u"Title"_s, longText, {}}, &narrowPage);
    EXPECT_LT(box.findChild<QLabel *>(u"qt_msgbox_informativelabel"_s)->minimumWidth(), narrow);
}

TEST_F(TightRoom, theIssuesAreReadWithoutScrollingSideways)
{
    resize(usual);
    refuse();
    auto &table = part<QTableWidget>(u"issueTable"_s);
    EXPECT_GT(table.rowHeight(0), table.rowHeight(1)) << "a long message takes more lines";
    int width = 0;
    for (int column = 0; column < table.columnCount() - 1; ++column)
        width += table.columnWidth(column);
    EXPECT_LE(width, table.viewport()->width()) << "all but the link";
    EXPECT_FALSE(table.item(0, 0)->icon().isNull());
}

TEST(NarrowBanner, hasButtonsWithoutTheirPictures)
{
    QWidget banner;
    BannerRow row(banner, new QHBoxLayout);
    QPushButton button(u"A button with many words"_s, &banner);
    row.addButton(button);
    banner.resize(600, 60);
    banner.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return button.iconSize().width() > 0; }));
    banner.setMinimumWidth(1);
    banner.layout()->setSizeConstraint(QLayout::SetNoConstraint);
    banner.resize(100, 60);
    EXPECT_TRUE(QTest::qWaitFor([&] { return button.iconSize().width() == 0; }));
}

TEST(NarrowFindBar, keepsItsWordsInSight)
{
    QPlainTextEdit text;
    FindBar bar(text);
    bar.open();
    const auto &done = *bar.findChild<QToolButton *>(u"findDoneButton"_s);
    bar.resize(800, bar.sizeHint().height());
    QCoreApplication::processEvents();
    EXPECT_EQ(done.toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    bar.resize(300, bar.sizeHint().height());
    QCoreApplication::processEvents();
    EXPECT_EQ(done.toolButtonStyle(), Qt::ToolButtonIconOnly);
    EXPECT_EQ(done.accessibleName(), u"Done"_s);
}

TEST(PlainControls, havePicturesThatGrowWithTheFont)
{
    PlainStyle style;
    QPushButton button;
    QFont large = button.font();
    const int before = style.pixelMetric(QStyle::PM_ButtonIconSize, nullptr, &button);
    large.setPointSizeF(2 * large.pointSizeF());
    button.setFont(large);
    EXPECT_GT(style.pixelMetric(QStyle::PM_ButtonIconSize, nullptr, &button), before * 5 / 4);
}

TEST(PlainControls, shortenATitleThatIsTooLongForItsPopup)
{
    PlainStyle style;
    const auto drawn = [&style](const QString &title) {
        QComboBox popup;
        popup.setStyle(&style);
        popup.addItem(title);
        popup.resize(120, 30);
        return popup.grab().toImage();
    };
    const QString title = u"a title that is far too long for so small a popup"_s;
    EXPECT_NE(drawn(title), drawn(title.left(title.indexOf(u" is"_s)))) << "which would have been cut alike";
    EXPECT_EQ(drawn(title + u" and longer"_s), drawn(title));
}

TEST(AFilteredLog, saysThatNothingIsLeftToSee)
{
    LogText log;
    LogView view(log);
    log.append({u"a step\n"_s, LogStyle::bold, {u"Menlo"_s, 12}});
    view.setFilter(LogFilter::errors);
    EXPECT_TRUE(QTest::qWaitFor([&view] { return view.hidesAll(); }));
    log.append({u"an error\n"_s, LogStyle::error, {u"Menlo"_s, 12}});
    EXPECT_TRUE(QTest::qWaitFor([&view] { return !view.hidesAll() && view.isSettled(); }));
    view.setFilter(LogFilter::all);
    EXPECT_FALSE(view.hidesAll());
}
