#include "document/applicationinterface.h"

#include "document/mainwincontroller.h"

#include <algorithm>

namespace sealwright {

MainWinController *windowController(const ApplicationInterface &application, const platform::Window *window)
{
    const auto &open = application.allControllers();
    const auto found = std::find_if(open.cbegin(), open.cend(), [window](const DocumentPtr &document) {
        return &document->window() == window;
    });
    return found == open.cend() ? nullptr : found->get();
}

} // namespace sealwright
