#pragma once

#include "platform/applicationhost.h"

#include <QObject>

namespace sealwright {

class LogPrinter;
class WindowOrder;

/// The application as a desktop with widgets shows it. On the `offscreen` platform, where nobody can dismiss
/// it, an application-modal alert that leaves no choice goes to standard error instead, and the application
/// ends with status 1. When the desktop's session ends, so does the application: no window is asked.
class WidgetApplication : public QObject, public platform::ApplicationHost {
    Q_OBJECT

public:
    WidgetApplication(const WindowOrder &order, LogPrinter &printer);

    /// What delivers the files that were opened while launch kept the main thread busy.
    void setPendingOpens(std::function<void()> deliver) { m_pendingOpens = std::move(deliver); }

    /// Has no window that is shown from now on paint itself: where nobody can see one its pixels cost memory
    /// and time alone.
    void paintNothing() { m_paintsNothing = true; }

    /// Says in the window in front where an item lies that the desktop cannot show.
    void sayWhereItLies(const QString &path);

    void deliverPendingOpens() override;
    /// The token goes to the environment, from where the Wayland platform takes it when a window is
    /// activated. The X11 platform has no place for one after its start.
    void setActivationToken(const QString &token) override;
    void activate() override;
    void terminate() override;
    void relaunch() override;
    /// Whether the application is to start anew when it has ended.
    bool isRelaunching() const { return m_isRelaunching; }
    void runToolSettings(platform::Preferences &preferences) override;
    bool isOptionKeyDown() const override;
    void beep() override;
    int runModal(const platform::Alert &alert) override;
    void runPageLayout() override;
    QList<platform::Window *> windowsFrontToBack() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const WindowOrder &m_order;
    LogPrinter &m_printer;
    std::function<void()> m_pendingOpens;
    int m_exitStatus = 0;
    bool m_paintsNothing = false;
    bool m_isRelaunching = false;
};

} // namespace sealwright
