#include "ui/busybar.h"

#include <QEvent>
#include <QPainter>
#include <QTimerEvent>

namespace {

constexpr int interval = 250; // milliseconds between steps
constexpr int steps = 8; // from one end to the other
constexpr int partsOfWidth = 4; // of which the moving piece is one
constexpr qreal thickness = 8; // pixels

} // namespace

BusyBar::BusyBar(QWidget *parent)
    : QProgressBar(parent)
{
    setRange(0, 0); // how assistive software knows a bar without an end
    setTextVisible(false);
}

void BusyBar::moveInActiveWindow()
{
    if (!isVisible() || !isActiveWindow())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start(interval, Qt::CoarseTimer, this);
}

bool BusyBar::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate)
        moveInActiveWindow();
    return QProgressBar::event(event);
}

void BusyBar::showEvent(QShowEvent *event)
{
    QProgressBar::showEvent(event);
    moveInActiveWindow();
}

void BusyBar::hideEvent(QHideEvent *event)
{
    QProgressBar::hideEvent(event);
    moveInActiveWindow();
}

void BusyBar::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId())
        return QProgressBar::timerEvent(event);
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
