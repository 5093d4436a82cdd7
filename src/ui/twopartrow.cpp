#include "ui/twopartrow.h"

#include <QBoxLayout>

namespace sealwright {

TwoPartRow::TwoPartRow(QWidget *parent)
    : QWidget(parent)
    , m_all(new QBoxLayout(QBoxLayout::LeftToRight, this))
    , m_first(new QHBoxLayout)
    , m_second(new QHBoxLayout)
{
    m_all->setContentsMargins(0, 0, 0, 0);
    auto *const left = new QHBoxLayout; // which keeps its group at its end, however wide the row is
    left->addLayout(m_first);
    left->addStretch(1);
    auto *const right = new QHBoxLayout;
    right->addStretch(1);
    right->addLayout(m_second);
    m_all->addLayout(left);
    m_all->addLayout(right);
}

/// The larger part has to find room, and the other then stands below it.
QSize TwoPartRow::minimumSizeHint() const
{
    const int width = qMax(m_first->minimumSize().width(), m_second->minimumSize().width());
    return {width, QWidget::minimumSizeHint().height()};
}

void TwoPartRow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    const int both = m_first->minimumSize().width() + m_second->minimumSize().width() + 2 * m_all->spacing();
    m_all->setDirection(both <= width() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

} // namespace sealwright
