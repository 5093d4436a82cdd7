#pragma once

#include "ui/activewindowtimer.h"

#include <QProgressBar>

namespace sealwright {

/// A bar that says that something goes on. Where it is not known for how long, it moves, in the active window
/// alone and a few times a second.
class BusyBar : public QProgressBar {
    Q_OBJECT

public:
    explicit BusyBar(QWidget *parent = nullptr);

    /// So many of all parts are done; 0 of 0 where nobody knows.
    void showParts(qint64 done, qint64 all);
    /// Nothing goes on although the bar is on show.
    void setIsStill(bool isStill);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void makeStep();
    bool isMeasured() const { return maximum() > minimum(); }
    QRectF pieceOf(const QRectF &groove) const;

    ActiveWindowTimer m_timer;
    int m_step = 0;
    bool m_isStill = false;
};

} // namespace sealwright
