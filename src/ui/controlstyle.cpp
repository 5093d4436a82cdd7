#include "ui/controlstyle.h"

#include "ui/controlkinds.h"
#include "ui/controlpainting.h"
#include "ui/spacing.h"
#include "ui/theme.h"

#include <QLineEdit>
#include <QPainter>
#include <QStyleOption>

namespace sealwright {

using namespace controlkinds;
using controlpainting::Weight;

namespace {

constexpr qreal radius = 3; // points, of a corner

QFont bold(QFont font)
{
    font.setBold(true);
    return font;
}

Weight weightOf(const QStyleOption &option)
{
    const auto *const button = qstyleoption_cast<const QStyleOptionButton *>(&option);
    const bool isDefault = button && button->features.testFlag(QStyleOptionButton::DefaultButton);
    return isDefault ? Weight::primary : Weight::ordinary;
}

bool isChosenRow(const QStyleOption &option)
{
    const auto *const focus = qstyleoption_cast<const QStyleOptionFocusRect *>(&option);
    return focus && focus->backgroundColor == option.palette.color(QPalette::Highlight);
}

/// Whether the row is a whole, and not a part of one.
bool drawChosen(const QStyleOption &option, QPainter &painter)
{
    const auto *const row = qstyleoption_cast<const QStyleOptionViewItem *>(&option);
    const bool isWhole = row
        && (row->viewItemPosition == QStyleOptionViewItem::OnlyOne
            || row->viewItemPosition == QStyleOptionViewItem::Invalid);
    if (!isWhole || !option.state.testFlag(QStyle::State_Selected))
        return false;
    controlpainting::drawChosenRow(painter, option);
    return true;
}

bool isOutlined(QStyle::PrimitiveElement element)
{
    switch (element) {
    case QStyle::PE_IndicatorCheckBox:
    case QStyle::PE_FrameLineEdit:
    case QStyle::PE_PanelButtonCommand:
    case QStyle::PE_PanelButtonTool:
    case QStyle::PE_Frame:
        return true;
    default:
        return false;
    }
}

/// A control that has the keyboard, or is the default one, has the style's own colour round it.
bool isMarked(const QStyleOption &option)
{
    const auto *const button = qstyleoption_cast<const QStyleOptionButton *>(&option);
    const bool isDefault = button && button->features.testFlag(QStyleOptionButton::DefaultButton);
    return isDefault || option.state.testFlag(QStyle::State_HasFocus);
}

/// A frame that is flat or drawn by the widget itself is none.
bool hasFrame(QStyle::PrimitiveElement element, const QStyleOption &option)
{
    if (element != QStyle::PE_Frame)
        return true;
    const auto *const frame = qstyleoption_cast<const QStyleOptionFrame *>(&option);
    return frame && frame->lineWidth > 0 && frame->frameShape == QFrame::StyledPanel;
}

void drawOutline(QPainter &painter, const QStyleOption &option, const QRect &rect)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme::outline(option.palette));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

} // namespace

bool ControlStyle::isPlain() const
{
    return baseStyle()->inherits("QFusionStyle");
}

void ControlStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    if (isPlain() && drawPlain(element, *option, *painter, widget))
        return;
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (isOutlined(element) && !isMarked(*option) && hasFrame(element, *option))
        drawOutline(*painter, *option, option->rect);
}

void ControlStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                               const QWidget *widget) const
{
    if (!isPlain() || !drawPlain(element, *option, *painter, widget))
        QProxyStyle::drawControl(element, option, painter, widget);
}

void ControlStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                      QPainter *painter, const QWidget *widget) const
{
    if (isPlain() && drawPlain(control, *option, *painter, widget))
        return;
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    const bool isFramed = control == CC_ComboBox || control == CC_SpinBox;
    if (isFramed && !isMarked(*option))
        drawOutline(*painter, *option, option->rect);
}

// Where the desktop has no style of its own

bool ControlStyle::drawPlain(PrimitiveElement element, const QStyleOption &option, QPainter &painter,
                             const QWidget *widget) const
{
    switch (element) {
    case PE_PanelButtonCommand:
        controlpainting::drawButton(painter, option, weightOf(option));
        return true;
    case PE_PanelButtonTool:
        if (isRoundSign(widget))
            controlpainting::drawRoundSign(painter, option);
        else
            controlpainting::drawButton(painter, option, Weight::ordinary);
        return true;
    case PE_PanelLineEdit:
        if (!isFramed(option))
            return false;
        controlpainting::drawField(painter, option);
        return true;
    case PE_IndicatorCheckBox:
        controlpainting::drawCheckBox(painter, option);
        return true;
    case PE_FrameGroupBox:
    case PE_FrameTabWidget:
        controlpainting::drawCard(painter, option);
        return true;
    case PE_Frame:
        if (!hasFrame(element, option))
            return false;
        controlpainting::drawFrame(painter, option);
        return true;
    case PE_FrameFocusRect:
        return isChosenRow(option); // which says enough
    case PE_PanelItemViewItem:
        return drawChosen(option, painter);
    case PE_IndicatorTabClose:
        controlpainting::drawTabClose(painter, option);
        return true;
    case PE_FrameTabBarBase:
        controlpainting::drawBaseOfTabs(painter, option);
        return true;
    case PE_FrameDefaultButton:
        return true; // it has its colour
    default:
        return false;
    }
}

bool ControlStyle::drawPlain(ControlElement element, const QStyleOption &option, QPainter &painter,
                             const QWidget *widget) const
{
    if (element == CE_TabBarTabShape) {
        controlpainting::drawTab(painter, *qstyleoption_cast<const QStyleOptionTab *>(&option));
        return true;
    }
    if (const auto *const header = qstyleoption_cast<const QStyleOptionHeader *>(&option);
        element == CE_Header && header) {
        drawHeader(*header, painter, widget);
        return true;
    }
    if (element == CE_HeaderSection) {
        controlpainting::drawHeading(painter, option);
        return true;
    }
    if (element == CE_Splitter)
        return true; // the space says enough
    if (const auto *const popup = qstyleoption_cast<const QStyleOptionComboBox *>(&option);
        element == CE_ComboBoxLabel && popup && !popup->editable) {
        drawTitle(*popup, painter, widget);
        return true;
    }
    if (element != CE_PushButtonLabel)
        return false;
    QStyleOptionButton label(*qstyleoption_cast<const QStyleOptionButton *>(&option));
    label.palette.setColor(QPalette::ButtonText, controlpainting::textOf(option, weightOf(option)));
    QProxyStyle::drawControl(element, &label, &painter, widget);
    return true;
}

/// With the arrow of a popup beside its title, in the place of a speck in its corner.
void ControlStyle::drawMenuButton(const QStyleOptionToolButton &button, QPainter &painter,
                                  const QWidget *widget) const
{
    QStyleOptionToolButton plain(button);
    plain.features &= ~(QStyleOptionToolButton::HasMenu | QStyleOptionToolButton::Menu);
    controlpainting::drawButton(painter, plain, Weight::ordinary);
    const int arrow = roomForArrow;
    const QRect place =
        visualRect(button.direction, button.rect,
                   QRect(button.rect.right() - arrow, button.rect.top(), arrow, button.rect.height()));
    controlpainting::drawPopupArrow(painter, plain, place);
    plain.rect = visualRect(button.direction, button.rect, button.rect.adjusted(0, 0, -arrow, 0));
    QProxyStyle::drawControl(CE_ToolButtonLabel, &plain, &painter, widget);
}

/// The arrow of a sorted column stands in the line of its title.
void ControlStyle::drawHeader(const QStyleOptionHeader &header, QPainter &painter,
                              const QWidget *widget) const
{
    drawControl(CE_HeaderSection, &header, &painter, widget);
    const bool isSorted = header.sortIndicator != QStyleOptionHeader::None;
    const int side = isSorted ? header.fontMetrics.height() + spacing::inCell : 0;
    const auto mirrored = [&header](const QRect &place) {
        return visualRect(header.direction, header.rect, place);
    };
    QStyleOptionHeader title(header);
    if (!(title.textAlignment & Qt::AlignVertical_Mask))
        title.textAlignment |= Qt::AlignVCenter;
    title.rect = mirrored(header.rect.adjusted(spacing::inCell, 0, -spacing::inCell - side, 0));
    drawControl(CE_HeaderLabel, &title, &painter, widget);
    const QRect arrow(header.rect.right() - side, header.rect.top(), side, header.rect.height());
    if (isSorted)
        controlpainting::drawSortArrow(painter, header, mirrored(arrow));
}

/// Shortened where the popup is too narrow for it.
void ControlStyle::drawTitle(const QStyleOptionComboBox &popup, QPainter &painter,
                             const QWidget *widget) const
{
    QStyleOptionComboBox fitted(popup);
    const int beside = 2 * fieldMargin + (popup.currentIcon.isNull() ? 0 : popup.iconSize.width());
    const int room = subControlRect(CC_ComboBox, &popup, SC_ComboBoxEditField, widget).width() - beside;
    fitted.currentText = popup.fontMetrics.elidedText(popup.currentText, Qt::ElideRight, room);
    QProxyStyle::drawControl(CE_ComboBoxLabel, &fitted, &painter, widget);
}

void ControlStyle::drawGroup(const QStyleOptionGroupBox &group, QPainter &painter) const
{
    controlpainting::drawCard(painter, group);
    painter.save();
    painter.setFont(bold(painter.font()));
    drawItemText(&painter, subControlRect(CC_GroupBox, &group, SC_GroupBoxLabel, nullptr),
                 Qt::AlignLeft | Qt::TextShowMnemonic, group.palette, true, group.text, QPalette::WindowText);
    painter.restore();
}

bool ControlStyle::drawPlain(ComplexControl control, const QStyleOptionComplex &option, QPainter &painter,
                             const QWidget *widget) const
{
    if (const auto *const popup = qstyleoption_cast<const QStyleOptionComboBox *>(&option);
        control == CC_ComboBox && popup && !popup->editable) {
        controlpainting::drawComboBox(painter, *popup,
                                      subControlRect(CC_ComboBox, popup, SC_ComboBoxArrow, widget));
        return true;
    }
    if (const auto *const button = qstyleoption_cast<const QStyleOptionToolButton *>(&option);
        control == CC_ToolButton && button && button->features.testFlag(QStyleOptionToolButton::HasMenu)) {
        drawMenuButton(*button, painter, widget);
        return true;
    }
    if (control == CC_SpinBox) {
        controlpainting::drawSpinBox(painter, option, subControlRect(control, &option, SC_SpinBoxUp, widget),
                                     subControlRect(control, &option, SC_SpinBoxDown, widget));
        return true;
    }
    if (control == CC_ScrollBar) {
        controlpainting::drawSlider(painter, option,
                                    subControlRect(control, &option, SC_ScrollBarSlider, widget));
        return true;
    }
    if (control == CC_GroupBox) {
        drawGroup(*qstyleoption_cast<const QStyleOptionGroupBox *>(&option), painter);
        return true;
    }
    return false;
}

int ControlStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                            QStyleHintReturn *data) const
{
    if (hint == SH_TabBar_Alignment && widget && widget->property(tabsAtTheEnd).toBool())
        return Qt::AlignRight;
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons && isPlain())
        return 0; // as on all other buttons with a title
    return QProxyStyle::styleHint(hint, option, widget, data);
}

} // namespace sealwright
