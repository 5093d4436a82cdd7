#include "ui/tabbar.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int widthOfPicture = 280; // pixels
constexpr QPoint besidePointer{12, 12};
constexpr qreal opacity = 0.85;

/// The page that shows, made small, in a window that takes no input.
QLabel *makePicture(const TabBar &tabs)
{
    const auto *const pages = qobject_cast<const QTabWidget *>(tabs.parentWidget());
    QWidget *const page = pages ? pages->currentWidget() : nullptr;
    if (!page)
        return nullptr;
    auto *const picture =
        new QLabel(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput);
    picture->setObjectName(u"draggedTab"_s);
    picture->setAttribute(Qt::WA_ShowWithoutActivating);
    picture->setFrameShape(QFrame::StyledPanel);
    picture->setWindowOpacity(opacity);
    picture->setPixmap(page->grab().scaledToWidth(widthOfPicture, Qt::SmoothTransformation));
    return picture;
}

} // namespace

TabBar::TabBar(QWidget *parent)
    : QTabBar(parent)
{
    setObjectName(u"tabBar"_s);
    setAccessibleName(tr("Tabs"));
    setMovable(true);
    setTabsClosable(true);
    setElideMode(Qt::ElideMiddle);
}

void TabBar::tabInserted(int index)
{
    QTabBar::tabInserted(index);
    for (const ButtonPosition side : {LeftSide, RightSide}) {
        if (QWidget *const button = tabButton(index, side))
            button->setAccessibleName(tr("Close Tab"));
    }
}

int TabBar::placeAt(QPoint position) const
{
    const int tab = tabAt(position);
    if (tab < 0)
        return count();
    return position.x() < tabRect(tab).center().x() ? tab : tab + 1;
}

void TabBar::mousePressEvent(QMouseEvent *event)
{
    QTabBar::mousePressEvent(event);
    m_isTabPressed = event->button() == Qt::LeftButton && tabAt(event->position().toPoint()) >= 0;
}

void TabBar::mouseMoveEvent(QMouseEvent *event)
{
    if (m_isTabPressed && !m_isDraggingOut && isOffTheBar(event->position().toPoint()))
        beginDraggingOut(*event);
    if (m_isDraggingOut)
        showPicture(event->globalPosition().toPoint());
    else
        QTabBar::mouseMoveEvent(event);
}

void TabBar::mouseReleaseEvent(QMouseEvent *event)
{
    m_isTabPressed = false;
    if (!m_isDraggingOut)
        return QTabBar::mouseReleaseEvent(event);
    endDraggingOut();
    Q_EMIT tabDraggedOut(currentIndex(), event->globalPosition().toPoint());
}

void TabBar::keyPressEvent(QKeyEvent *event)
{
    if (m_isDraggingOut && event->key() == Qt::Key_Escape) {
        m_isTabPressed = false;
        return endDraggingOut();
    }
    QTabBar::keyPressEvent(event);
}

bool TabBar::isOffTheBar(QPoint position) const
{
    const int reach = QApplication::startDragDistance();
    return !rect().adjusted(-reach, -reach, reach, reach).contains(position);
}

void TabBar::beginDraggingOut(const QMouseEvent &event)
{
    m_isDraggingOut = true;
    // Ends the drag along the bar, which puts the tab into its place there.
    QMouseEvent release(QEvent::MouseButtonRelease, event.position(), event.globalPosition(), Qt::LeftButton,
                        Qt::NoButton, event.modifiers());
    QTabBar::mouseReleaseEvent(&release);
    setCursor(Qt::DragMoveCursor);
    m_picture = makePicture(*this);
    grabKeyboard(); // for Escape
}

void TabBar::endDraggingOut()
{
    m_isDraggingOut = false;
    delete m_picture;
    releaseKeyboard();
    unsetCursor();
}

void TabBar::showPicture(QPoint globalPosition)
{
    if (!m_picture)
        return;
    m_picture->move(globalPosition + besidePointer);
    m_picture->show();
}

TabWidget::TabWidget(QWidget *parent)
    : QTabWidget(parent)
    , m_tabs(new TabBar(this))
{
    setTabBar(m_tabs);
    setTabBarAutoHide(true);
    setDocumentMode(true);
    setFocusPolicy(Qt::NoFocus); // which it would hand on to its tabs, also where they are out of sight
}

} // namespace sealwright
