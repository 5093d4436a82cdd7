#include "ui/framewindow.h"

#include "ui/icons.h"
#include "ui/mainmenu.h"
#include "ui/mnemonic.h"
#include "ui/runsign.h"
#include "ui/tabbar.h"
#include "ui/toplevel.h"
#include "ui/widgetwindow.h"
#include "ui/windoworder.h"

#include <QAction>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QStyle>
#include <QWindow>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr QSize firstSize{1000, 760};
constexpr int titleBarHeight = 40; // about what a desktop adds on top
constexpr QPoint nextWindow{28, 28}; // so far from the one that it came out of that both are seen
constexpr QPoint grip{80, 20}; // where in a frame of its own the pointer holds a tab that was dragged out

QRect globalRect(const QWidget &widget)
{
    return {widget.mapToGlobal(QPoint(0, 0)), widget.size()};
}

/// The place nearest to that one at which all of the window can be seen, as far as the screen has room.
QPoint onScreen(QPoint place, QSize size)
{
    const QScreen *const screen = QGuiApplication::screenAt(place + grip);
    if (!screen)
        return place;
    const QRect room = screen->availableGeometry();
    return {std::clamp(place.x(), room.left(), std::max(room.left(), room.right() + 1 - size.width())),
            std::clamp(place.y(), room.top(), std::max(room.top(), room.bottom() + 1 - size.height()))};
}

} // namespace

FrameWindow::FrameWindow(WindowOrder &order)
    : m_order(order)
    , m_tabs(new TabWidget(this))
{
    setCentralWidget(m_tabs);
    addTabCommands();
    new MainMenu(*this);
    resize(firstSize.boundedTo(screen()->availableSize() - QSize(0, titleBarHeight)));
    connect(m_tabs, &TabWidget::currentChanged, this, [this](int index) {
        updateSelectedPageAlone();
        if (index >= 0)
            restoreFocus();
        Q_EMIT tabsChanged();
    });
    connect(this, &FrameWindow::tabsChanged, this, &FrameWindow::showTabs);
    connect(m_tabs, &TabWidget::tabCloseRequested, this,
            [this](int index) { m_windows.at(index)->performClose(); });
    connect(&m_tabs->tabs(), &TabBar::tabMoved, this, [this](int from, int to) { m_windows.move(from, to); });
    connect(&m_tabs->tabs(), &TabBar::tabDraggedOut, this,
            [this](int index, QPoint position) { dropTab(*m_windows.at(index), position); });
}

void FrameWindow::addTabCommands()
{
    const auto add = [this](const QString &text, const QList<QKeySequence> &shortcuts,
                            void (FrameWindow::*command)()) {
        auto *const action = new QAction(text, this);
        action->setShortcuts(shortcuts);
        connect(action, &QAction::triggered, this, command);
        connect(this, &FrameWindow::tabsChanged, action, [this, action] { action->setEnabled(count() > 1); });
        addAction(action);
    };
    add(tr("Show &Previous Tab"), {QKeySequence(u"Ctrl+PgUp"_s), QKeySequence(u"Ctrl+Shift+Tab"_s)},
        &FrameWindow::selectPreviousTab);
    add(tr("Show &Next Tab"), {QKeySequence(u"Ctrl+PgDown"_s), QKeySequence(u"Ctrl+Tab"_s)},
        &FrameWindow::selectNextTab);
    add(tr("Move Tab &Left"), {QKeySequence(u"Ctrl+Shift+PgUp"_s)}, &FrameWindow::moveTabLeft);
    add(tr("Move Tab &Right"), {QKeySequence(u"Ctrl+Shift+PgDown"_s)}, &FrameWindow::moveTabRight);
    add(tr("&Move Tab to New Window"), {}, &FrameWindow::moveTabToOwnFrame);
}

// The group

QList<platform::Window *> FrameWindow::windows() const
{
    return {m_windows.cbegin(), m_windows.cend()};
}

platform::Window *FrameWindow::selectedWindow() const
{
    return &selected();
}

WidgetWindow &FrameWindow::selected() const
{
    return *m_windows.at(m_tabs->currentIndex());
}

void FrameWindow::setSelectedWindow(platform::Window &window)
{
    m_tabs->setCurrentIndex(m_tabs->indexOf(&static_cast<WidgetWindow &>(window).page()));
}

void FrameWindow::removeWindow(platform::Window &window)
{
    if (count() < 2)
        return;
    FrameWindow &own = moveToOwnFrame(static_cast<WidgetWindow &>(window));
    m_order.bringToFront(own);
    // Later, so that a window that goes on into another group at once does not flash up.
    QMetaObject::invokeMethod(
        &own, [&own] { own.setVisible(own.m_order.contains(own)); }, Qt::QueuedConnection);
}

void FrameWindow::insertWindow(platform::Window &window, qsizetype atIndex)
{
    auto &inserted = static_cast<WidgetWindow &>(window);
    if (m_windows.contains(&inserted))
        return moveWithin(inserted, atIndex);
    inserted.page().rememberFocus();
    if (FrameWindow *const previous = inserted.frameWindow())
        previous->release(inserted);
    const auto index = std::clamp<qsizetype>(atIndex, 0, count());
    m_windows.insert(index, &inserted);
    m_tabs->insertTab(int(index), &inserted.page(), {});
    follow(inserted);
    if (&inserted == &selected())
        restoreFocus();
    Q_EMIT tabsChanged();
}

// A switch of tabs stops the updates of every page that has them on, with all that is in it: with two hundred
// pages nobody wants to wait for that.
void FrameWindow::updateSelectedPageAlone()
{
    for (qsizetype index = 0; index < count(); ++index)
        m_windows.at(index)->page().setUpdatesEnabled(index == m_tabs->currentIndex());
}

void FrameWindow::moveWithin(WidgetWindow &window, qsizetype index)
{
    const auto last = std::clamp<qsizetype>(index, 0, count() - 1);
    m_tabs->tabs().moveTab(m_tabs->indexOf(&window.page()), int(last));
}

void FrameWindow::release(WidgetWindow &window)
{
    const qsizetype index = m_windows.indexOf(&window);
    m_windows.removeAt(index);
    window.page().disconnect(this);
    window.sheets().disconnect(this);
    m_tabs->removeTab(int(index));
    window.page().setUpdatesEnabled(true);
    window.page().setParent(nullptr);
    if (count() > 0) {
        Q_EMIT tabsChanged();
        return;
    }
    m_order.remove(*this);
    hide();
    deleteLater();
}

FrameWindow &FrameWindow::moveToOwnFrame(WidgetWindow &window)
{
    if (count() < 2)
        return *this;
    auto *const own = new FrameWindow(m_order);
    own->resize(size());
    if (isVisible())
        own->move(pos());
    own->insertWindow(window, 0);
    return *own;
}

void FrameWindow::putAway(WidgetWindow &window)
{
    FrameWindow &own = moveToOwnFrame(window);
    m_order.remove(own);
    own.hide();
}

// On screen

void FrameWindow::comeToFront()
{
    toplevel::bringToFront(*this);
    m_order.bringToFront(*this);
}

void FrameWindow::follow(WidgetWindow &window)
{
    const auto show = [this, &window] { showTab(int(m_windows.indexOf(&window))); };
    connect(&window.page(), &QWidget::windowTitleChanged, this, show);
    connect(&window.sheets(), &Sheets::changed, this, show);
    connect(&window.page(), &DocumentPage::progressed, this, show);
}

void FrameWindow::showTabs()
{
    for (int index = 0; index < count(); ++index)
        showTab(index);
}

QString FrameWindow::describe(const WidgetWindow &window, bool isOnShow) const
{
    const QString progress = window.page().progress();
    if (window.hasSheet() && !isOnShow)
        return tr("%1 – waits for an answer").arg(window.title());
    return progress.isEmpty() ? window.title() : tr("%1 – %2").arg(window.title(), progress);
}

/// A sheet hides with its page; the tab says that there is one, or else how the run stands.
QIcon FrameWindow::signOf(const WidgetWindow &window, bool isOnShow) const
{
    if (window.hasSheet() && !isOnShow)
        return icons::of(icons::Command::help);
    const auto state = window.page().runState();
    const int side = style()->pixelMetric(QStyle::PM_TabBarIconSize, nullptr, m_tabs);
    return state ? QIcon(runsign::pixmap(*state, palette(), side, devicePixelRatioF())) : QIcon();
}

/// What is as it was is left alone: each change lays out all tabs.
void FrameWindow::showTab(int index)
{
    if (index < 0)
        return;
    const WidgetWindow &window = *m_windows.at(index);
    const bool isOnShow = index == m_tabs->currentIndex();
    const QString description = describe(window, isOnShow);
    if (const QString text = withoutMnemonic(window.title()); m_tabs->tabText(index) != text)
        m_tabs->setTabText(index, text);
    showSign(index, window, isOnShow);
    if (m_tabs->tabToolTip(index) != description) {
        m_tabs->setTabToolTip(index, description);
        m_tabs->tabs().setAccessibleTabName(index, description);
    }
    if (!isOnShow)
        return;
    setWindowTitle(window.title().replace(u"[*]"_s, u"[*][*]"_s)); // which would stand for a mark
    if (windowHandle()) // for the desktop's list of windows; the title itself stays the document's
        windowHandle()->setTitle(description);
}

void FrameWindow::showSign(int index, const WidgetWindow &window, bool isOnShow)
{
    const bool waits = window.hasSheet() && !isOnShow;
    const auto state = window.page().runState();
    const QString sign = waits ? u"question"_s : state ? stateName(*state) : QString();
    if (m_tabs->tabs().tabData(index).toString() == sign)
        return;
    m_tabs->tabs().setTabData(index, sign);
    m_tabs->setTabIcon(index, signOf(window, isOnShow));
}

void FrameWindow::drawSignsAnew()
{
    for (int index = 0; index < count(); ++index) {
        m_tabs->tabs().setTabData(index, {});
        showTab(index);
    }
}

void FrameWindow::restoreFocus()
{
    if (!m_tabs->tabs().hasFocus())
        selected().page().restoreFocus();
}

int FrameWindow::tallest() const
{
    return screen()->availableSize().height();
}

/// Who makes the window that tall has it that tall.
void FrameWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    if (event->oldSize().height() != height())
        m_isForced = height() > tallest() && height() == minimumHeight();
}

bool FrameWindow::event(QEvent *event)
{
    const bool isTaken = QMainWindow::event(event);
    if (event->type() == QEvent::LayoutRequest && m_isForced)
        QMetaObject::invokeMethod(this, &FrameWindow::comeBackToScreen, Qt::QueuedConnection);
    return isTaken;
}

/// What has come up within takes the room of the other parts, but they tell so only a moment later.
void FrameWindow::comeBackToScreen()
{
    if (m_isForced && minimumHeight() < height())
        resize(width(), qMax(minimumHeight(), tallest()));
}

void FrameWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // each document decides for itself
    for (WidgetWindow *const window : QList(m_windows))
        window->performClose();
}

void FrameWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        drawSignsAnew();
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && m_order.contains(*this))
        m_order.bringToFront(*this);
}

// Tabs, as a person moves them

void FrameWindow::selectNeighbour(qsizetype distance)
{
    m_tabs->setCurrentIndex(int((m_tabs->currentIndex() + count() + distance) % count()));
}

/// A tab at the end stays there.
void FrameWindow::moveTab(int distance)
{
    moveWithin(selected(), m_tabs->currentIndex() + distance);
}

void FrameWindow::moveTabToOwnFrame()
{
    FrameWindow &own = moveToOwnFrame(selected());
    if (&own != this)
        own.move(pos() + nextWindow);
    own.comeToFront();
}

void FrameWindow::mergeAllFrames()
{
    const auto frames = m_order.framesFrontToBack();
    for (FrameWindow *const frame : frames) {
        if (frame == this)
            continue;
        for (WidgetWindow *const window : QList(frame->m_windows))
            insertWindow(*window, count());
    }
}

void FrameWindow::dropTab(WidgetWindow &window, QPoint globalPosition)
{
    const auto frames = m_order.framesFrontToBack();
    const auto under =
        std::find_if(frames.cbegin(), frames.cend(), [globalPosition](const FrameWindow *frame) {
            return frame->frameGeometry().contains(globalPosition);
        });
    if (under != frames.cend() && (*under)->takesTabsAt(globalPosition)) {
        (*under)->insertWindow(window, (*under)->placeAt(globalPosition));
        return window.show();
    }
    FrameWindow &own = moveToOwnFrame(window);
    own.move(onScreen(globalPosition - grip, own.frameGeometry().size()));
    window.show();
}

bool FrameWindow::takesTabsAt(QPoint globalPosition) const
{
    const QWidget &target = count() > 1 ? static_cast<QWidget &>(m_tabs->tabs()) : *menuBar();
    QRect wholeWidth = globalRect(target);
    wholeWidth.setLeft(globalRect(*this).left());
    wholeWidth.setRight(globalRect(*this).right());
    return wholeWidth.contains(globalPosition);
}

qsizetype FrameWindow::placeAt(QPoint globalPosition) const
{
    return count() > 1 ? m_tabs->tabs().placeAt(m_tabs->tabs().mapFromGlobal(globalPosition)) : count();
}

} // namespace sealwright
