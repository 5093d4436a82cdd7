#include "ui/widgetapplication.h"
#include "app/preferencekeys.h"
#include "notarization/stapleonlyworkflow.h"
#include "ui/preferenceswindow.h"

#include "windowtest.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

/// How often a widget has painted itself.
class Paints : public QObject {
public:
    explicit Paints(QWidget &widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int count = 0;
};

class WidgetApplicationTest : public WindowTest {
protected:
    WidgetApplication application{order, printer};
};

} // namespace

TEST_F(WidgetApplicationTest, anItemThatTheDesktopCannotShowIsToldWithItsPlace)
{
    const QString path = u"/items/Foo - Notarized/Foo.app"_s;
    application.sayWhereItLies(path);
    EXPECT_EQ(awaitSheet().informativeText(), u"Nothing here shows folders. It lies at:\n"_s + path);
    answer(u"Copy Path"_s);
    EXPECT_EQ(QApplication::clipboard()->text(), path);
    application.sayWhereItLies(u"/items/Bar.app"_s);
    answer(u"OK"_s);
    EXPECT_EQ(QApplication::clipboard()->text(), path);
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(WidgetApplicationTest, theWindowThatWasShownLastIsInFront)
{
    auto &first = document().window();
    auto &second = host.application().addedDocument()->window();
    auto &third = host.application().addedDocument()->window();
    EXPECT_EQ(application.windowsFrontToBack(), (QList{&third, &second, &first}));
    first.show();
    EXPECT_EQ(application.windowsFrontToBack(), (QList{&first, &third, &second}));
}

TEST_F(WidgetApplicationTest, aWindowThatNobodyCanSeePaintsNothing)
{
    QWidget seen;
    const Paints ofSeen(seen);
    seen.show();
    until([&] { return ofSeen.count > 0; });
    application.paintNothing();
    QWidget unseen;
    QWidget inside(&unseen);
    const Paints ofUnseen(unseen);
    const Paints ofInside(inside);
    unseen.show();
    until([&] { return unseen.windowHandle()->isExposed(); });
    inside.update();
    unseen.update();
    const int before = ofSeen.count;
    seen.update(); // which comes behind them
    until([&] { return ofSeen.count > before; });
    EXPECT_EQ(ofUnseen.count, 0);
    EXPECT_EQ(ofInside.count, 0);
    EXPECT_TRUE(unseen.isVisible());
}

TEST_F(WidgetApplicationTest, aWindowThatAPersonActivatesComesToTheFront)
{
    auto &first = document().window();
    QWidget &firstWidget = widget();
    auto &second = host.application().addedDocument()->window();
    until([&] { return widget().isActiveWindow(); });
    firstWidget.activateWindow();
    until([&] { return firstWidget.isActiveWindow(); });
    EXPECT_EQ(application.windowsFrontToBack(), (QList{&first, &second}));
}

TEST_F(WidgetApplicationTest, aClosedWindowIsNotInTheList)
{
    auto &first = document().window();
    auto &second = host.application().addedDocument()->window();
    second.close();
    EXPECT_EQ(application.windowsFrontToBack(), QList{&first});
}

TEST_F(WidgetApplicationTest, aMinimisedWindowIsNotInTheListUntilItIsBack)
{
    auto &first = document().window();
    QWidget &firstWidget = widget();
    auto &second = host.application().addedDocument()->window();
    widget().showMinimized();
    EXPECT_EQ(application.windowsFrontToBack(), QList{&first});
    firstWidget.showMinimized();
    EXPECT_TRUE(application.windowsFrontToBack().isEmpty());
    second.show();
    EXPECT_EQ(application.windowsFrontToBack(), QList{&second});
    firstWidget.showNormal();
    EXPECT_EQ(application.windowsFrontToBack().size(), 2);
}

TEST_F(WidgetApplicationTest, activatingBringsUpTheFrontWindow)
{
    QWidget inFront;
    inFront.show();
    inFront.activateWindow();
    until([&] { return inFront.isActiveWindow(); });
    application.activate();
    until([&] { return widget().isActiveWindow(); });
}

TEST_F(WidgetApplicationTest, activatingLeavesMinimisedWindowsWhereTheyAre)
{
    widget().showMinimized();
    application.activate();
    EXPECT_TRUE(widget().isMinimized());
}

TEST_F(WidgetApplicationTest, activatingWithoutAWindowDoesNothing)
{
    document().window().close();
    application.activate();
    EXPECT_TRUE(application.windowsFrontToBack().isEmpty());
}

TEST_F(WidgetApplicationTest, theOptionKeyIsDownWhileAPersonHoldsAlt)
{
    QWindow *const front = widget().windowHandle();
    EXPECT_FALSE(application.isOptionKeyDown());
    QTest::keyPress(front, Qt::Key_Shift, Qt::ShiftModifier);
    EXPECT_FALSE(application.isOptionKeyDown());
    QTest::keyPress(front, Qt::Key_Alt, Qt::ShiftModifier | Qt::AltModifier);
    EXPECT_TRUE(application.isOptionKeyDown());
    QTest::keyRelease(front, Qt::Key_Shift, Qt::AltModifier);
    EXPECT_TRUE(application.isOptionKeyDown());
    QTest::keyRelease(front, Qt::Key_Alt);
    EXPECT_FALSE(application.isOptionKeyDown());
}

TEST_F(WidgetApplicationTest, theTokenOfADesktopIsWhereThePlatformLooksForIt)
{
    application.setActivationToken(u"first"_s);
    application.setActivationToken(u"second"_s);
    EXPECT_EQ(qEnvironmentVariable("XDG_ACTIVATION_TOKEN"), u"second"_s);
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

TEST_F(WidgetApplicationTest, pendingOpensAreDeliveredByWhoeverHasThem)
{
    application.deliverPendingOpens();
    int deliveries = 0;
    application.setPendingOpens([&] { ++deliveries; });
    application.deliverPendingOpens();
    EXPECT_EQ(deliveries, 1);
}

TEST_F(WidgetApplicationTest, aQuestionHoldsUpTheApplicationUntilItIsAnswered)
{
    for (const int answer : {0, 1}) {
        const auto press = [answer] {
            auto *const box = qobject_cast<AlertBox *>(QApplication::activeModalWidget());
            ASSERT_TRUE(box);
            EXPECT_EQ(box->windowModality(), Qt::ApplicationModal);
            QTest::mouseClick(box->buttons().at(answer), Qt::LeftButton);
        };
        QMetaObject::invokeMethod(qApp, press, Qt::QueuedConnection);
        EXPECT_EQ(application.runModal({u"Really?"_s, u"For good."_s, {u"Do It"_s, u"Cancel"_s}}),
                  platform::alertFirstButton + answer);
    }
    application.terminate();
    EXPECT_EQ(QApplication::exec(), 0) << "a question is no failure";
}

TEST_F(WidgetApplicationTest, terminatingEndsTheEventLoopWithStatusZero)
{
    application.terminate();
    EXPECT_EQ(QApplication::exec(), 0);
}

TEST_F(WidgetApplicationTest, theEndOfTheSessionEndsItWithoutAskingItsWindows)
{
    document().changeStatus(status::submitting);
    host.application().addedDocument();
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    EXPECT_EQ(order.frontToBack().size(), 2) << "none is closed";
    EXPECT_EQ(host.applicationHost.beeps, 0) << "none asks back";
    ASSERT_TRUE(quit.isAccepted());
    EXPECT_EQ(QApplication::exec(), 0);
}

TEST_F(WidgetApplicationTest, whereNobodyCanDismissAnAlertItGoesToStandardErrorAndTheStatusIsOne)
{
    testing::internal::CaptureStderr();
    application.runModal({u"Nothing Found"_s, u"The application will now quit."_s, {}});
    const std::string written = testing::internal::GetCapturedStderr();
    EXPECT_EQ(written, "Nothing Found\nThe application will now quit.\n");
    application.terminate();
    EXPECT_EQ(QApplication::exec(), 1);
}

TEST_F(WidgetApplicationTest, theSettingsOfToolsHoldUpTheApplicationUntilTheyAreClosed)
{
    const auto mend = [] {
        auto *const settings = qobject_cast<PreferencesWindow *>(QApplication::activeModalWidget());
        ASSERT_TRUE(settings);
        auto *const folder = settings->findChild<QLineEdit *>(key::toolRoot);
        EXPECT_TRUE(folder->isVisible()) << "it opens where the tools are set";
        EXPECT_TRUE(QTest::qWaitForWindowActive(settings));
        folder->setFocus();
        QTest::keyClicks(folder, u"/opt/tools"_s);
        settings->close();
    };
    QMetaObject::invokeMethod(qApp, mend, Qt::QueuedConnection);
    application.runToolSettings(host.preferences);
    EXPECT_EQ(host.preferences.string(key::toolRoot), u"/opt/tools"_s) << "also what is typed without Return";
}

TEST_F(WidgetApplicationTest, aNewStartEndsTheApplicationFirst)
{
    EXPECT_FALSE(application.isRelaunching());
    application.relaunch();
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_TRUE(application.isRelaunching());
}
