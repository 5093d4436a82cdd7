#include "ui/sidepane.h"

#include "document/mainwincontroller.h"
#include "ui/controlstyle.h"
#include "ui/examinepane.h"
#include "ui/historypane.h"
#include "ui/issuetable.h"
#include "ui/itemlook.h"
#include "ui/named.h"
#include "ui/outcome.h"
#include "ui/runsign.h"
#include "ui/steppane.h"

#include <QEvent>
#include <QJsonObject>
#include <QTabBar>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int pagesWithSign = 2;
constexpr int besideSign = 4; // pixels between it and its title

} // namespace

SidePane::SidePane(MainWinController &document, const ItemLook &look, QWidget *parent)
    : QTabWidget(parent)
    , m_document(document)
    , m_steps(new StepPane(document, this))
    , m_examination(new ExaminePane(document, look, this))
    , m_issues(new IssueTable(document, this))
    , m_history(new HistoryPane(document, this))
{
    named(this, u"sidePane"_s, tr("Steps and findings"));
    setDocumentMode(true);
    const int side = fontMetrics().height(); // of a sign, which belongs to its title
    setIconSize({side, side});
    // The pane grows to the left: the tabs stay where the pointer has just found one.
    tabBar()->setProperty(tabsAtTheEnd, true);
    addTab(m_steps, tr("Steps"));
    addTab(m_examination, tr("Examine"));
    addTab(m_issues, tr("Issues"));
    addTab(m_history, tr("History"));
    connect(&document.stepList, &Observable::changed, this, &SidePane::followRun);
    connect(&document.serviceIssues, &Observable::changed, this, &SidePane::heedIssues);
    connect(&look, &ItemLook::ended, this, &SidePane::heedLook);
    connect(this, &QTabWidget::currentChanged, this, &SidePane::updateGeometry);
    connect(m_history, &HistoryPane::told, this, [this] { offer(*m_history); });
}

/// As wide as the steps want it: a table has its room once it shows. With room for the signs that come later:
/// a bar that is too short would have buttons to scroll it.
QSize SidePane::sizeHint() const
{
    return {qMax(m_steps->sizeHint().width(), widthOfTabs()), QTabWidget::sizeHint().height()};
}

int SidePane::widthOfTabs() const
{
    const int sign = iconSize().width() + besideSign;
    return tabBar()->sizeHint().width() + (pagesWithSign - int(m_signs.size())) * sign;
}

/// As low as the page that shows can be: where a window is low, the others take no room from the settings.
QSize SidePane::minimumSizeHint() const
{
    int tallest = 0;
    for (int page = 0; page < count(); ++page)
        tallest = qMax(tallest, widget(page)->minimumSizeHint().height());
    const QSize forAll = QTabWidget::minimumSizeHint();
    return {forAll.width(), forAll.height() - tallest + currentWidget()->minimumSizeHint().height()};
}

void SidePane::offer(QWidget &page)
{
    const QWidget *const focused = window()->focusWidget();
    if (!focused || !currentWidget()->isAncestorOf(focused))
        setCurrentWidget(&page);
}

void SidePane::followRun()
{
    const bool hasRun = std::exchange(m_isRunning, m_document.stepList.running() != nullptr);
    if (m_isRunning && !hasRun)
        offer(*m_steps);
}

void SidePane::heedLook(const QJsonObject &examination)
{
    const bool isRefused = examination.value("refused"_L1).toBool();
    const auto state = isRefused ? StepState::failed : StepState::done;
    mark(*m_examination, examination.isEmpty() ? std::nullopt : std::optional(state));
}

void SidePane::heedIssues()
{
    const bool hasErrors = !findingIn(m_document.serviceIssues()).isEmpty();
    mark(*m_issues, hasErrors ? std::optional(StepState::failed) : std::nullopt);
    if (hasErrors)
        offer(*m_issues);
}

void SidePane::mark(QWidget &page, std::optional<StepState> state)
{
    if (state)
        m_signs.insert(&page, *state);
    else
        m_signs.remove(&page);
    drawSign(page);
}

void SidePane::drawSign(const QWidget &page)
{
    const auto state = m_signs.constFind(&page);
    const int side = iconSize().width();
    setTabIcon(indexOf(&page),
               state == m_signs.cend()
                   ? QIcon()
                   : QIcon(runsign::pixmap(*state, palette(), side, devicePixelRatioF())));
}

void SidePane::changeEvent(QEvent *event)
{
    QTabWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    for (auto sign = m_signs.cbegin(); sign != m_signs.cend(); ++sign)
        drawSign(*sign.key());
}

} // namespace sealwright
