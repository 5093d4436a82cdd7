// A whole submission as a person does it who has nothing but the keyboard, or nothing but what a screen
// reader offers; and what happens to the keys that are typed into one window while another has news.

#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/items.h"
#include "ui/framewindow.h"
#include "ui/itempanel.h"
#include "ui/tabbar.h"
#include "windowtest.h"

#include <QAccessible>
#include <QApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextBlock>

using namespace Qt::StringLiterals;

namespace {

class WholeJob : public WindowTest {
protected:
    WholeJob()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        until([this] { return widget().isActiveWindow(); });
    }

    QString log() { return part<QPlainTextEdit>(u"statusTextView"_s).toPlainText(); }

    /// With what has been typed, and to the end.
    void expectTheWholeJob()
    {
        const QList<QStringList> uploads = host.tools.callsOf(u"altool--notarize-app"_s);
        ASSERT_EQ(uploads.size(), 1);
        EXPECT_TRUE(uploads.first().contains(u"release@example.com"_s));
        EXPECT_TRUE(uploads.first().contains(u"@keychain:notary"_s));
        EXPECT_EQ(host.tools.callsOf(u"stapler"_s).size(), 1);
        EXPECT_TRUE(QFileInfo::exists(host.item(u"Foo - Notarized/Foo.app"_s)));
    }
};

class ByKeysAlone : public WholeJob {
protected:
    /// To whatever has the keyboard.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QWidget *const focused = QApplication::focusWidget();
        QTest::keyClick(focused ? focused : QApplication::activeWindow(), key, modifiers);
        QCoreApplication::processEvents();
    }
    static void type(const QString &text)
    {
        for (const QChar letter : text)
            QTest::keyClick(QApplication::focusWidget(), letter.toLatin1());
    }
    static QString focused()
    {
        return QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
    }
    static void tabTo(const QString &name)
    {
        constexpr int more = 100; // than there are controls
        for (int presses = 0; focused() != name && presses < more; ++presses)
            press(Qt::Key_Tab);
        ASSERT_EQ(focused(), name);
    }
    static void replaceText(const QString &text)
    {
        press(Qt::Key_A, Qt::ControlModifier);
        type(text);
    }
};

class ByAccessibilityAlone : public WholeJob {
protected:
    using Interface = QAccessibleInterface;

    static bool isThere(Interface &part, QAccessible::Role role, const QString &name)
    {
        return part.role() == role && part.text(QAccessible::Name) == name && !part.state().invisible;
    }
    static Interface *find(Interface *root, QAccessible::Role role, const QString &name)
    {
        if (!root || isThere(*root, role, name))
            return root;
        for (int index = 0; index < root->childCount(); ++index) {
            Interface *const child = root->child(index);
            if (Interface *const found = child ? find(child, role, name) : nullptr)
                return found;
        }
        return nullptr;
    }
    Interface *find(QAccessible::Role role, const QString &name)
    {
        return find(QAccessible::queryAccessibleInterface(&widget()), role, name);
    }
    /// What a screen reader would find some time later. What is missing ends the test.
    Interface &await(QAccessible::Role role, const QString &name)
    {
        constexpr int milliseconds = 20'000;
        if (!QTest::qWaitFor([&] { return find(role, name) != nullptr; }, milliseconds))
            throw std::runtime_error("nothing that screen readers see is called " + name.toStdString());
        return *find(role, name);
    }
    void press(const QString &name)
    {
        await(QAccessible::Button, name)
            .actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
        QCoreApplication::processEvents();
    }
    void enter(const QString &name, const QString &text)
    {
        await(QAccessible::EditableText, name).setText(QAccessible::Value, text);
    }
};

/// A person types into the second window while the first has news.
class TypingElsewhere : public WholeJob {
protected:
    TypingElsewhere()
    {
        host.application().newDocument(1);
        until([this] { return windowOf(typist()).frameWindow()->isActiveWindow(); });
        field().setFocus();
        field().clear();
    }

    static WidgetWindow &windowOf(MainWinController &document)
    {
        return dynamic_cast<WidgetWindow &>(document.window());
    }
    MainWinController &worker() { return *host.application().allControllers().at(0); }
    MainWinController &typist() { return *host.application().allControllers().at(1); }
    QLineEdit &field() { return *windowOf(typist()).page().findChild<QLineEdit *>(u"appleIDField"_s); }

    static void type(const QString &text)
    {
        for (const QChar letter : text) {
            QTest::keyClick(QApplication::focusWidget(), letter.toLatin1());
            QCoreApplication::processEvents();
        }
    }
    void submitInTheOtherWindow()
    {
        worker().commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
        type(u"while it works "_s);
    }
    /// The news is on show in its own window, and what is typed on has gone where it was meant to go.
    void typeOnUnderTheSheet(const QString &before)
    {
        until([this] { return windowOf(worker()).hasSheet(); });
        type(u"and goes on"_s);
        EXPECT_EQ(field().text(), before + u"and goes on"_s);
        EXPECT_TRUE(field().hasFocus());
        EXPECT_TRUE(windowOf(typist()).frameWindow()->isActiveWindow());
        EXPECT_FALSE(windowOf(typist()).hasSheet());
    }
};

} // namespace

TEST_F(ByKeysAlone, anItemIsSubmittedNotarizedAndStapledAndItsWindowClosed)
{
    tabTo(u"appleIDField"_s);
    replaceText(u"release@example.com"_s);
    tabTo(u"appPassField"_s);
    replaceText(u"notary"_s);
    press(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return widget().findChild<ItemPanel *>() != nullptr; }))
        << "the key asks for the item";
    until([this] { return widget().findChild<ItemPanel *>() && focused() == "fileNameEdit"_L1; });
    type(host.item(u"Foo.app"_s));
    press(Qt::Key_Return);
    until([this] { return document().isBusy(); });
    host.settle();
    EXPECT_EQ(document().statusString(), u"waiting"_s);
    host.firePolls();
    EXPECT_EQ(awaitSheet().text(), u"Stapling Successful"_s);
    press(Qt::Key_Return);
    until([this] { return sheet() == nullptr; });
    EXPECT_TRUE(log().contains(u"Stapling succeeded."_s));
    EXPECT_EQ(document().appleIDField.stringValue(), u"release@example.com"_s);
    expectTheWholeJob();
    press(Qt::Key_W, Qt::ControlModifier);
    until([this] { return host.application().allControllers().isEmpty(); });
}

TEST_F(ByKeysAlone, theTabKeyGoesDownThePage)
{
    tabTo(u"appleIDField"_s);
    QStringList reached;
    constexpr int more = 100; // than there are controls
    for (int presses = 0; presses < more && !reached.contains(focused()); ++presses) {
        reached.append(focused());
        press(Qt::Key_Tab);
    }
    const QStringList downThePage{u"appleIDField"_s,   u"appPassField"_s,       u"identitiesPopup"_s,
                                  u"eventsCheckbox"_s, u"logFilterPopup"_s,     u"clearLogButton"_s,
                                  u"statusTextView"_s, u"fetchHistoryButton"_s, u"historyMaxPagesField"_s,
                                  u"submitAppButton"_s};
    qsizetype before = -1;
    for (const QString &name : downThePage) {
        EXPECT_GT(reached.indexOf(name), before) << name.toStdString();
        before = reached.indexOf(name);
    }
}

TEST_F(ByKeysAlone, thereAreEightLinesOfTheLogAlsoWithAFontTwiceTheSize)
{
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(2 * usual.pointSizeF());
    QApplication::setFont(large);
    host.application().addedDocument();
    widget().resize(1024, 768);
    QCoreApplication::processEvents();
    EXPECT_LE(widget().height(), 768);
    auto &view = part<QPlainTextEdit>(u"statusTextView"_s);
    document().statusTextView.append({u"line\n"_s, LogStyle::plain, {u"Menlo"_s, 12}});
    QCoreApplication::processEvents();
    const QRect first = view.cursorRect(QTextCursor(view.document()->begin()));
    EXPECT_GE(view.viewport()->height(), 8 * first.height());
    QApplication::setFont(usual);
}

TEST_F(ByAccessibilityAlone, anItemIsSubmittedNotarizedAndStapled)
{
    enter(u"Apple ID"_s, u"release@example.com"_s);
    enter(u"App-specific password"_s, u"notary"_s);
    press(u"Submit…"_s);
    enter(u"File name:"_s, host.item(u"Foo.app"_s));
    press(u"Open"_s);
    until([this] { return document().isBusy(); });
    host.settle();
    await(QAccessible::StaticText, u"waiting"_s);
    EXPECT_TRUE(find(QAccessible::ListItem, u"Sign main file: done, 0:00"_s));
    host.firePolls();
    await(QAccessible::StaticText, u"Stapling Successful"_s);
    press(u"OK"_s);
    await(QAccessible::StaticText, u"ready"_s);
    await(QAccessible::StaticText, u"Notarized"_s);
    EXPECT_EQ(document().appleIDField.stringValue(), u"release@example.com"_s);
    expectTheWholeJob();
}

TEST_F(TypingElsewhere, noKeyIsLostWhenTheOtherDocumentFinishes)
{
    submitInTheOtherWindow();
    host.settle();
    host.firePolls();
    typeOnUnderTheSheet(u"while it works "_s);
}

TEST_F(TypingElsewhere, noKeyIsLostWhenTheOtherDocumentFails)
{
    host.tools.answer(u"codesign"_s, {.status = 1, .error = "no identity\n"});
    submitInTheOtherWindow();
    host.settle();
    typeOnUnderTheSheet(u"while it works "_s);
}

TEST_F(TypingElsewhere, noKeyIsLostWhenTheOtherDocumentAsks)
{
    submitInTheOtherWindow();
    host.settle();
    worker().window().performClose();
    typeOnUnderTheSheet(u"while it works "_s);
}

TEST_F(WholeJob, twoHundredDocumentsHaveTheirTabs)
{
    constexpr qsizetype many = 200;
    while (host.application().allControllers().size() < many)
        host.application().newDocument(2);
    FrameWindow &frame = *window().frameWindow();
    EXPECT_EQ(frame.count(), many);
    EXPECT_EQ(frame.findChild<TabBar *>()->count(), many);
    EXPECT_EQ(frame.selectedWindow(), &window());
    QTest::keyClick(&frame, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(frame.selectedWindow()->title(), u"Untitled"_s) << "round to the first";
}
