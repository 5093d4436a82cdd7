#include "ui/bindings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Widgets on screen, bound to controls of their own.
class Bindings : public testing::Test {
protected:
    Bindings()
    {
        bindings::bind(edit, field);
        bindings::bind(box, checkbox);
        bindings::bind(combo, popup);
        bindings::bind(bar, indicator);
        bindings::bind(push, button, [this](Action action) { performed.append(action); });
        window.resize(400, 300);
        combo.move(0, 40);
        box.move(0, 80);
        push.move(0, 120);
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            ADD_FAILURE() << "the window does not become active";
    }

    TextField field;
    Checkbox checkbox;
    Popup popup;
    ProgressIndicator indicator;
    Button button;
    QList<Action> performed;
    QWidget window;
    QLineEdit edit{&window};
    QCheckBox box{&window};
    QComboBox combo{&window};
    QProgressBar bar{&window};
    QPushButton push{&window};
};

/// Counts how often a control says that it has changed.
class Changes {
public:
    explicit Changes(Control &control)
    {
        QObject::connect(&control, &Control::changed, &m_context, [this] { ++m_count; });
    }
    int count() const { return m_count; }

private:
    QObject m_context;
    int m_count = 0;
};

} // namespace

TEST_F(Bindings, eachKeyThatIsTypedIsInTheFieldAtOnce)
{
    const Changes changes(field);
    QTest::keyClicks(&edit, u"a@b"_s);
    EXPECT_EQ(field.stringValue(), u"a@b"_s);
    EXPECT_EQ(changes.count(), 3);
}

TEST_F(Bindings, aFieldThatIsWrittenShowsItOnce)
{
    const Changes changes(field);
    field.setStringValue(u"dev@example.com"_s);
    EXPECT_EQ(edit.text(), u"dev@example.com"_s);
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(Bindings, typingInTheMiddleOfATextKeepsTheInsertionPoint)
{
    field.setStringValue(u"ac"_s);
    edit.setCursorPosition(1);
    QTest::keyClicks(&edit, u"bb"_s);
    EXPECT_EQ(field.stringValue(), u"abbc"_s);
    EXPECT_EQ(edit.cursorPosition(), 3);
}

TEST_F(Bindings, aTextOfAnyLengthIsKeptWhole)
{
    const QString text(100'000, u'x');
    field.setStringValue(text);
    EXPECT_EQ(edit.text(), text);
    EXPECT_EQ(field.stringValue(), text);
}

TEST_F(Bindings, aFieldThatAsksForTheFocusGetsIt)
{
    box.setFocus();
    field.makeFirstResponder();
    EXPECT_TRUE(edit.hasFocus());
}

TEST_F(Bindings, theSpaceKeySwitchesACheckboxBothWays)
{
    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_EQ(checkbox.state(), 1);
    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_EQ(checkbox.state(), 0);
}

TEST_F(Bindings, aCheckboxThatIsWrittenShowsIt)
{
    checkbox.setState(1);
    EXPECT_TRUE(box.isChecked());
    checkbox.setState(0);
    EXPECT_FALSE(box.isChecked());
}

TEST_F(Bindings, aPopupShowsItsItemsAndItsSelection)
{
    popup.setItemTitles({u"One"_s, u"Two"_s, u"Three"_s});
    popup.selectItemWithTitle(u"Two"_s);
    EXPECT_EQ(combo.count(), 3);
    EXPECT_EQ(combo.currentText(), u"Two"_s);
    popup.setItemTitles({u"Three"_s, u"Two"_s});
    EXPECT_EQ(combo.count(), 2);
    EXPECT_EQ(combo.itemText(0), u"Three"_s);
    EXPECT_EQ(combo.currentText(), u"Two"_s);
    EXPECT_EQ(popup.titleOfSelectedItem(), u"Two"_s);
}

TEST_F(Bindings, fillingAPopupAgainDoesNotChangeItsSelection)
{
    popup.setItemTitles({u"One"_s, u"Two"_s});
    popup.selectItemWithTitle(u"Two"_s);
    const Changes changes(popup);
    popup.setItemTitles({u"Zero"_s, u"One"_s, u"Two"_s});
    EXPECT_EQ(popup.titleOfSelectedItem(), u"Two"_s);
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(Bindings, anItemChosenByKeyIsThePopupsSelection)
{
    popup.setItemTitles({u"One"_s, u"Two"_s});
    QTest::keyClick(&combo, Qt::Key_Down);
    EXPECT_EQ(popup.titleOfSelectedItem(), u"Two"_s);
}

TEST_F(Bindings, anEmptyPopupShowsNothing)
{
    popup.setItemTitles({u"One"_s});
    popup.setItemTitles({});
    EXPECT_EQ(combo.count(), 0);
    EXPECT_EQ(combo.currentText(), QString());
}

TEST_F(Bindings, theBarIsThereWhileTheIndicatorTurns)
{
    EXPECT_FALSE(bar.isVisible());
    indicator.startAnimation();
    EXPECT_TRUE(bar.isVisible());
    indicator.stopAnimation();
    EXPECT_FALSE(bar.isVisible());
}

TEST_F(Bindings, aClickPerformsTheActionOfThatMoment)
{
    button.setAction(Action::doSubmit);
    QTest::mouseClick(&push, Qt::LeftButton);
    button.setAction(Action::doDirectSubmit);
    QTest::mouseClick(&push, Qt::LeftButton);
    EXPECT_EQ(performed, (QList{Action::doSubmit, Action::doDirectSubmit}));
}

TEST_F(Bindings, theKeyOfAButtonPressesItTogetherWithCtrl)
{
    button.setAction(Action::doCancelDirectSubmit);
    button.setKeyEquivalent(u"."_s);
    button.setTitle(u"Cancel"_s);
    QTest::keyClick(&window, Qt::Key_Period, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !performed.isEmpty(); }));
    EXPECT_EQ(performed, (QList{Action::doCancelDirectSubmit}));
    button.setKeyEquivalent({});
    EXPECT_TRUE(push.shortcut().isEmpty());
}

TEST_F(Bindings, aButtonShowsItsTitleLetterForLetterAndItsToolTip)
{
    button.setTitle(u"Sign & Staple…"_s);
    button.setToolTip(u"Does both"_s);
    EXPECT_EQ(push.text(), u"Sign && Staple…"_s);
    EXPECT_EQ(push.accessibleName(), u"Sign & Staple…"_s);
    EXPECT_EQ(push.toolTip(), u"Does both"_s);
}

TEST_F(Bindings, aHiddenOrDisabledControlHidesOrDisablesItsWidget)
{
    const std::initializer_list<std::pair<Control &, QWidget &>> pairs = {
        {field, edit}, {checkbox, box}, {popup, combo}, {button, push}};
    for (const auto &[control, shown] : pairs) {
        control.setIsHidden(true);
        EXPECT_FALSE(shown.isVisible());
        control.setIsHidden(false);
        EXPECT_TRUE(shown.isVisible());
        control.setIsEnabled(false);
        EXPECT_FALSE(shown.isEnabled());
        control.setIsEnabled(true);
        EXPECT_TRUE(shown.isEnabled());
    }
}

TEST(BindingsLife, aControlMayOutliveItsWidgetAndAWidgetItsControl)
{
    auto field = std::make_unique<TextField>();
    auto edit = std::make_unique<QLineEdit>();
    bindings::bind(*edit, *field);
    edit.reset();
    field->setStringValue(u"after the widget"_s);
    edit = std::make_unique<QLineEdit>();
    bindings::bind(*edit, *field);
    field.reset();
    edit->setText(u"after the control"_s);
    EXPECT_EQ(edit->text(), u"after the control"_s);
}
