#include "ui/steplistview.h"

#include "notarization/archivesteps.h"
#include "signing/entitlements.h"

#include "ui/named.h"
#include "ui/steplistmodel.h"
#include "ui/steprowdelegate.h"

#include <QEvent>
#include <QPainter>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int interval = 1000; // milliseconds
constexpr int usualRows = 13; // an app's steps and the line about the polls
constexpr int fewestRows = 3;
constexpr int margin = 12; // pixels round what stands there without steps

} // namespace

StepListView::StepListView(const StepList &steps, QWidget *parent)
    : QListView(parent)
    , m_model(new StepListModel(steps, this))
    // A new picture and no more: nobody wants to be told of each second.
    , m_timer(*this, interval, [this] { update(m_model->running()); })
{
    named(this, u"stepList"_s, tr("Steps"));
    setModel(m_model);
    setItemDelegate(new StepRowDelegate(this));
    setFrameShape(QFrame::NoFrame);
    viewport()->setBackgroundRole(QPalette::Window);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrap(true); // so that the rows are laid out anew at another width
    connect(&steps, &Observable::changed, this, [this, &steps] { follow(steps); });
    m_timer.setIsWanted(m_model->running().isValid());
    offerToKeyboard();
}

/// Without a step there is nothing to go to.
void StepListView::offerToKeyboard()
{
    setFocusPolicy(m_model->rowCount() > 0 ? Qt::StrongFocus : Qt::NoFocus);
}

QSize StepListView::sizeFor(const QString &name, int rows) const
{
    return {StepRowDelegate::widthFor(name, font()) + verticalScrollBar()->sizeHint().width(),
            rows * StepRowDelegate::heightOfOneLine(font())};
}

QSize StepListView::sizeHint() const
{
    return sizeFor(stepName(step::makeDiskImageWithDropDMG), usualRows); // the longest name
}

QSize StepListView::minimumSizeHint() const
{
    const QString longestWord = stepName(step::saveEntitlements).section(u' ', -1);
    return sizeFor(longestWord, fewestRows);
}

void StepListView::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    if (m_model->rowCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignTop | Qt::AlignHCenter | Qt::TextWordWrap,
                     tr("The steps of a run stand here while it goes on, and stay when it has ended."));
}

void StepListView::follow(const StepList &steps)
{
    scrollTo(steps.wait() ? m_model->index(m_model->rowCount() - 1) : m_model->running());
    m_timer.setIsWanted(m_model->running().isValid());
    offerToKeyboard();
}

bool StepListView::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate)
        viewport()->update(); // the time that has passed meanwhile
    return QListView::event(event);
}

} // namespace sealwright
