#pragma once

#include <QColor>
#include <QPalette>
#include <QRectF>

class QPainter;
class QStyleOption;
class QStyleOptionComboBox;
class QStyleOptionHeader;
class QStyleOptionTab;

namespace sealwright {

/// How the controls look where the desktop has no style of its own: flat, with round corners and one colour
/// for what is meant to be pressed. Each draws into the rectangle of its option. Main thread.
namespace controlpainting {

/// What a button stands for in its window.
enum class Weight { ordinary, primary };

void drawButton(QPainter &painter, const QStyleOption &option, Weight weight);
/// A circle round a single letter.
void drawRoundSign(QPainter &painter, const QStyleOption &option);
void drawField(QPainter &painter, const QStyleOption &option);
void drawCheckBox(QPainter &painter, const QStyleOption &option);
/// The frame of the popup and its arrow, without the title.
void drawComboBox(QPainter &painter, const QStyleOptionComboBox &option, const QRect &arrow);
/// The arrow of a button that opens a menu.
void drawPopupArrow(QPainter &painter, const QStyleOption &option, const QRect &place);
/// The arrow of a column that is sorted, up or down.
void drawSortArrow(QPainter &painter, const QStyleOptionHeader &option, const QRect &place);
/// The frame of a field with its two arrows, without the number.
void drawSpinBox(QPainter &painter, const QStyleOption &option, const QRect &up, const QRect &down);
/// What is behind the chosen row of a list.
void drawChosenRow(QPainter &painter, const QStyleOption &option);
/// What is behind a group of controls.
void drawCard(QPainter &painter, const QStyleOption &option);
void drawTab(QPainter &painter, const QStyleOptionTab &option);
/// The line that tabs stand on, as long as their bar.
void drawBaseOfTabs(QPainter &painter, const QStyleOption &option);
void drawTabClose(QPainter &painter, const QStyleOption &option);
void drawHeading(QPainter &painter, const QStyleOption &option);
/// The piece of a scroll bar that is dragged.
void drawSlider(QPainter &painter, const QStyleOption &option, const QRect &slider);
/// A line round a frame's contents.
void drawFrame(QPainter &painter, const QStyleOption &option);

/// What is written on a button of that weight.
[[nodiscard]] QColor textOf(const QStyleOption &option, Weight weight);

} // namespace controlpainting

} // namespace sealwright
