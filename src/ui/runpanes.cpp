#include "ui/runpanes.h"

#include "ui/logpane.h"
#include "ui/sidepane.h"

namespace sealwright {

namespace {

constexpr int mostOfSteps = 44; // percent of the width

} // namespace

RunPanes::RunPanes(MainWinController &document, const ItemLook &look, QWidget *parent)
    : QSplitter(Qt::Horizontal, parent)
    , m_log(new LogPane(document, this))
    , m_side(new SidePane(document, look, this))
{
    setChildrenCollapsible(false);
    addWidget(m_log);
    addWidget(m_side);
    setStretchFactor(0, 1);
    connect(this, &QSplitter::splitterMoved, this, [this] { m_isChosen = true; });
    connect(m_side, &QTabWidget::currentChanged, this,
            [this](int page) { showPage(page == 0 ? Page::steps : Page::table); });
}

void RunPanes::resizeEvent(QResizeEvent *event)
{
    QSplitter::resizeEvent(event);
    share();
}

/// The log is read, and the steps are looked at.
void RunPanes::share()
{
    if (m_isChosen || m_page != Page::steps)
        return;
    const int most = width() * mostOfSteps / 100;
    const int side = qMin(m_side->sizeHint().width(), qMax(most, m_side->widthOfTabs()));
    setSizes({qMax(0, width() - side - handleWidth()), side});
}

void RunPanes::showPage(Page page)
{
    if (page == m_page)
        return;
    m_sizes.insert(m_page, sizes());
    m_page = page;
    const int half = width() / 2;
    setSizes(m_sizes.value(page, {half, half}));
}

} // namespace sealwright
