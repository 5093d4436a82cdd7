#pragma once

#include <QColor>
#include <QPalette>

namespace sealwright {

/// The colours that the windows have beside those of the palette, and how well they can be told from what is
/// behind them. Contrast is that of the W3C's Web Content Accessibility Guidelines 2.1: from 1, the same, to
/// 21, black on white. Main thread.
namespace theme {

inline constexpr qreal leastOfText = 4.5;
inline constexpr qreal leastOfControls = 3.0;

/// What a colour says.
enum class Meaning { good, bad, caution, underway, quiet };

/// The first colour with that share, from 0 to 1, of the second.
[[nodiscard]] QColor mixed(const QColor &from, const QColor &to, qreal share);
[[nodiscard]] bool isDark(const QPalette &palette);
[[nodiscard]] qreal contrast(const QColor &one, const QColor &other);
/// The colour, made lighter or darker until it has that contrast with the ground.
[[nodiscard]] QColor readable(QColor colour, const QColor &ground, qreal least);
/// The palette, in which every text can be read: hints, and what is off, as well.
[[nodiscard]] QPalette readable(QPalette palette);

/// The colour of a text or sign with that meaning, on a window and on a field.
[[nodiscard]] QColor colourOf(Meaning meaning, const QPalette &palette);
/// The ground of a banner with that meaning, on which the palette's texts can be read.
[[nodiscard]] QColor groundOf(Meaning meaning, const QPalette &palette);
/// What goes round a control.
[[nodiscard]] QColor outline(const QPalette &palette);

} // namespace theme

} // namespace sealwright
