#pragma once

#include "document/documentcontrols.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QToolButton;
class QWidget;

namespace sealwright {

class MainWinController;

/// The pieces that the settings of a document are laid out with.
namespace settingrows {

struct CheckboxRow {
    Checkbox DocumentControls::*control;
    QString name;
    QString label; ///< with the letter that leads to it by the keyboard, if it has one
    QString toolTip;
};

/// A checkbox that is bound to its control.
[[nodiscard]] QCheckBox *makeCheckbox(QWidget *parent, MainWinController &document, const CheckboxRow &row);

struct TextRow {
    TextField DocumentControls::*control;
    QString name;
    QString label;
    QString hint; ///< stands in the field while it is empty
};

/// A field that is bound to its control. The label is for its caption.
[[nodiscard]] QLineEdit *makeTextField(QWidget *parent, MainWinController &document, const TextRow &row);

/// A button with a question mark that shows a help sheet; not while a workflow runs, whose status word the
/// sheet would change.
[[nodiscard]] QToolButton *makeHelpButton(QWidget *parent, MainWinController &document, Action help,
                                          const QString &name, const QString &subject);

/// Says which help sheet is about the widget and all that is in it.
void setHelp(QWidget &widget, Action help);

/// The help sheet about the widget; `Action::none` if there is none, or no widget.
[[nodiscard]] Action helpOn(const QWidget *widget);

/// Keeps a widget off while a workflow runs: a document runs one at a time, and its spinner turns for as
/// long.
void offerWhenIdle(QWidget &widget, Control &control, MainWinController &document);
void offerWhenIdle(QWidget &widget, MainWinController &document);

/// A label as it is read: without the sign that marks a letter.
[[nodiscard]] QString plainLabel(QString label);

/// A caption for the widget, whose accessible name it becomes.
[[nodiscard]] QLabel *makeCaption(QWidget *parent, const QString &label, QWidget &widget);

/// A caption that stands above the widget, as high as one with buttons beside it.
[[nodiscard]] QLabel *makeHeading(QWidget *parent, const QString &label, QWidget &widget);

/// Gives all captions in the widget one width, so that what they stand before is in line.
void alignCaptions(QWidget &widget);

} // namespace settingrows

} // namespace sealwright
