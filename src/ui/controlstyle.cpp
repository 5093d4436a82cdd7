#include "ui/controlstyle.h"

#include "ui/theme.h"

#include <QPainter>
#include <QStyleOption>

namespace {

constexpr qreal radius = 3; // points, of a corner

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

void ControlStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (isOutlined(element) && !isMarked(*option) && hasFrame(element, *option))
        drawOutline(*painter, *option, option->rect);
}

void ControlStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                      QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    const bool isFramed = control == CC_ComboBox || control == CC_SpinBox;
    if (isFramed && !isMarked(*option))
        drawOutline(*painter, *option, option->rect);
}
