#include "ui/activewindowtimer.h"

#include <QEvent>
#include <QWidget>

namespace sealwright {

ActiveWindowTimer::ActiveWindowTimer(QWidget &widget, int interval, const std::function<void()> &tick)
    : m_widget(widget)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, tick);
    widget.installEventFilter(this);
}

void ActiveWindowTimer::setIsWanted(bool isWanted)
{
    m_isWanted = isWanted;
    startOrStop();
}

bool ActiveWindowTimer::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
    case QEvent::Show:
    case QEvent::Hide:
        startOrStop();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void ActiveWindowTimer::startOrStop()
{
    if (!m_isWanted || !m_widget.isVisible() || !m_widget.isActiveWindow())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start();
}

} // namespace sealwright
