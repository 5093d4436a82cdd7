#pragma once

#include <QList>

class WidgetWindow;

namespace platform {
class Window;
}

/// The document windows and their order. Main thread.
class WindowOrder {
public:
    void bringToFront(WidgetWindow &window)
    {
        remove(window);
        m_windows.prepend(&window);
    }
    void remove(WidgetWindow &window) { m_windows.removeOne(&window); }
    /// Those on screen, front to back: not those that are minimised.
    QList<platform::Window *> frontToBack() const;

private:
    QList<WidgetWindow *> m_windows;
};
