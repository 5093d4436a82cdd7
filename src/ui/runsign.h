#pragma once

#include "document/steplist.h"

#include <QIcon>
#include <QPixmap>
#include <QWidget>

class QPainter;
class QPalette;

namespace sealwright {

/// The signs for the states of steps and of runs, alike in the list of steps, in the banner and on tabs. Main
/// thread.
namespace runsign {

inline constexpr qreal stroke = 0.12; ///< of the sign's side

/// Whether a run has come to a step in that state.
[[nodiscard]] bool isReached(StepState state);
/// In the colour of the state; where that has none, in the colour of the painter's pen.
void draw(QPainter &painter, const QRectF &place, StepState state, const QPalette &palette);
/// As a picture, so many pixels of the interface wide.
[[nodiscard]] QPixmap pixmap(StepState state, const QPalette &palette, int side, qreal pixelRatio);

/// As large as the text of the widget that it stands in.
[[nodiscard]] QIcon icon(StepState state, const QWidget &widget);
/// Of something that was found: "error", or what is only worth a thought.
[[nodiscard]] StepState stateOfFinding(const QString &severity);

} // namespace runsign

/// A sign that stands by itself.
class RunSign : public QWidget {
    Q_OBJECT

public:
    explicit RunSign(QWidget *parent = nullptr);

    void showState(StepState state);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    StepState m_state = StepState::waiting;
};

} // namespace sealwright
