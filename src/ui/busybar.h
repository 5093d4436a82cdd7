#pragma once

#include "ui/activewindowtimer.h"

#include <QProgressBar>

/// A bar that says that something goes on, for how long nobody knows. It moves in the active window alone and
/// a few times a second.
class BusyBar : public QProgressBar {
    Q_OBJECT

public:
    explicit BusyBar(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void makeStep();

    ActiveWindowTimer m_timer;
    int m_step = 0;
};
