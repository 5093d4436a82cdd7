#pragma once

#include "platform/window.h"

#include <QMainWindow>

namespace sealwright {

class TabWidget;
class WidgetWindow;
class WindowOrder;

/// A top-level window that holds the windows of one or more documents as its pages, with tabs if there are
/// more than one. Lives as long as it has a page. Main thread.
class FrameWindow : public QMainWindow, public platform::TabGroup {
    Q_OBJECT

public:
    explicit FrameWindow(WindowOrder &order);

    QList<platform::Window *> windows() const override;
    platform::Window *selectedWindow() const override;
    void setSelectedWindow(platform::Window &window) override;
    void removeWindow(platform::Window &window) override;
    void insertWindow(platform::Window &window, qsizetype atIndex) override;

    /// Brings the frame on screen, in front of the others.
    void comeToFront();
    /// Takes the window off the screen: into a frame of its own, which is hidden.
    void putAway(WidgetWindow &window);
    /// Lets go of a window that ends. The frame ends with its last one.
    void release(WidgetWindow &window);

    qsizetype count() const { return m_windows.size(); }
    WidgetWindow &selected() const;

    void selectNextTab() { selectNeighbour(1); }
    void selectPreviousTab() { selectNeighbour(-1); }
    void moveTabLeft() { moveTab(-1); }
    void moveTabRight() { moveTab(1); }
    void moveTabToOwnFrame();
    /// Gathers the tabs of all frames on screen in this one.
    void mergeAllFrames();
    /// Takes a tab that was dragged there: to another frame's tabs, or else to a frame of its own.
    void dropTab(WidgetWindow &window, QPoint globalPosition);

Q_SIGNALS:
    /// Another window shows, or the number of tabs has changed.
    void tabsChanged();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    int tallest() const;
    void comeBackToScreen();
    void addTabCommands();
    void selectNeighbour(qsizetype distance);
    void moveTab(int distance);
    void moveWithin(WidgetWindow &window, qsizetype index);
    FrameWindow &moveToOwnFrame(WidgetWindow &window);
    void follow(WidgetWindow &window);
    void showTabs();
    void showTab(int index);
    void showSign(int index, const WidgetWindow &window, bool isOnShow);
    void drawSignsAnew();
    QString describe(const WidgetWindow &window, bool isOnShow) const;
    QIcon signOf(const WidgetWindow &window, bool isOnShow) const;
    void updateSelectedPageAlone();
    void restoreFocus();
    bool takesTabsAt(QPoint globalPosition) const;
    qsizetype placeAt(QPoint globalPosition) const;

    WindowOrder &m_order;
    bool m_isForced = false; ///< by what is in it to be taller than its screen
    TabWidget *m_tabs;
    QList<WidgetWindow *> m_windows; ///< in the order of the tabs
};

} // namespace sealwright
