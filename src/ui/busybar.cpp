#include "ui/busybar.h"

#include "ui/theme.h"

#include <QPainter>

namespace sealwright {

namespace {

constexpr int interval = 250; // milliseconds between steps
constexpr int steps = 8; // from one end to the other
constexpr int partsOfWidth = 4; // of which the moving piece is one
constexpr qreal thickness = 6; // pixels
constexpr int mostParts = 1000; // that a bar of known length is divided into

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

void BusyBar::showParts(qint64 done, qint64 all)
{
    setRange(0, all > 0 ? mostParts : 0);
    setValue(all > 0 ? int(double(done) / double(all) * mostParts) : 0);
    m_timer.setIsWanted(!m_isStill && !isMeasured());
    update();
}

void BusyBar::setIsStill(bool isStill)
{
    m_isStill = isStill;
    m_timer.setIsWanted(!m_isStill && !isMeasured());
    update();
}

QRectF BusyBar::pieceOf(const QRectF &groove) const
{
    QRectF piece = groove;
    if (isMeasured()) {
        piece.setWidth(qMax(thickness, groove.width() * value() / maximum()));
        return piece;
    }
    piece.setWidth(groove.width() / partsOfWidth);
    const int position = m_step <= steps ? m_step : 2 * steps - m_step;
    piece.moveLeft(position * (groove.width() - piece.width()) / steps);
    return piece;
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
    draw(groove, theme::groundOf(theme::Meaning::quiet, palette()).darker(108));
    if (!m_isStill)
        draw(pieceOf(groove), theme::colourOf(theme::Meaning::underway, palette()));
}

} // namespace sealwright
