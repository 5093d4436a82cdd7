#include "ui/bindings.h"

#include "ui/mnemonic.h"
#include "ui/shown.h"
#include "ui/toplevel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTextEdit>

#include <limits>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

/// Runs `show` now and after each change of the control, for as long as the widget lives.
template <class Show>
void follow(QWidget &widget, Control &control, Show show)
{
    QObject::connect(&control, &Control::changed, &widget, show);
    show();
}

void showAvailability(QWidget &widget, const Control &control)
{
    widget.setHidden(control.isHidden());
    widget.setEnabled(control.isEnabled());
}

QStringList itemTitles(const QComboBox &box)
{
    QStringList titles;
    for (int index = 0; index < box.count(); ++index)
        titles.append(box.itemData(index).toString());
    return titles;
}

void colourText(QWidget &widget, const GreyColour &colour)
{
    const auto level = static_cast<float>(colour.white);
    QPalette palette = widget.palette();
    palette.setColor(QPalette::WindowText,
                     QColor::fromRgbF(level, level, level, static_cast<float>(colour.alpha)));
    widget.setPalette(palette);
}

QTextCharFormat formatOf(const StyledText &text)
{
    QTextCharFormat format;
    format.setFontWeight(text.isBold ? QFont::Bold : QFont::Normal);
    format.setFontItalic(text.isItalic);
    return format;
}

} // namespace

void bindings::bind(QLineEdit &edit, TextField &field)
{
    edit.setMaxLength(std::numeric_limits<int>::max()); // a longer text would be cut, and so the control's
    follow(edit, field, [&edit, &field] {
        showAvailability(edit, field);
        if (edit.text() != field.stringValue()) // or the insertion point would jump to the end
            edit.setText(field.stringValue());
    });
    QObject::connect(&edit, &QLineEdit::textChanged, &field, &TextField::setStringValue);
    QObject::connect(&field, &TextField::focusRequested, &edit, [&edit] { toplevel::focusWhenInUse(edit); });
}

void bindings::bind(QLabel &label, TextField &field)
{
    label.setTextFormat(Qt::PlainText);
    follow(label, field, [&label, &field] {
        showAvailability(label, field);
        label.setText(shown(field.stringValue()));
        if (const auto colour = field.textColor())
            colourText(label, *colour);
    });
}

void bindings::bind(QTextEdit &edit, TextView &view)
{
    follow(edit, view, [&edit, &view] {
        showAvailability(edit, view);
        edit.clear();
        QTextCursor end(edit.document());
        for (const StyledText &text : view.text())
            end.insertText(text.text, formatOf(text));
        edit.moveCursor(QTextCursor::Start); // where reading begins
    });
}

void bindings::bind(QStackedWidget &pages, TabView &tabView)
{
    follow(pages, tabView, [&pages, &tabView] {
        showAvailability(pages, tabView);
        pages.setCurrentIndex(tabView.selectedIndex());
    });
    QObject::connect(&pages, &QStackedWidget::currentChanged, &tabView, &TabView::selectTabViewItemAtIndex);
}

void bindings::bind(QCheckBox &box, Checkbox &checkbox)
{
    follow(box, checkbox, [&box, &checkbox] {
        showAvailability(box, checkbox);
        box.setChecked(checkbox.isOn());
    });
    QObject::connect(&box, &QCheckBox::toggled, &checkbox,
                     [&checkbox](bool isOn) { checkbox.setState(isOn ? 1 : 0); });
}

void bindings::bind(QComboBox &box, Popup &popup)
{
    follow(box, popup, [&box, &popup] {
        const QSignalBlocker silence(box); // the selection of a box that is being filled is nobody's choice
        showAvailability(box, popup);
        if (itemTitles(box) != popup.itemTitles()) {
            box.clear();
            for (const QString &title : popup.itemTitles())
                box.addItem(shown(title), title);
        }
        if (box.currentData().toString() != popup.titleOfSelectedItem())
            box.setCurrentIndex(static_cast<int>(popup.itemTitles().indexOf(popup.titleOfSelectedItem())));
    });
    QObject::connect(&box, &QComboBox::currentIndexChanged, &popup,
                     [&box, &popup] { popup.selectItemWithTitle(box.currentData().toString()); });
}

void bindings::bind(QProgressBar &bar, ProgressIndicator &indicator)
{
    follow(bar, indicator, [&bar, &indicator] {
        bar.setEnabled(indicator.isEnabled());
        bar.setVisible(indicator.isAnimating() && !indicator.isHidden());
    });
}

void bindings::bind(QPushButton &push, Button &button, std::function<void(Action)> perform)
{
    follow(push, button, [&push, &button] {
        showAvailability(push, button);
        push.setText(withoutMnemonic(shown(button.title())));
        push.setAccessibleName(shown(button.title()));
        push.setToolTip(shown(button.toolTip()));
        const QString key = button.keyEquivalent();
        push.setShortcut(key.isEmpty() ? QKeySequence() : QKeySequence(u"Ctrl+"_s + key));
    });
    QObject::connect(&push, &QPushButton::clicked, &button,
                     [&button, perform = std::move(perform)] { perform(button.action()); });
}

void bindings::enableWhile(QWidget &widget, Control &control, Control &other, std::function<bool()> condition)
{
    const auto show = [&widget, &control, condition = std::move(condition)] {
        widget.setEnabled(control.isEnabled() && condition());
    };
    follow(widget, control, show);
    follow(widget, other, show);
}

void bindings::enableWhile(QWidget &widget, Control &other, std::function<bool()> condition)
{
    enableWhile(widget, other, other, std::move(condition));
}

} // namespace sealwright
