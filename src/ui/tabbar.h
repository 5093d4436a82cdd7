#pragma once

#include <QPointer>
#include <QTabBar>
#include <QTabWidget>

class QLabel;

namespace sealwright {

/// Tabs that can be moved along the bar and, by dragging them off it, out of it. What is dragged out is seen
/// beside the pointer.
class TabBar : public QTabBar {
    Q_OBJECT

public:
    explicit TabBar(QWidget *parent);

    /// Before which tab something would go that is dropped there; local position.
    int placeAt(QPoint position) const;

Q_SIGNALS:
    /// A tab was let go off the bar. It is still in its place.
    void tabDraggedOut(int index, QPoint globalPosition);

protected:
    void tabInserted(int index) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool isOffTheBar(QPoint position) const;
    void beginDraggingOut(const QMouseEvent &event);
    void endDraggingOut();
    void showPicture(QPoint globalPosition);

    bool m_isTabPressed = false;
    bool m_isDraggingOut = false;
    QPointer<QLabel> m_picture; ///< of the page that is dragged out, while it is
};

/// Pages with such tabs. One page alone has no tab.
class TabWidget : public QTabWidget {
    Q_OBJECT

public:
    explicit TabWidget(QWidget *parent);

    TabBar &tabs() const { return *m_tabs; }

private:
    TabBar *m_tabs;
};

} // namespace sealwright
