#pragma once

#include <QList>

namespace platform {
class Window;
}

/// The document windows on screen, front to back. Main thread.
class WindowOrder {
public:
    void bringToFront(platform::Window &window)
    {
        remove(window);
        m_windows.prepend(&window);
    }
    void remove(platform::Window &window) { m_windows.removeOne(&window); }
    const QList<platform::Window *> &frontToBack() const { return m_windows; }

private:
    QList<platform::Window *> m_windows;
};
