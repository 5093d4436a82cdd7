#include "ui/preferenceswindow.h"

#include "app/appdelegate.h"
#include "app/preferencekeys.h"
#include "support/fakehost.h"
#include "support/testhost.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QStringList checkboxKeys{key::prefCodesignForce,       key::prefCodesignDeep,
                               key::prefDoPostCodesignCheck, key::preferXcodeAltool,
                               key::userInfoShowWhenActive,  key::detailedLogToFile};
const QStringList fieldKeys{key::pollingDelay, key::prefRetryLimitFor239Failure, key::logFontSize,
                            key::toolRoot, key::toolPause};

class PreferencesWindowTest : public testing::Test {
protected:
    PreferencesWindowTest() { AppDelegate::initialize(preferences); }

    PreferencesWindow &window()
    {
        if (!m_window) {
            m_window = std::make_unique<PreferencesWindow>(preferences);
            m_window->show();
            EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
        }
        return *m_window;
    }
    template <class Widget>
    Widget &part(const QString &name)
    {
        auto *const found = window().findChild<Widget *>(name);
        if (!found)
            throw std::runtime_error("no such part: " + name.toStdString());
        turnTo(*found);
        return *found;
    }
    /// Turns to the page that the part is on.
    void turnTo(const QWidget &part)
    {
        auto &pages = *window().findChild<QStackedWidget *>();
        for (int index = 0; index < pages.count(); ++index) {
            if (pages.widget(index)->isAncestorOf(&part))
                window().findChild<QListWidget *>(u"settingsPages"_s)->setCurrentRow(index);
        }
    }
    /// Types a text in place of the one that a field has, and ends the edit.
    template <class Field>
    static void type(Field &field, const QString &text)
    {
        field.setFocus();
        QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&field, text);
        QTest::keyClick(&field, Qt::Key_Return);
    }

    MemoryPreferences preferences;

private:
    std::unique_ptr<PreferencesWindow> m_window;
};

} // namespace

TEST_F(PreferencesWindowTest, eachCheckboxAgreesWithItsPreferenceBothWays)
{
    for (const QString &key : checkboxKeys) {
        auto &box = part<QCheckBox>(key);
        const bool usual = preferences.boolean(key);
        EXPECT_EQ(box.isChecked(), usual) << key.toStdString();
        QTest::keyClick(&box, Qt::Key_Space);
        EXPECT_EQ(preferences.boolean(key), !usual) << key.toStdString();
        preferences.setValue(key, usual);
        EXPECT_EQ(box.isChecked(), usual) << key.toStdString();
        preferences.setValue(key, !usual);
        preferences.remove(key);
        EXPECT_EQ(box.isChecked(), usual) << "the registered value counts again: " << key.toStdString();
    }
}

TEST_F(PreferencesWindowTest, eachNumberAgreesWithItsPreferenceBothWays)
{
    auto &delay = part<QDoubleSpinBox>(key::pollingDelay);
    EXPECT_EQ(delay.value(), 30.0);
    type(delay, u"45"_s);
    EXPECT_EQ(preferences.number(key::pollingDelay), 45.0);
    preferences.setValue(key::pollingDelay, 22.5);
    EXPECT_EQ(delay.value(), 22.5);

    auto &limit = part<QSpinBox>(key::prefRetryLimitFor239Failure);
    EXPECT_EQ(limit.value(), 1000);
    type(limit, u"7"_s);
    EXPECT_EQ(preferences.integer(key::prefRetryLimitFor239Failure), 7);
    preferences.setValue(key::prefRetryLimitFor239Failure, 9);
    EXPECT_EQ(limit.value(), 9);

    auto &size = part<QSpinBox>(key::logFontSize);
    EXPECT_EQ(size.value(), 12);
    QTest::keyClick(&size, Qt::Key_Up);
    EXPECT_EQ(preferences.integer(key::logFontSize), 13);
    preferences.setValue(key::logFontSize, 18);
    EXPECT_EQ(size.value(), 18);

    auto &pause = part<QDoubleSpinBox>(key::toolPause);
    EXPECT_EQ(pause.value(), 0.15);
    type(pause, u"0"_s);
    EXPECT_EQ(preferences.number(key::toolPause), 0.0);
    preferences.setValue(key::toolPause, 0.5);
    EXPECT_EQ(pause.value(), 0.5);
}

TEST_F(PreferencesWindowTest, aNumberIsWrittenWhenItHasBeenTypedAndNotDigitByDigit)
{
    auto &limit = part<QSpinBox>(key::prefRetryLimitFor239Failure);
    preferences.takeChanges();
    limit.setFocus();
    limit.selectAll();
    QTest::keyClicks(&limit, u"250"_s);
    EXPECT_TRUE(preferences.takeChanges().isEmpty());
    QTest::keyClick(&limit, Qt::Key_Tab);
    EXPECT_EQ(preferences.takeChanges(), QStringList{key::prefRetryLimitFor239Failure});
    EXPECT_EQ(preferences.integer(key::prefRetryLimitFor239Failure), 250);
}

TEST_F(PreferencesWindowTest, aValueThatCannotBeShownStaysUntilAPersonSetsAnother)
{
    preferences.setValue(key::pollingDelay, 5);
    EXPECT_EQ(part<QDoubleSpinBox>(key::pollingDelay).value(), 20.0);
    EXPECT_EQ(preferences.number(key::pollingDelay), 5.0);
}

TEST_F(PreferencesWindowTest, theCheckAfterSigningIsNotMadeMoreOfThanItIs)
{
    const QString said = part<QCheckBox>(key::prefDoPostCodesignCheck).accessibleDescription();
    EXPECT_FALSE(said.contains(u"codesign"_s)) << "another tool has the say";
    for (const QString &fact : {u"spctl"_s, u"log file"_s, u"upload goes on"_s, u"disk image"_s})
        EXPECT_TRUE(said.contains(fact)) << fact.toStdString();
}

TEST_F(PreferencesWindowTest, theFolderOfToolsAgreesWithItsPreferenceBothWays)
{
    auto &path = part<QLineEdit>(key::toolRoot);
    EXPECT_EQ(path.text(), QString());
    type(path, u"/opt/tools"_s);
    EXPECT_EQ(preferences.string(key::toolRoot), u"/opt/tools"_s);
    preferences.setValue(key::toolRoot, u"/srv/tools"_s);
    EXPECT_EQ(path.text(), u"/srv/tools"_s);
    path.selectAll();
    QTest::keyClick(&path, Qt::Key_Delete);
    QTest::keyClick(&path, Qt::Key_Return);
    EXPECT_FALSE(preferences.stored().contains(key::toolRoot)) << "without a folder it is the bundled one";
}

TEST_F(PreferencesWindowTest, aFolderWithoutToolsIsToldBeforeTheNextLaunch)
{
    const QTemporaryDir folder;
    auto &problem = part<QLabel>(u"toolRootProblem"_s);
    EXPECT_FALSE(problem.isVisible());
    preferences.setValue(key::toolRoot, u"/no/such/folder"_s);
    EXPECT_TRUE(problem.isVisible());
    preferences.setValue(key::toolRoot, folder.path());
    EXPECT_TRUE(problem.text().contains(u"usr/bin/xcrun"_s)) << problem.text().toStdString();
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"usr/bin"_s));
    for (const QString &tool : {u"/usr/bin/xcrun"_s, u"/usr/bin/codesign"_s})
        ASSERT_TRUE(QFile::copy(u"/bin/true"_s, folder.path() + tool));
    preferences.remove(key::toolRoot);
    EXPECT_FALSE(problem.isVisible());
    preferences.setValue(key::toolRoot, folder.path());
    EXPECT_FALSE(problem.isVisible()) << problem.text().toStdString();
}

TEST_F(PreferencesWindowTest, whatIsBeingTypedIsNotTakenAwayByAnotherChange)
{
    auto &path = part<QLineEdit>(key::toolRoot);
    path.setFocus();
    QTest::keyClicks(&path, u"/opt"_s);
    preferences.setValue(key::logFontSize, 14);
    EXPECT_EQ(path.text(), u"/opt"_s);
    EXPECT_FALSE(preferences.stored().contains(key::toolRoot));
}

TEST_F(PreferencesWindowTest, theFolderOfToolsCanBeChosenInAPanel)
{
    const QTemporaryDir folder;
    QTest::mouseClick(&part<QPushButton>(u"chooseToolRootButton"_s), Qt::LeftButton);
    auto &panel = part<QFileDialog>({});
    EXPECT_EQ(panel.windowModality(), Qt::WindowModal);
    EXPECT_EQ(panel.directory(), QDir::home()) << "not wherever the program was started";
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    auto &name = *panel.findChild<QLineEdit *>(u"fileNameEdit"_s);
    name.setText(folder.path()); // typed, the panel would complete it with what it finds on the way
    QTest::mouseClick(panel.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open), Qt::LeftButton);
    EXPECT_EQ(preferences.string(key::toolRoot), folder.path());
    EXPECT_EQ(part<QLineEdit>(key::toolRoot).text(), folder.path());
}

TEST_F(PreferencesWindowTest, theSettingsAreActiveAgainWhenThePanelHasEndedWithCompletionsOpen)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"tools"_s));
    preferences.setValue(key::toolRoot, folder.path());
    QTest::mouseClick(&part<QPushButton>(u"chooseToolRootButton"_s), Qt::LeftButton);
    auto &panel = part<QFileDialog>({});
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    const auto &list = *panel.findChild<QListView *>(u"listView"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list.model()->rowCount(list.rootIndex()) > 0; }));
    auto &name = *panel.findChild<QLineEdit *>(u"fileNameEdit"_s);
    QTest::keyClicks(&name, u"tools"_s);
    QWidget *const completions = name.completer()->popup();
    ASSERT_TRUE(completions->isVisible());
    QTest::keyClick(completions, Qt::Key_Return);
    EXPECT_EQ(preferences.string(key::toolRoot), folder.filePath(u"tools"_s));
    EXPECT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &window(); }));
}

TEST_F(PreferencesWindowTest, eachSettingHasALabelAndALineThatExplainsIt)
{
    for (const QString &key : checkboxKeys + fieldKeys) {
        const auto &setting = part<QWidget>(key);
        EXPECT_FALSE(setting.accessibleName().isEmpty()) << key.toStdString();
        EXPECT_FALSE(setting.accessibleDescription().isEmpty()) << key.toStdString();
    }
    EXPECT_TRUE(part<QLineEdit>(key::toolRoot).accessibleDescription().contains(u"at the next launch"_s));
}

TEST_F(PreferencesWindowTest, theTabKeyReachesEverySetting)
{
    QSet<QString> reached;
    auto &list = part<QListWidget>(u"settingsPages"_s);
    list.setFocus();
    for (int page = 0; page < list.count(); ++page) {
        for (int presses = 0; presses < 12 || !list.hasFocus(); ++presses) {
            ASSERT_LT(presses, 30) << "the keyboard does not come back to the list";
            reached.insert(QApplication::focusWidget()->objectName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QTest::keyClick(&list, Qt::Key_Down);
    }
    for (const QString &key : checkboxKeys + fieldKeys)
        EXPECT_TRUE(reached.contains(key)) << key.toStdString();
}

TEST_F(PreferencesWindowTest, aLabelsLetterWithAltLeadsToItsSetting)
{
    turnTo(part<QSpinBox>(key::prefRetryLimitFor239Failure));
    QTest::keyClick(&window(), Qt::Key_G, Qt::AltModifier);
    EXPECT_TRUE(part<QSpinBox>(key::prefRetryLimitFor239Failure).hasFocus());
}

TEST_F(PreferencesWindowTest, withAFontTwiceTheSizeNothingIsCutOffSideways)
{
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(2 * usual.pointSizeF());
    QApplication::setFont(large);
    window().resize(1024, 700);
    QCoreApplication::processEvents();
    auto &scroll = part<QScrollArea>({});
    EXPECT_LE(scroll.widget()->minimumSizeHint().width(), 1024);
    for (const QString &key : checkboxKeys + fieldKeys) {
        auto &setting = part<QWidget>(key);
        setting.setFocus();
        QCoreApplication::processEvents();
        EXPECT_FALSE(setting.visibleRegion().isEmpty()) << key.toStdString();
    }
    QApplication::setFont(usual);
}

TEST_F(PreferencesWindowTest, withAVeryLargeFontItStillFitsTheScreen)
{
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(3 * usual.pointSizeF());
    QApplication::setFont(large);
    const QSize room = window().screen()->availableSize();
    EXPECT_LE(window().width(), room.width());
    EXPECT_LE(window().height(), room.height());
    QApplication::setFont(usual);
}

TEST_F(PreferencesWindowTest, fitsASmallScreenWithEverySettingInSight)
{
    window().resize(1024, 560); // 600 lines less a title bar
    for (const QString &key : checkboxKeys + fieldKeys) {
        const auto &setting = part<QWidget>(key);
        QCoreApplication::processEvents();
        EXPECT_EQ(setting.visibleRegion().boundingRect().size(), setting.size()) << key.toStdString();
    }
    EXPECT_LE(window().minimumSizeHint().width(), 1024);
    EXPECT_LE(window().minimumSizeHint().height(), 560);
}

TEST_F(PreferencesWindowTest, withoutAKeychainThereIsNoChoiceOfTheService)
{
    EXPECT_EQ(window().findChild<QComboBox *>(u"notaryService"_s), nullptr);
}

TEST_F(PreferencesWindowTest, thereIsOneAndEscapeClosesIt)
{
    TestHost host;
    const auto open = [] {
        QList<QWidget *> windows;
        for (QWidget *const top : QApplication::topLevelWidgets()) {
            if (qobject_cast<PreferencesWindow *>(top))
                windows.append(top);
        }
        return windows;
    };
    PreferencesWindow::present(preferences, KeychainTools(host.host(), {}));
    PreferencesWindow::present(preferences, KeychainTools(host.host(), {}));
    ASSERT_EQ(open().size(), 1);
    ASSERT_TRUE(QTest::qWaitForWindowActive(open().first()));
    QTest::keyClick(open().first(), Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return open().isEmpty(); }));
}
