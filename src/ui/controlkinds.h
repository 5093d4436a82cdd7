#pragma once

#include "ui/controlstyle.h"

#include <QStyleOption>
#include <QWidget>

namespace sealwright {

/// What the plain controls' looks and their sizes are both told by. Pixels. Main thread.
namespace controlkinds {

inline constexpr int fieldMargin = 4; ///< between the edge of a field and what is in it
inline constexpr int roomForArrow = 18; ///< of a button with a menu

[[nodiscard]] inline bool isRoundSign(const QWidget *widget)
{
    return widget && widget->property(roundSign).toBool();
}

[[nodiscard]] inline bool isFramed(const QStyleOption &option)
{
    const auto *const frame = qstyleoption_cast<const QStyleOptionFrame *>(&option);
    return frame && frame->lineWidth > 0;
}

} // namespace controlkinds

} // namespace sealwright
