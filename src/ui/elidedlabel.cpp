#include "ui/elidedlabel.h"

#include <QPainter>

namespace sealwright {

ElidedLabel::ElidedLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
    const auto along = int(alignment() & Qt::AlignHorizontal_Mask);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), along | Qt::AlignVCenter | Qt::TextSingleLine, shown);
}

} // namespace sealwright
