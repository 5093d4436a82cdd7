#pragma once

#include <QList>

namespace platform {
class Window;
}

namespace sealwright {

class FrameWindow;

/// The frames that are on screen or minimised, and their order. Main thread.
class WindowOrder {
public:
    void bringToFront(FrameWindow &frame)
    {
        remove(frame);
        m_frames.prepend(&frame);
    }
    void remove(FrameWindow &frame) { m_frames.removeOne(&frame); }
    bool contains(FrameWindow &frame) const { return m_frames.contains(&frame); }
    /// Those on screen: not those that are minimised.
    QList<FrameWindow *> framesFrontToBack() const;
    /// The window that shows in each of them.
    QList<platform::Window *> frontToBack() const;

private:
    QList<FrameWindow *> m_frames;
};

} // namespace sealwright
