#pragma once

namespace platform {

/// A window beside those of the documents, such as the about panel. Main thread.
class Panel {
public:
    virtual ~Panel() = default;

    /// Moves the window to the middle of the screen.
    virtual void center() = 0;
    /// Brings the window on screen, to the front. One that a person has closed comes back as it was.
    virtual void show() = 0;
};

} // namespace platform
