#pragma once

#include "platform/panel.h"
#include "platform/window.h"

#include <memory>

namespace sealwright {

class AboutController;
class MainWinController;

/// Makes windows. Main thread.
class WindowFactory {
public:
    virtual ~WindowFactory() = default;

    /// The window, not yet on screen, with its controls bound to the document's.
    [[nodiscard]] virtual std::unique_ptr<platform::Window> makeWindow(MainWinController &document) = 0;
    /// The about panel, not yet on screen, with its fields bound to the controller's.
    [[nodiscard]] virtual std::unique_ptr<platform::Panel> makeAboutPanel(AboutController &controller) = 0;
};

} // namespace sealwright
