#include "ui/windoworder.h"

#include "ui/framewindow.h"

#include <algorithm>

namespace sealwright {

QList<FrameWindow *> WindowOrder::framesFrontToBack() const
{
    QList<FrameWindow *> onScreen;
    std::copy_if(m_frames.cbegin(), m_frames.cend(), std::back_inserter(onScreen),
                 [](const FrameWindow *frame) { return !frame->isMinimized(); });
    return onScreen;
}

QList<platform::Window *> WindowOrder::frontToBack() const
{
    QList<platform::Window *> windows;
    for (const FrameWindow *const frame : framesFrontToBack())
        windows.append(frame->selectedWindow());
    return windows;
}

} // namespace sealwright
