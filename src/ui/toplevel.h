#pragma once

class QScrollArea;
class QWidget;

namespace sealwright {

/// What windows of all kinds do alike. Main thread.
namespace toplevel {

/// Brings a window on screen, in front of the others, also one that has been put away.
void bringToFront(QWidget &window);

/// Puts a window that is not on screen yet over the middle of another; null leaves its place to the desktop.
void placeOver(QWidget &window, const QWidget *owner);

/// How wide a sheet may be that wants so many characters side by side: no wider than its page has room, which
/// is its parent. Pixels.
[[nodiscard]] int widthOfSheet(const QWidget &sheet, int characters);

/// Closes a window by Escape and by the desktop's key for it.
void closeByKeys(QWidget &window);

/// Closes the list of completions that is open for a field of the window. While one is, Qt takes no notice of
/// the window that becomes active, and that would go on looking as if it were not.
void closeCompletions(const QWidget &window);

/// Has the wheel scroll what the widget is in, unless the widget has the keyboard focus: a wheel that passes
/// over it changes nothing.
void leaveTheWheelToScrolling(QWidget &widget);

/// Gives the widget the keyboard focus: at once, or when a sheet that covers it has gone.
void focusWhenInUse(QWidget &widget);

/// Scrolls so that what has the keyboard focus is in sight.
void keepFocusInSight(QScrollArea &area);

} // namespace toplevel

} // namespace sealwright
