#include "ui/runsign.h"

#include "ui/theme.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QColor colourOf(StepState state, const QPalette &palette, const QColor &otherwise)
{
    switch (state) {
    case StepState::running:
        return theme::colourOf(theme::Meaning::underway, palette);
    case StepState::done:
        return theme::colourOf(theme::Meaning::good, palette);
    case StepState::failed:
        return theme::colourOf(theme::Meaning::bad, palette);
    case StepState::cancelled:
        return theme::colourOf(theme::Meaning::caution, palette);
    case StepState::waiting:
    case StepState::skipped:
        break;
    }
    return otherwise;
}

/// What is drawn into a disc of one colour, in the colour of the ground.
void drawMark(QPainter &painter, const QRectF &disc, StepState state, const QColor &ground)
{
    const qreal side = disc.width();
    const auto at = [&](qreal x, qreal y) { return disc.topLeft() + QPointF(x, y) * side; };
    painter.setPen(
        QPen(ground, qMax(1.2, side * runsign::stroke), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    if (state == StepState::done) {
        painter.drawPolyline(QPolygonF({at(0.28, 0.54), at(0.44, 0.7), at(0.74, 0.33)}));
    } else if (state == StepState::failed) {
        painter.drawLine(at(0.33, 0.33), at(0.67, 0.67));
        painter.drawLine(at(0.33, 0.67), at(0.67, 0.33));
    } else if (state == StepState::cancelled) {
        painter.drawLine(at(0.3, 0.5), at(0.7, 0.5));
    }
}

} // namespace

bool runsign::isReached(StepState state)
{
    return state == StepState::done || state == StepState::running || state == StepState::failed
        || state == StepState::cancelled;
}

void runsign::draw(QPainter &painter, const QRectF &place, StepState state, const QPalette &palette)
{
    const qreal width = qMax(1.0, place.width() * stroke);
    const QColor colour = colourOf(state, palette, painter.pen().color());
    const QRectF disc = place.adjusted(width / 2, width / 2, -width / 2, -width / 2);
    painter.setPen(QPen(colour, width, state == StepState::skipped ? Qt::DotLine : Qt::SolidLine));
    const bool isFilled = isReached(state) && state != StepState::running;
    painter.setBrush(isFilled ? QBrush(colour) : palette.window());
    painter.drawEllipse(disc);
    if (isFilled)
        drawMark(painter, disc, state, palette.color(QPalette::Window));
    if (state != StepState::running)
        return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(disc.center(), disc.width() / 4, disc.width() / 4);
}

QPixmap runsign::pixmap(StepState state, const QPalette &palette, int side, qreal pixelRatio)
{
    QPixmap picture(QSize(side, side) * pixelRatio);
    picture.setDevicePixelRatio(pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme::colourOf(theme::Meaning::quiet, palette));
    draw(painter, QRectF(0, 0, side, side), state, palette);
    return picture;
}

QIcon runsign::icon(StepState state, const QWidget &widget)
{
    return {pixmap(state, widget.palette(), widget.fontMetrics().height(), widget.devicePixelRatioF())};
}

StepState runsign::stateOfFinding(const QString &severity)
{
    return severity == "error"_L1 ? StepState::failed : StepState::cancelled;
}

RunSign::RunSign(QWidget *parent)
    : QWidget(parent)
{
    const int side = fontMetrics().height() * 5 / 4;
    setFixedSize(side, side);
}

void RunSign::showState(StepState state)
{
    m_state = state;
    update();
}

void RunSign::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    runsign::draw(painter, rect(), m_state, palette());
}

} // namespace sealwright
