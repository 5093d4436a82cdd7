// What makes the windows look of one piece: one height of controls, one line for a caption and its field,
// common edges, and no title that is cut. In the style that the windows have where the desktop has none.

#include "app/preferencekeys.h"
#include "ui/controlstyle.h"
#include "ui/elidedlabel.h"
#include "ui/entitlementsgroup.h"
#include "ui/historymodel.h"
#include "ui/icons.h"
#include "ui/logview.h"
#include "ui/preferenceswindow.h"
#include "ui/settingspane.h"
#include "ui/setupbanner.h"
#include "ui/spacing.h"
#include "ui/steplistview.h"

#include "support/allsteps.h"
#include "windowtest.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTableView>
#include <QToolButton>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usual(1024, 768);
constexpr QSize low(1024, 600);

/// Begins before the windows: what they are made of asks the style as it is made.
class PlainLook {
protected:
    PlainLook()
    {
        auto *const style = new ControlStyle;
        style->setBaseStyle(QStyleFactory::create(u"Fusion"_s));
        QApplication::setStyle(style);
    }
    ~PlainLook() { QApplication::setStyle(u"Fusion"_s); }
};

class Rhythm : private PlainLook, public WindowTest {
protected:
    void resize(QSize size)
    {
        widget().resize(size);
        QCoreApplication::processEvents();
    }
    QRect placeOf(const QWidget &part) { return {part.mapTo(&page(), QPoint(0, 0)), part.size()}; }
    template <class Widget>
    QList<Widget *> visible()
    {
        QList<Widget *> all;
        for (Widget *const part : page().findChildren<Widget *>()) {
            if (part->isVisible())
                all.append(part);
        }
        return all;
    }
};

/// How far the middle of a caption's text is below its top.
int middleOf(const QLabel &caption)
{
    const QRect room = caption.contentsRect();
    return caption.alignment() & Qt::AlignTop ? room.top() + caption.fontMetrics().height() / 2
                                              : room.center().y();
}

/// Without what marks the letter that leads to its field.
QString withoutMark(QString text)
{
    return text.remove(u'&');
}

/// What the style gives a button at least, beside its text and picture.
template <class Button>
bool hasRoom(const Button &button)
{
    return button.width() >= button.sizeHint().width();
}

} // namespace

TEST_F(Rhythm, allControlsOfALineAreEquallyHigh)
{
    resize(usual);
    const int height = spacing::heightOfControl(page().fontMetrics());
    for (const QString &name :
         {u"appleIDField"_s, u"providerNameField"_s, u"chooseProviderButton"_s, u"identitiesPopup"_s,
          u"dropDMGConfigsPopup"_s, u"logFilterPopup"_s, u"clearLogButton"_s, u"fetchHistoryButton"_s,
          u"historyMaxPagesField"_s, u"submitAppButton"_s, u"profileButton"_s, u"setupPractice"_s})
        EXPECT_EQ(part<QWidget>(name).sizeHint().height(), height) << name.toStdString();
    EXPECT_EQ(placeOf(part<QWidget>(u"providerNameField"_s)).top(),
              placeOf(part<QWidget>(u"chooseProviderButton"_s)).top());
}

TEST_F(Rhythm, aCaptionStandsInTheLineOfItsFieldAlsoWhereAHintComesUpBelow)
{
    resize(usual);
    part<QLabel>(u"appPassFieldHint"_s).setText(u"A hint\nof two lines"_s);
    part<QLabel>(u"appPassFieldHint"_s).setVisible(true);
    QCoreApplication::processEvents();
    int count = 0;
    for (const QLabel *const caption : visible<QLabel>()) {
        const QWidget *const field = caption->buddy();
        if (!qobject_cast<const QLineEdit *>(field) && !qobject_cast<const QComboBox *>(field))
            continue;
        ++count;
        EXPECT_NEAR(placeOf(*caption).top() + middleOf(*caption), placeOf(*field).center().y(), 1)
            << caption->text().toStdString();
    }
    EXPECT_GE(count, 5);
}

TEST_F(Rhythm, aTableHasTheEdgesOfWhatStandsRoundIt)
{
    resize(usual);
    auto &pane = part<QTabWidget>(u"sidePane"_s);
    const int right = placeOf(*page().findChild<EntitlementsGroup *>()).right();
    const int bottom = placeOf(part<QWidget>(u"statusTextView"_s)).bottom();
    for (const auto &[page, table, last] : {std::tuple(2, u"issueTable"_s, u"copyIssues"_s),
                                            std::tuple(3, u"historyTable"_s, u"historyStaple"_s)}) {
        pane.setCurrentIndex(page);
        QCoreApplication::processEvents();
        EXPECT_EQ(placeOf(part<QWidget>(table)).right(), right) << table.toStdString();
        EXPECT_EQ(placeOf(part<QWidget>(last)).bottom(), bottom) << last.toStdString();
    }
}

using Language = testing::WithParamInterface<QLocale::Language>;

/// In force before the windows are made.
class Speech {
protected:
    Speech()
    {
        const bool isGerman = Language::GetParam() == QLocale::German;
        EXPECT_EQ(isGerman && m_german.load(u"sealwright_de"_s, QStringLiteral(TRANSLATIONS)), isGerman);
        QCoreApplication::installTranslator(&m_german);
    }
    ~Speech() { QCoreApplication::removeTranslator(&m_german); }

private:
    QTranslator m_german;
};

class RhythmInALanguage : private Speech, public Rhythm, public Language { };

INSTANTIATE_TEST_SUITE_P(Languages, RhythmInALanguage, testing::Values(QLocale::English, QLocale::German));

TEST_P(RhythmInALanguage, noTitleIsCut)
{
    resize(usual);
    for (const auto *const button : visible<QPushButton>())
        EXPECT_TRUE(hasRoom(*button)) << button->text().toStdString();
    for (const auto *const box : visible<QCheckBox>())
        EXPECT_TRUE(hasRoom(*box)) << box->text().toStdString();
    for (const auto *const label : visible<QLabel>()) {
        if (label->wordWrap() || qobject_cast<const ElidedLabel *>(label))
            continue;
        EXPECT_GE(label->contentsRect().width(),
                  label->fontMetrics().horizontalAdvance(withoutMark(label->text())))
            << label->text().toStdString();
    }
}

TEST_P(RhythmInALanguage, aLowWindowShowsAllThatIsSetAtAFirstStart)
{
    page().setupBanner().setVisible(true);
    part<QLabel>(u"identitiesPopupHint"_s).setVisible(true);
    resize(low);
    EXPECT_EQ(widget().height(), low.height());
    EXPECT_EQ(page().findChild<SettingsPane *>()->verticalScrollBar()->maximum(), 0);
}

class SettingsInRhythm : private PlainLook, public testing::Test {
protected:
    MemoryPreferences preferences;
    PreferencesWindow window{preferences};
};

TEST_F(SettingsInRhythm, theNamesOfThePagesAreNotCut)
{
    const auto &list = *window.findChild<QListWidget *>(u"settingsPages"_s);
    QListWidget free; // whose rows are as wide as they want to be
    free.setIconSize(list.iconSize());
    for (int row = 0; row < list.count(); ++row)
        new QListWidgetItem(list.item(row)->icon(), list.item(row)->text(), &free);
    EXPECT_GE(list.sizeHintForColumn(0), free.sizeHintForColumn(0));
    EXPECT_GE(list.width(), list.sizeHintForColumn(0));
}

TEST_F(SettingsInRhythm, whatExplainsASettingStandsNearerToItThanToTheNext)
{
    window.showPage(PreferencesWindow::Page::signing);
    window.show();
    QCoreApplication::processEvents();
    const auto &box = *window.findChild<QCheckBox *>(key::prefCodesignForce);
    const auto &next = *window.findChild<QCheckBox *>(key::prefCodesignDeep);
    const auto labels = window.findChildren<QLabel *>();
    const QLabel *const text = *std::find_if(labels.cbegin(), labels.cend(), [&box](const QLabel *label) {
        return label->text() == box.accessibleDescription();
    });
    const int above = text->geometry().top() - box.geometry().bottom();
    const int below = next.geometry().top() - text->geometry().bottom();
    EXPECT_GT(below, 3 * above);
}

class RowsOfSteps : public testing::Test {
protected:
    RowsOfSteps() { steps.plan({step::checkCredentials, step::upload, step::awaitResult, step::staple}); }

    ManualClock clock;
    StepList steps{clock};
    StepListView view{steps};
};

TEST_F(RowsOfSteps, standApartWhereThereIsRoomForAllOfThem)
{
    view.show();
    view.resize(300, 400);
    const int apart = view.sizeHintForRow(0);
    view.resize(300, 60);
    EXPECT_LT(view.sizeHintForRow(0), apart);
}

TEST_F(RowsOfSteps, haveNoTimeWhereNonePassed)
{
    view.resize(300, 200);
    view.show();
    const auto timeOfFirst = [this] {
        QCoreApplication::processEvents();
        return view.grab(QRect(200, 0, 95, view.sizeHintForRow(0))).toImage();
    };
    const QImage before = timeOfFirst();
    steps.begin(step::checkCredentials);
    steps.begin(step::upload);
    EXPECT_EQ(timeOfFirst(), before);
    clock.time = clock.time.addSecs(5);
    steps.begin(step::awaitResult);
    const int second = view.visualRect(view.model()->index(1, 0)).top();
    EXPECT_NE(view.grab(QRect(200, second, 95, before.height())).toImage(), before) << "five seconds";
}

TEST(AnEmptyLog, hasAPictureWhereThereIsRoomForIt)
{
    const LogText log;
    const auto drawn = [&log](const QIcon &picture, int height) {
        LogView view(log);
        view.resize(500, height);
        view.setHint(u"What to do"_s, picture);
        return view.grab().toImage();
    };
    const QIcon picture = icons::of(icons::Command::drop);
    EXPECT_NE(drawn(picture, 300), drawn({}, 300));
    EXPECT_EQ(drawn(picture, 60), drawn({}, 60)) << "the words alone";
}

TEST(ARowOfTheHistory, hasTheSignOfItsStatus)
{
    HistoryModel history;
    history.take(
        {{u"2026"_s, u"1"_s, u"success"_s, u"0"_s, {}}, {u"2026"_s, u"2"_s, u"invalid"_s, u"2"_s, {}}});
    const auto signOf = [&history](int row) {
        return history.data(history.index(row, HistoryModel::status), Qt::DecorationRole).value<QPixmap>();
    };
    EXPECT_FALSE(signOf(0).isNull());
    EXPECT_NE(signOf(0).toImage(), signOf(1).toImage());
}
