#pragma once

#include <QBasicTimer>
#include <QProgressBar>

/// A bar that says that something goes on, for how long nobody knows. It moves in the active window alone and
/// a few times a second: of fifty windows that wait for hours, none may cost the processor anything.
class BusyBar : public QProgressBar {
    Q_OBJECT

public:
    explicit BusyBar(QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void moveInActiveWindow();

    QBasicTimer m_timer;
    int m_step = 0;
};
