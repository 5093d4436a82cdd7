#include "ui/settingrows.h"

#include "document/mainwincontroller.h"
#include "ui/bindings.h"
#include "ui/controlstyle.h"
#include "ui/named.h"
#include "ui/spacing.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr auto helpProperty = "slwHelp";

} // namespace

QCheckBox *settingrows::makeCheckbox(QWidget *parent, MainWinController &document, const CheckboxRow &row)
{
    auto *const box = named(new QCheckBox(row.label, parent), row.name, plainLabel(row.label));
    box->setToolTip(row.toolTip);
    bindings::bind(*box, document.*row.control);
    return box;
}

QLineEdit *settingrows::makeTextField(QWidget *parent, MainWinController &document, const TextRow &row)
{
    auto *const edit = named(new QLineEdit(parent), row.name, plainLabel(row.label));
    edit->setPlaceholderText(row.hint);
    edit->setAcceptDrops(false); // files that are dropped here are for the window
    bindings::bind(*edit, document.*row.control);
    return edit;
}

QToolButton *settingrows::makeHelpButton(QWidget *parent, MainWinController &document, Action help,
                                         const QString &name, const QString &subject)
{
    auto *const button = named(new QToolButton(parent), name, QObject::tr("Help: %1").arg(subject));
    button->setText(u"?"_s);
    button->setProperty(roundSign, true);
    button->setToolTip(button->accessibleName() + u" (F1)"_s);
    button->setFocusPolicy(Qt::TabFocus);
    QObject::connect(button, &QToolButton::clicked, &document, [&document, help] { document.perform(help); });
    offerWhenIdle(*button, document);
    return button;
}

void settingrows::setHelp(QWidget &widget, Action help)
{
    widget.setProperty(helpProperty, QVariant::fromValue(static_cast<int>(help)));
}

Action settingrows::helpOn(const QWidget *widget)
{
    for (; widget; widget = widget->parentWidget()) {
        if (const QVariant help = widget->property(helpProperty); help.isValid())
            return static_cast<Action>(help.toInt());
    }
    return Action::none;
}

void settingrows::offerWhenIdle(QWidget &widget, Control &control, MainWinController &document)
{
    bindings::enableWhile(widget, control, document.progressIndicator,
                          [&document] { return !document.progressIndicator.isAnimating(); });
}

void settingrows::offerWhenIdle(QWidget &widget, MainWinController &document)
{
    bindings::enableWhile(widget, document.progressIndicator,
                          [&document] { return !document.progressIndicator.isAnimating(); });
}

QString settingrows::plainLabel(QString label)
{
    return label.remove(u'&');
}

QLabel *settingrows::makeCaption(QWidget *parent, const QString &label, QWidget &widget)
{
    auto *const caption = new QLabel(label, parent);
    caption->setBuddy(&widget);
    // In the line of the field, also where a hint makes the row higher.
    const int above = (widget.sizeHint().height() - caption->fontMetrics().height()) / 2;
    caption->setContentsMargins(0, qMax(0, above), 0, 0);
    caption->setAlignment(Qt::AlignLeading | Qt::AlignTop);
    widget.setAccessibleName(plainLabel(label));
    return caption;
}

QLabel *settingrows::makeHeading(QWidget *parent, const QString &label, QWidget &widget)
{
    QLabel *const heading = makeCaption(parent, label, widget);
    heading->setContentsMargins(0, 0, 0, 0);
    heading->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    heading->setMinimumHeight(spacing::heightOfControl(heading->fontMetrics()));
    return heading;
}

void settingrows::alignCaptions(QWidget &widget)
{
    int width = 0;
    QList<QLabel *> captions;
    for (auto *const label : widget.findChildren<QLabel *>()) {
        if (!label->buddy())
            continue;
        captions.append(label);
        width = qMax(width, label->sizeHint().width());
    }
    for (QLabel *const caption : captions)
        caption->setMinimumWidth(width);
}

} // namespace sealwright
