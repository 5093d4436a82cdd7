#include "windowtest.h"

#include "about/aboutcontroller.h"
#include "app/preferencekeys.h"
#include "support/items.h"

#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QTextBlock>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace {

class AboutWindowTest : public WindowTest {
protected:
    AboutWindow &show()
    {
        host.application().doShowAboutPanel();
        for (QWidget *const top : QApplication::topLevelWidgets()) {
            if (auto *const about = qobject_cast<AboutWindow *>(top))
                return *about;
        }
        throw std::runtime_error("no about panel");
    }
    static QString text(const AboutWindow &about, const QString &name)
    {
        return about.findChild<QLabel *>(name)->text();
    }
    static int level(const AboutWindow &about, const QString &name)
    {
        return about.findChild<QLabel *>(name)->palette().color(QPalette::WindowText).red();
    }
};

} // namespace

TEST_F(AboutWindowTest, showsTheFieldsOfItsController)
{
    items::makeFile(host.creditsFile(), "{\\rtf1{\\b Made by}\\par somebody}");
    AboutWindow &about = show();
    const AboutController &controller = AboutController::instance(host.application());
    EXPECT_TRUE(about.isVisible());
    EXPECT_EQ(text(about, u"mTitleView"_s), u"Sealwright"_s);
    EXPECT_EQ(text(about, u"mVersionView"_s), controller.mVersionView.stringValue());
    EXPECT_EQ(text(about, u"mCopyrightView"_s), u"Copyright © 2026 Example"_s);
    auto &credits = *about.findChild<QTextEdit *>(u"mCreditsView"_s);
    EXPECT_EQ(credits.toPlainText(), u"Made by\nsomebody"_s);
    EXPECT_EQ(credits.document()->firstBlock().begin().fragment().charFormat().fontWeight(), QFont::Bold);
    EXPECT_TRUE(credits.isReadOnly());
    EXPECT_EQ(credits.textCursor().position(), 0) << "reading begins at the beginning";
}

TEST_F(AboutWindowTest, opensInTheMiddleOfTheScreen)
{
    const AboutWindow &about = show();
    const QPoint off = about.geometry().center() - about.screen()->availableGeometry().center();
    EXPECT_LE(off.manhattanLength(), 4);
}

TEST_F(AboutWindowTest, recoloursWhenTheAppearanceChangesWhileItIsOpen)
{
    const AboutWindow &about = show();
    EXPECT_EQ(level(about, u"mTitleView"_s), 76);
    EXPECT_EQ(level(about, u"mVersionView"_s), 102);
    host.preferences.setValue(key::AppleInterfaceStyle, u"Dark"_s);
    host.distributedNotifications.post(u"AppleInterfaceThemeChangedNotification"_s);
    EXPECT_EQ(level(about, u"mTitleView"_s), 204);
    EXPECT_EQ(level(about, u"mCopyrightView"_s), 204);
    EXPECT_EQ(level(about, u"mVersionView"_s), 166);
}

TEST_F(AboutWindowTest, withMissingCreditsHasAnEmptyView)
{
    const AboutWindow &about = show();
    EXPECT_EQ(about.findChild<QTextEdit *>(u"mCreditsView"_s)->toPlainText(), QString());
}

TEST_F(AboutWindowTest, escapePutsItAwayAndTheNextRequestBringsTheSameBack)
{
    AboutWindow &about = show();
    until([&] { return about.isActiveWindow(); });
    QTest::keyClick(&about, Qt::Key_Escape);
    until([&] { return !about.isVisible(); });
    EXPECT_EQ(&show(), &about);
    EXPECT_TRUE(about.isVisible());
}
