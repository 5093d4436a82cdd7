#pragma once

#include <QFontMetrics>

namespace sealwright {

/// The distances that all windows have in common, and the one height of the controls in a line. Pixels.
namespace spacing {

inline constexpr int near = 2; ///< between something and what explains it
inline constexpr int between = 8; ///< two things side by side
inline constexpr int apart = 16; ///< two things that have nothing to do with each other
inline constexpr int edge = 12; ///< round what stands in a window or a card
inline constexpr int sheetEdge = 16;
inline constexpr int inCell = 6; ///< beside what stands in a cell of a table
inline constexpr int inControl = 7; ///< above and below the text of a control

[[nodiscard]] inline int heightOfControl(const QFontMetrics &metrics)
{
    return metrics.height() + 2 * inControl;
}

} // namespace spacing

} // namespace sealwright
