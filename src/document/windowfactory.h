#pragma once

#include "platform/window.h"

#include <memory>

class MainWinController;

/// Makes the window of a document. Main thread.
class WindowFactory {
public:
    virtual ~WindowFactory() = default;

    /// The window, not yet on screen, with its controls bound to the document's.
    [[nodiscard]] virtual std::unique_ptr<platform::Window> makeWindow(MainWinController &document) = 0;
};
