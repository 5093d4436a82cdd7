#include "ui/runpanes.h"

#include "ui/logpane.h"
#include "ui/sidepane.h"

namespace sealwright {

RunPanes::RunPanes(MainWinController &document, const ItemLook &look, QWidget *parent)
    : QSplitter(Qt::Horizontal, parent)
    , m_log(new LogPane(document, this))
    , m_side(new SidePane(document, look, this))
{
    setChildrenCollapsible(false);
    addWidget(m_log);
    addWidget(m_side);
    setStretchFactor(0, 1);
    connect(m_side, &QTabWidget::currentChanged, this,
            [this](int page) { showPage(page == 0 ? Page::steps : Page::table); });
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
