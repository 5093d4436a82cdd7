#pragma once

class QScrollArea;
class QWidget;

/// What windows of all kinds do alike. Main thread.
namespace toplevel {

/// Brings a window on screen, in front of the others, also one that has been put away.
void bringToFront(QWidget &window);

/// Closes a window by Escape and by the desktop's key for it.
void closeByKeys(QWidget &window);

/// Scrolls so that what has the keyboard focus is in sight.
void keepFocusInSight(QScrollArea &area);

} // namespace toplevel
