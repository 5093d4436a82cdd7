#include "ui/controlstyle.h"

#include "ui/controlpainting.h"
#include "ui/theme.h"

#include <QLineEdit>
#include <QPainter>
#include <QStyleOption>

namespace sealwright {

using controlpainting::Weight;

namespace {

constexpr qreal radius = 3; // points, of a corner
constexpr int scrollBarWidth = 12; // pixels
constexpr int shortestSlider = 28;
constexpr int fieldMargin = 4; // between the edge of a field and what is in it
constexpr int titleMargin = 8; // over the title of a group
constexpr int titleIndent = 10;
constexpr int roomForArrow = 18; // of a button with a menu
constexpr int roomInRow = 6; // pixels, of a list or tree
constexpr int roomInButton = 8; // more than a button of that style has beside its title

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

bool hasMenu(const QStyleOption &option)
{
    const auto *const button = qstyleoption_cast<const QStyleOptionToolButton *>(&option);
    return button && button->features.testFlag(QStyleOptionToolButton::HasMenu);
}

bool isFramed(const QStyleOption &option)
{
    const auto *const frame = qstyleoption_cast<const QStyleOptionFrame *>(&option);
    return frame && frame->lineWidth > 0;
}

/// The title stands within the card, over its contents.
QRect partOfGroup(const QStyleOption &option, QStyle::SubControl part)
{
    const int title = option.fontMetrics.height() + titleMargin;
    switch (part) {
    case QStyle::SC_GroupBoxLabel:
        return {option.rect.left() + titleIndent, option.rect.top() + titleMargin,
                option.rect.width() - 2 * titleIndent, option.fontMetrics.height()};
    case QStyle::SC_GroupBoxContents:
        return option.rect.adjusted(1, title, -1, -1);
    default:
        return option.rect;
    }
}

/// A scroll bar without arrows: what is before the slider, the slider, and what is behind it.
QRect partOfScrollBar(const QStyleOptionSlider &bar, QStyle::SubControl part)
{
    const bool isUpright = bar.orientation == Qt::Vertical;
    const int room = isUpright ? bar.rect.height() : bar.rect.width();
    const qint64 all = qint64(bar.maximum) - bar.minimum + bar.pageStep;
    const int proportional = all > 0 ? int(qint64(room) * bar.pageStep / all) : room;
    const int length =
        bar.maximum == bar.minimum ? room : qBound(qMin(shortestSlider, room), proportional, room);
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      room - length, bar.upsideDown);
    const auto piece = [&](int from, int size) {
        const QRect rect = isUpright ? QRect(bar.rect.x(), bar.rect.y() + from, bar.rect.width(), size)
                                     : QRect(bar.rect.x() + from, bar.rect.y(), size, bar.rect.height());
        return QStyle::visualRect(bar.direction, bar.rect, rect);
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return bar.rect;
    case QStyle::SC_ScrollBarSlider:
        return piece(start, length);
    case QStyle::SC_ScrollBarSubPage:
        return piece(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return piece(start + length, room - start - length);
    default:
        return {};
    }
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
    if (isPlain() && drawPlain(element, *option, *painter))
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

bool ControlStyle::drawPlain(PrimitiveElement element, const QStyleOption &option, QPainter &painter) const
{
    switch (element) {
    case PE_PanelButtonCommand:
        controlpainting::drawButton(painter, option, weightOf(option));
        return true;
    case PE_PanelButtonTool:
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
    case PE_IndicatorTabClose:
        controlpainting::drawTabClose(painter, option);
        return true;
    case PE_FrameTabBarBase:
    case PE_FrameDefaultButton:
        return true; // the tabs draw their line themselves, and a default button has its colour
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
    drawItemText(&painter, partOfGroup(group, SC_GroupBoxLabel), Qt::AlignLeft | Qt::TextShowMnemonic,
                 group.palette, true, group.text, QPalette::WindowText);
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

int ControlStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    const int given = QProxyStyle::pixelMetric(metric, option, widget);
    if (!isPlain())
        return given;
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_SmallIconSize:
    case PM_ButtonIconSize:
    case PM_TabCloseIndicatorWidth:
    case PM_TabCloseIndicatorHeight:
        return widget ? qMax(given, widget->fontMetrics().ascent() + 2) : given;
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabShiftVertical:
        return 0; // the line below says which one shows
    case PM_ScrollBarExtent:
        return scrollBarWidth;
    case PM_DefaultFrameWidth:
        return qobject_cast<const QLineEdit *>(widget) ? fieldMargin : given;
    default:
        return given;
    }
}

QSize ControlStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                     const QWidget *widget) const
{
    const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (!isPlain())
        return size;
    switch (type) {
    case CT_PushButton:
        return size + QSize(roomInButton, 2);
    case CT_ComboBox:
        return size + QSize(0, 2);
    case CT_ToolButton:
        return size + QSize(hasMenu(*option) ? roomForArrow : 0, 0);
    case CT_TabBarTab:
        return size + QSize(0, 2);
    case CT_ItemViewItem:
        return size + QSize(0, roomInRow);
    default:
        return size;
    }
}

QRect ControlStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                                   const QWidget *widget) const
{
    const auto *const bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control == CC_ScrollBar && isPlain() && bar)
        return partOfScrollBar(*bar, part);
    if (control == CC_GroupBox && isPlain())
        return partOfGroup(*option, part);
    return QProxyStyle::subControlRect(control, option, part, widget);
}

} // namespace sealwright
