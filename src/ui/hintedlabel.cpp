#include "ui/hintedlabel.h"

#include <QPainter>

namespace sealwright {

HintedLabel::HintedLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
}

void HintedLabel::setHint(const QString &hint)
{
    m_hint = hint;
    setAccessibleDescription(hint);
    update();
}

void HintedLabel::paintEvent(QPaintEvent *event)
{
    QLabel::paintEvent(event);
    if (!text().isEmpty() || m_hint.isEmpty())
        return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const QString fitted = fontMetrics().elidedText(m_hint, Qt::ElideRight, contentsRect().width());
    painter.drawText(contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, fitted);
}

} // namespace sealwright
