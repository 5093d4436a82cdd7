#include "notarization/stapleonlyworkflow.h"
#include "windowtest.h"

#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/items.h"
#include "ui/itempanel.h"

#include <QApplication>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRubberBand>

using namespace Qt::StringLiterals;

namespace {

/// A window that holds a dropped item and waits for a person.
class DirectSubmit : public WindowTest {
protected:
    DirectSubmit()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        host.application().applicationOpenFiles({host.item(u"Foo.app"_s)});
        host.settle();
        until([this] { return widget().isActiveWindow(); });
    }

    QPushButton &submit() { return part<QPushButton>(u"submitAppButton"_s); }
    QPushButton &cancel() { return part<QPushButton>(u"stapleOnlyButton"_s); }
    QString itemOnShow() { return part<QLineEdit>(u"appletNameField"_s).text(); }
};

} // namespace

TEST_F(DirectSubmit, theItemAndTheTwoButtonsAreOnShow)
{
    EXPECT_EQ(widget().windowTitle(), u"Foo.app"_s);
    EXPECT_EQ(itemOnShow(), itempath::abbreviatedWithTilde(host.item(u"Foo.app"_s)));
    EXPECT_EQ(submit().text(), u"Submit Now"_s);
    EXPECT_EQ(cancel().text(), u"Cancel"_s);
    EXPECT_TRUE(cancel().isVisible());
    EXPECT_EQ(cancel().toolTip(), QString());
}

TEST_F(DirectSubmit, theEmptyLogNamesTheButtonAsItReads)
{
    const auto &log = part<QPlainTextEdit>(u"statusTextView"_s);
    EXPECT_TRUE(log.placeholderText().endsWith(u"press Submit Now"_s)) << log.placeholderText().toStdString();
    QTest::mouseClick(&cancel(), Qt::LeftButton);
    EXPECT_TRUE(log.placeholderText().endsWith(u"press Submit…"_s)) << log.placeholderText().toStdString();
}

TEST_F(DirectSubmit, cancelGoesBackToTheOrdinaryWindow)
{
    QTest::mouseClick(&cancel(), Qt::LeftButton);
    EXPECT_EQ(submit().text(), u"Submit…"_s);
    EXPECT_EQ(cancel().text(), u"Staple Only…"_s);
    EXPECT_EQ(itemOnShow(), QString());
}

TEST_F(DirectSubmit, ctrlAndAFullStopCancel)
{
    QTest::keyClick(&widget(), Qt::Key_Period, Qt::ControlModifier);
    until([this] { return cancel().text() == u"Staple Only…"_s; });
    EXPECT_EQ(submit().text(), u"Submit…"_s);
}

TEST_F(DirectSubmit, submitNowStartsWithTheItemThatWasDropped)
{
    QTest::mouseClick(&submit(), Qt::LeftButton);
    EXPECT_TRUE(document().isBusy());
    EXPECT_EQ(itemOnShow(), u"Foo.app"_s);
    EXPECT_EQ(submit().text(), u"Submit…"_s);
    host.settle();
    EXPECT_TRUE(document().isPolling());
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
    host.firePolls();
    answer(u"OK"_s);
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
}

TEST_F(DirectSubmit, ctrlAndReturnSubmitNow)
{
    QTest::keyClick(&widget(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(document().isBusy());
    host.settle();
    EXPECT_TRUE(document().isPolling());
    EXPECT_FALSE(page().findChild<ItemPanel *>());
    host.firePolls();
    answer(u"OK"_s);
}

TEST_F(DirectSubmit, returnInAFieldSubmitsNow)
{
    QTest::keyClick(&part<QLineEdit>(u"appleIDField"_s), Qt::Key_Return);
    EXPECT_TRUE(document().isBusy());
    host.settle();
    EXPECT_EQ(host.tools.callsOf(u"altool--notarize-app"_s).size(), 1);
    host.firePolls();
    answer(u"OK"_s);
}

TEST_F(DirectSubmit, underASheetNoKeySubmits)
{
    window().beginSheet({u"Question"_s, u"Well?"_s, {}}, [](int) {});
    awaitSheet();
    widget().activateWindow();
    until([this] { return widget().isActiveWindow(); });
    QTest::keyClick(&widget(), Qt::Key_Return, Qt::ControlModifier);
    QTest::keyClick(&part<QLineEdit>(u"appleIDField"_s), Qt::Key_Return);
    EXPECT_FALSE(document().isBusy());
    answer(u"OK"_s);
}

namespace {

class DropOnAWindow : public WindowTest {
protected:
    /// Drags the URLs over the window and drops them if it takes them.
    bool drop(const QList<QUrl> &urls)
    {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(&page(), &enter);
        if (!enter.isAccepted())
            return false;
        EXPECT_TRUE(page().findChild<QRubberBand *>()->isVisible()) << "a person sees where the files go";
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&page(), &drop);
        return drop.isAccepted();
    }
};

} // namespace

TEST_F(DropOnAWindow, theFirstStaysInAWindowWithoutAnItemAndTheOthersBecomeDocuments)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeBundle(host.item(u"Bar.app"_s));
    document().appleIDField.setStringValue(u"typed@example.com"_s);
    EXPECT_TRUE(drop({itempath::toUrl(host.item(u"notes.txt"_s)), itempath::toUrl(host.item(u"Foo.app"_s)),
                      itempath::toUrl(host.item(u"Bar.app"_s))}));
    ASSERT_EQ(host.application().allControllers().size(), 2);
    const DocumentPtr first = host.application().allControllers().first();
    EXPECT_EQ(first->window().title(), u"Foo.app"_s);
    EXPECT_EQ(first->appleIDField.stringValue(), u"typed@example.com"_s);
    EXPECT_EQ(host.application().allControllers().last()->window().title(), u"Bar.app"_s);
}

TEST_F(DropOnAWindow, anItemOnAWindowThatHasOneBecomesADocument)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeBundle(host.item(u"Bar.app"_s));
    EXPECT_TRUE(drop({itempath::toUrl(host.item(u"Foo.app"_s))}));
    EXPECT_TRUE(drop({itempath::toUrl(host.item(u"Bar.app"_s))}));
    ASSERT_EQ(host.application().allControllers().size(), 2);
    EXPECT_EQ(host.application().allControllers().first()->window().title(), u"Foo.app"_s);
}

TEST_F(DropOnAWindow, aBundleWhoseURLEndsInASlashIsABundleAllTheSame)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    EXPECT_TRUE(drop({QUrl::fromLocalFile(host.item(u"Foo.app/"_s))}));
    EXPECT_EQ(window().title(), u"Foo.app"_s);
}

TEST_F(DropOnAWindow, filesAreCopiedEvenIfTheirOwnerWouldHaveThemMoved)
{
    QMimeData data;
    data.setUrls({itempath::toUrl(host.item(u"Foo.pkg"_s))});
    const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(QPoint(5, 5), offered, &data, Qt::LeftButton, Qt::ShiftModifier);
    QDropEvent drop(QPointF(5, 5), offered, &data, Qt::LeftButton, Qt::ShiftModifier);
    for (QDropEvent *const event : {static_cast<QDropEvent *>(&enter), &drop}) {
        ASSERT_EQ(event->proposedAction(), Qt::MoveAction);
        QApplication::sendEvent(&page(), event);
        EXPECT_TRUE(event->isAccepted());
        EXPECT_EQ(event->dropAction(), Qt::CopyAction);
    }
}

TEST_F(DropOnAWindow, whatHoldsNoFileIsNotTaken)
{
    EXPECT_FALSE(drop({QUrl(u"https://example.com/Foo.app"_s)}));
    EXPECT_FALSE(drop({itempath::toUrl(host.item(u"notes.txt"_s))}));
    EXPECT_EQ(host.application().allControllers().size(), 1);
}

TEST_F(DropOnAWindow, aFileWithAnUpperCaseExtensionIsRefusedWithoutAWord)
{
    items::makeFile(host.item(u"Foo.PKG"_s), "xar!");
    EXPECT_FALSE(drop({itempath::toUrl(host.item(u"Foo.PKG"_s))})) << "the window does not light up";
    EXPECT_EQ(host.application().allControllers().size(), 1);
    EXPECT_FALSE(sheet());
}
