#include "ui/bannerframe.h"

#include "ui/spacing.h"

#include <QLayout>
#include <QPainter>

namespace sealwright {

namespace {

constexpr int edge = 4; // pixels of the meaning's own colour
constexpr qreal radius = 8; // pixels, of a corner

} // namespace

BannerFrame::BannerFrame(theme::Meaning meaning, QWidget *parent)
    : QFrame(parent)
    , m_meaning(meaning)
{
}

void BannerFrame::setMeaning(theme::Meaning meaning)
{
    m_meaning = meaning;
    update();
}

void BannerFrame::spaceOut()
{
    constexpr int aboveAndBelow = spacing::between - spacing::near;
    layout()->setContentsMargins(spacing::edge + spacing::near, aboveAndBelow, spacing::between,
                                 aboveAndBelow);
}

void BannerFrame::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::groundOf(m_meaning, palette()));
    painter.drawRoundedRect(QRectF(rect()), radius, radius);
    painter.setClipRect(QRect(0, 0, edge, height()));
    painter.setBrush(theme::colourOf(m_meaning, palette()));
    painter.drawRoundedRect(QRectF(rect()), radius, radius);
}

} // namespace sealwright
