#include "ui/pageparts.h"

#include <QEvent>

namespace sealwright {

PageParts::PageParts(QWidget &settings, QWidget &run, QWidget *parent)
    : QSplitter(Qt::Vertical, parent)
    , m_settings(settings)
{
    setChildrenCollapsible(false);
    addWidget(&settings);
    addWidget(&run);
    setStretchFactor(1, 1);
    connect(this, &QSplitter::splitterMoved, this, [this] { m_isChosen = true; });
}

void PageParts::share()
{
    const int wanted = m_settings.sizeHint().height();
    if (!m_isChosen)
        setSizes({wanted, qMax(0, height() - wanted - handleWidth())});
}

bool PageParts::event(QEvent *event)
{
    const bool isTaken = QSplitter::event(event);
    if (event->type() == QEvent::LayoutRequest)
        share();
    return isTaken;
}

void PageParts::resizeEvent(QResizeEvent *event)
{
    QSplitter::resizeEvent(event);
    share();
}

} // namespace sealwright
