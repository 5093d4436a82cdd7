#pragma once

#include "platform/pasteboard.h"

namespace platform {

/// The desktop's clipboard. Needs a QGuiApplication.
class DesktopPasteboard : public Pasteboard {
public:
    QString firstString() const override;
};

} // namespace platform
