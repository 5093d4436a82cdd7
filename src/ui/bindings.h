#pragma once

#include "document/controls.h"

#include <functional>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QProgressBar;
class QLabel;
class QPushButton;
class QStackedWidget;
class QTextEdit;
class QWidget;

namespace sealwright {

/// Ties a widget to a control, so that both show the same at all times, whichever is changed. The widget
/// keeps nothing that the control does not have; it may go before the control or after it. Main thread.
namespace bindings {

/// What is typed is in the control at once, without an end to the edit.
void bind(QLineEdit &edit, TextField &field);
/// Shows the text letter for letter, in its colour.
void bind(QLabel &label, TextField &field);
void bind(QTextEdit &edit, TextView &view);
void bind(QStackedWidget &pages, TabView &tabView);
void bind(QCheckBox &box, Checkbox &checkbox);
void bind(QComboBox &box, Popup &popup);
/// On screen while the control's animation runs.
void bind(QProgressBar &bar, ProgressIndicator &indicator);
/// A press, or the button's key together with Ctrl, performs the action that the button has at that moment.
void bind(QPushButton &push, Button &button, std::function<void(Action)> perform);

/// From now on the widget is enabled only while its control is and the condition holds, which depends on the
/// other control. Comes after the widget's binding.
void enableWhile(QWidget &widget, Control &control, Control &other, std::function<bool()> condition);
/// The same for a widget without a control of its own.
void enableWhile(QWidget &widget, Control &other, std::function<bool()> condition);

} // namespace bindings

} // namespace sealwright
