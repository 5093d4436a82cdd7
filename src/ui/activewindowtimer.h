#pragma once

#include <QTimer>

#include <functional>

class QWidget;

namespace sealwright {

/// Ticks for a widget that is on screen in the active window, as long as there is something to tick for. Of
/// fifty windows that wait for hours, none may cost the processor anything. Main thread.
class ActiveWindowTimer : public QObject {
    Q_OBJECT

public:
    /// For a widget that outlives it; the interval is in milliseconds.
    ActiveWindowTimer(QWidget &widget, int interval, const std::function<void()> &tick);

    /// Whether there is something to tick for, as at the beginning.
    void setIsWanted(bool isWanted);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void startOrStop();

    QWidget &m_widget;
    QTimer m_timer;
    bool m_isWanted = true;
};

} // namespace sealwright
