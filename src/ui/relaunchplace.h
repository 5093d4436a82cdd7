#pragma once

class QWidget;

namespace platform {
class Preferences;
}

namespace sealwright {

/// Has the window stay where it is when the application starts anew. Main thread.
namespace relaunchplace {

/// To be called before the new start, with a widget of the window that is meant.
void remember(platform::Preferences &preferences, const QWidget &widget);

/// Puts a window that is not on screen yet where one was before a new start, once. Nothing if there was none,
/// or if no screen is there any more.
void takeUp(platform::Preferences &preferences, QWidget &window);

} // namespace relaunchplace

} // namespace sealwright
