#include "ui/busybar.h"

#include <QPainter>

namespace {

constexpr int interval = 250; // milliseconds between steps
constexpr int steps = 8; // from one end to the other
constexpr int partsOfWidth = 4; // of which the moving piece is one
constexpr qreal thickness = 8; // pixels

} // namespace

BusyBar::BusyBar(QWidget *parent)
    : QProgressBar(parent)
    , m_timer(*this, interval, [this] { makeStep(); })
{
    setRange(0, 0); // how assistive software knows a bar without an end
    setTextVisible(false);
}

void BusyBar::makeStep()
{
    m_step = (m_step + 1) % (2 * steps); // there and back
    update();
}

void BusyBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF groove(0, (height() - thickness) / 2, width(), thickness);
    const auto draw = [&painter](const QRectF &bar, const QColor &colour) {
        painter.setBrush(colour);
        painter.drawRoundedRect(bar, thickness / 2, thickness / 2);
    };
    draw(groove, palette().color(QPalette::Midlight).darker(115));
    QRectF piece = groove;
    piece.setWidth(groove.width() / partsOfWidth);
    const int position = m_step <= steps ? m_step : 2 * steps - m_step;
    piece.moveLeft(position * (groove.width() - piece.width()) / steps);
    draw(piece, palette().color(QPalette::Highlight));
}
