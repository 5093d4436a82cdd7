#include "ui/controlpainting.h"

#include "ui/theme.h"

#include <QPainter>
#include <QStyleOption>

namespace sealwright {

namespace {

constexpr qreal radius = 5; // pixels, of a corner
constexpr qreal usualAscent = 14; // pixels, of a font that the pictures are drawn for
constexpr qreal radiusOfBox = 3.5;
constexpr qreal radiusOfFrame = 2; // what is in a frame has sharp corners
constexpr qreal radiusOfCard = 8;
constexpr qreal ring = 2; // pixels, round what has the keyboard
constexpr qreal faint = 0.12; // of the text's colour in a line that only divides
constexpr qreal hover = 0.06;
constexpr qreal pressed = 0.14;
constexpr qreal ofDisabled = 0.55; // of the outline that is left

bool isOn(const QStyleOption &option, QStyle::StateFlag flag)
{
    return option.state.testFlag(flag);
}

/// The desktop's own, dark enough for white writing.
QColor accent(const QStyleOption &option)
{
    return theme::readable(option.palette.color(QPalette::Active, QPalette::Highlight), Qt::white,
                           theme::leastOfText);
}

QColor divider(const QPalette &palette)
{
    return theme::mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), faint);
}

/// Round what is only looked at.
QColor quietLine(const QPalette &palette)
{
    return theme::mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 2 * faint);
}

/// Lighter for what is off: it need not be found.
QColor outlineOf(const QStyleOption &option)
{
    const QColor full = theme::outline(option.palette);
    return isOn(option, QStyle::State_Enabled)
        ? full
        : theme::mixed(option.palette.color(QPalette::Window), full, ofDisabled);
}

/// Under the pointer, and while it is pressed.
QColor touched(const QStyleOption &option, const QColor &ground, const QColor &text)
{
    if (!isOn(option, QStyle::State_Enabled))
        return theme::mixed(ground, option.palette.color(QPalette::Window), 0.6);
    if (isOn(option, QStyle::State_Sunken) || isOn(option, QStyle::State_On))
        return theme::mixed(ground, text, pressed);
    return isOn(option, QStyle::State_MouseOver) ? theme::mixed(ground, text, hover) : ground;
}

void drawRounded(QPainter &painter, const QRectF &rect, const QColor &line, const QBrush &ground,
                 qreal corner)
{
    painter.setPen(line.isValid() ? QPen(line, 1) : QPen(Qt::NoPen));
    painter.setBrush(ground);
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), corner, corner);
}

void drawRing(QPainter &painter, const QStyleOption &option, qreal corner)
{
    painter.setPen(
        QPen(theme::readable(accent(option), option.palette.color(QPalette::Window), theme::leastOfControls),
             ring));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(option.rect).adjusted(1, 1, -1, -1), corner, corner);
}

/// Draws with soft edges, and leaves the painter as it was.
class Soft {
public:
    explicit Soft(QPainter &painter)
        : m_painter(painter)
    {
        m_painter.save();
        m_painter.setRenderHint(QPainter::Antialiasing);
    }
    ~Soft() { m_painter.restore(); }
    Soft(const Soft &) = delete;
    Soft &operator=(const Soft &) = delete;

private:
    QPainter &m_painter;
};

void drawTick(QPainter &painter, const QRectF &box, const QColor &colour)
{
    const auto at = [&](qreal x, qreal y) { return box.topLeft() + QPointF(x, y) * box.width(); };
    painter.setPen(QPen(colour, qMax(1.5, box.width() * 0.13), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF({at(0.24, 0.52), at(0.43, 0.71), at(0.77, 0.31)}));
}

enum class Towards { below, above };

/// Grows with the font, as what stands beside it.
void drawArrow(QPainter &painter, const QRectF &place, const QStyleOption &option,
               Towards end = Towards::below)
{
    const qreal scale = qMax(1.0, option.fontMetrics.ascent() / usualAscent);
    const QPointF middle = place.center();
    const QColor colour = option.palette.color(QPalette::ButtonText);
    painter.setPen(QPen(colour, 1.6 * scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const qreal tip = end == Towards::below ? 2 : -2;
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF({middle + scale * QPointF(-4, -tip), middle + scale * QPointF(0, tip),
                                    middle + scale * QPointF(4, -tip)}));
}

} // namespace

QColor controlpainting::textOf(const QStyleOption &option, Weight weight)
{
    const bool isPrimary = weight == Weight::primary && isOn(option, QStyle::State_Enabled);
    return isPrimary ? QColor(Qt::white) : option.palette.color(QPalette::ButtonText);
}

void controlpainting::drawButton(QPainter &painter, const QStyleOption &option, Weight weight)
{
    const Soft soft(painter);
    const bool isPrimary = weight == Weight::primary && isOn(option, QStyle::State_Enabled);
    const QColor ground = isPrimary ? accent(option) : option.palette.color(QPalette::Button);
    drawRounded(painter, option.rect, isPrimary ? QColor() : outlineOf(option),
                touched(option, ground, textOf(option, weight)), radius);
    if (!isOn(option, QStyle::State_HasFocus))
        return;
    drawRing(painter, option, radius);
    if (isPrimary) // or the ring would be lost in its own colour
        drawRounded(painter, QRectF(option.rect).adjusted(2, 2, -2, -2), Qt::white, Qt::NoBrush, radius - 2);
}

void controlpainting::drawRoundSign(QPainter &painter, const QStyleOption &option)
{
    const Soft soft(painter);
    const qreal corner = option.rect.height() / 2.0;
    drawRounded(painter, option.rect, outlineOf(option),
                touched(option, option.palette.color(QPalette::Button), textOf(option, Weight::ordinary)),
                corner);
    if (isOn(option, QStyle::State_HasFocus))
        drawRing(painter, option, corner);
}

void controlpainting::drawField(QPainter &painter, const QStyleOption &option)
{
    const Soft soft(painter);
    const QColor ground = isOn(option, QStyle::State_Enabled) ? option.palette.color(QPalette::Base)
                                                              : option.palette.color(QPalette::Window);
    drawRounded(painter, option.rect, outlineOf(option), ground, radius);
    if (isOn(option, QStyle::State_HasFocus))
        drawRing(painter, option, radius);
}

void controlpainting::drawCheckBox(QPainter &painter, const QStyleOption &option)
{
    const Soft soft(painter);
    const bool isEnabled = isOn(option, QStyle::State_Enabled);
    const bool isChecked = isOn(option, QStyle::State_On) || isOn(option, QStyle::State_NoChange);
    const QColor full = isEnabled ? accent(option) : outlineOf(option);
    const QColor base = option.palette.color(QPalette::Base);
    const QColor empty = isOn(option, QStyle::State_MouseOver) ? theme::mixed(base, full, pressed) : base;
    drawRounded(painter, option.rect, isChecked ? full : outlineOf(option), isChecked ? full : empty,
                radiusOfBox);
    if (isOn(option, QStyle::State_On))
        drawTick(painter, option.rect, isEnabled ? QColor(Qt::white) : base);
}

void controlpainting::drawComboBox(QPainter &painter, const QStyleOptionComboBox &option, const QRect &arrow)
{
    drawButton(painter, option, Weight::ordinary);
    const Soft soft(painter);
    drawArrow(painter, arrow, option);
}

void controlpainting::drawPopupArrow(QPainter &painter, const QStyleOption &option, const QRect &place)
{
    const Soft soft(painter);
    drawArrow(painter, place, option);
}

void controlpainting::drawSortArrow(QPainter &painter, const QStyleOptionHeader &option, const QRect &place)
{
    const Soft soft(painter);
    const bool isDown = option.sortIndicator == QStyleOptionHeader::SortDown;
    drawArrow(painter, place, option, isDown ? Towards::below : Towards::above);
}

void controlpainting::drawSpinBox(QPainter &painter, const QStyleOption &option, const QRect &up,
                                  const QRect &down)
{
    drawField(painter, option);
    const Soft soft(painter);
    constexpr QPointF fromEdge(-4, 0);
    drawArrow(painter, QRectF(up).translated(fromEdge), option, Towards::above);
    drawArrow(painter, QRectF(down).translated(fromEdge), option);
}

void controlpainting::drawChosenRow(QPainter &painter, const QStyleOption &option)
{
    const Soft soft(painter);
    drawRounded(painter, option.rect, {}, option.palette.color(QPalette::Highlight), radius);
}

void controlpainting::drawCard(QPainter &painter, const QStyleOption &option)
{
    const Soft soft(painter);
    const QColor ground =
        theme::mixed(option.palette.color(QPalette::Window), option.palette.color(QPalette::Base), 0.5);
    drawRounded(painter, option.rect, divider(option.palette), ground, radiusOfCard);
}

void controlpainting::drawTab(QPainter &painter, const QStyleOptionTab &option)
{
    const Soft soft(painter);
    const QRectF rect = option.rect;
    const bool isSelected = isOn(option, QStyle::State_Selected);
    if (!isSelected && isOn(option, QStyle::State_MouseOver))
        painter.fillRect(rect,
                         touched(option, option.palette.color(QPalette::Window),
                                 option.palette.color(QPalette::WindowText)));
    const qreal height = isSelected ? 2.5 : 1;
    const QColor line = isSelected
        ? theme::readable(accent(option), option.palette.color(QPalette::Window), theme::leastOfControls)
        : divider(option.palette);
    painter.fillRect(QRectF(rect.left(), rect.bottom() - height, rect.width(), height), line);
}

void controlpainting::drawBaseOfTabs(QPainter &painter, const QStyleOption &option)
{
    const QRect &rect = option.rect;
    painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), divider(option.palette));
}

void controlpainting::drawTabClose(QPainter &painter, const QStyleOption &option)
{
    const Soft soft(painter);
    const QColor text = option.palette.color(QPalette::WindowText);
    const QRectF rect = option.rect;
    const bool isTouched = isOn(option, QStyle::State_MouseOver) || isOn(option, QStyle::State_Sunken);
    if (isTouched)
        drawRounded(painter, rect, {}, touched(option, divider(option.palette), text), radiusOfBox);
    const qreal reach = rect.width() * 0.2;
    painter.setPen(QPen(text, 1.4, Qt::SolidLine, Qt::RoundCap));
    for (const QPointF corner : {QPointF(reach, reach), QPointF(reach, -reach)})
        painter.drawLine(rect.center() - corner, rect.center() + corner);
}

void controlpainting::drawHeading(QPainter &painter, const QStyleOption &option)
{
    painter.fillRect(option.rect, option.palette.color(QPalette::Window));
    painter.fillRect(QRect(option.rect.left(), option.rect.bottom(), option.rect.width(), 1),
                     divider(option.palette));
    painter.fillRect(QRect(option.rect.right(), option.rect.top() + 4, 1, option.rect.height() - 8),
                     divider(option.palette));
}

void controlpainting::drawSlider(QPainter &painter, const QStyleOption &option, const QRect &slider)
{
    const Soft soft(painter);
    const QRectF rect = QRectF(slider).adjusted(3, 3, -3, -3);
    painter.setPen(Qt::NoPen);
    painter.setBrush(
        touched(option, theme::outline(option.palette), option.palette.color(QPalette::WindowText)));
    const qreal corner = qMin(rect.width(), rect.height()) / 2;
    painter.drawRoundedRect(rect, corner, corner);
}

void controlpainting::drawFrame(QPainter &painter, const QStyleOption &option)
{
    const Soft soft(painter);
    // There is nothing to be set in it: its ground tells it from the window.
    drawRounded(painter, option.rect, quietLine(option.palette), Qt::NoBrush, radiusOfFrame);
    if (isOn(option, QStyle::State_HasFocus))
        drawRing(painter, option, radiusOfFrame);
}

} // namespace sealwright
