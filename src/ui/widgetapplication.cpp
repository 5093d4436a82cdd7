#include "ui/widgetapplication.h"

#include "platform/posix/spawn.h"
#include "ui/alertbox.h"
#include "ui/logprinter.h"
#include "ui/preferenceswindow.h"
#include "ui/toplevel.h"
#include "ui/widgetwindow.h"
#include "ui/windoworder.h"

#include <QApplication>
#include <QEventLoop>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace sealwright {

WidgetApplication::WidgetApplication(const WindowOrder &order, LogPrinter &printer)
    : m_order(order)
    , m_printer(printer)
{
    qApp->installEventFilter(this);
}

void WidgetApplication::sayWhereItLies(const QString &path)
{
    if (const auto windows = m_order.frontToBack(); !windows.isEmpty())
        dynamic_cast<WidgetWindow &>(*windows.first()).sayWhereItLies(path);
}

void WidgetApplication::deliverPendingOpens()
{
    if (m_pendingOpens)
        m_pendingOpens();
}

void WidgetApplication::setActivationToken(const QString &token)
{
    const auto lock = platform::lockLaunches(); // a launch on a worker reads the environment
    qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

void WidgetApplication::activate()
{
    if (const auto windows = m_order.frontToBack(); !windows.isEmpty())
        windows.first()->show();
}

void WidgetApplication::terminate()
{
    QMetaObject::invokeMethod(
        qApp, [status = m_exitStatus] { QCoreApplication::exit(status); }, Qt::QueuedConnection);
}

void WidgetApplication::relaunch()
{
    m_isRelaunching = true;
    terminate();
}

void WidgetApplication::runToolSettings(platform::Preferences &preferences)
{
    PreferencesWindow settings(preferences);
    settings.setWindowModality(Qt::ApplicationModal);
    settings.showPage(PreferencesWindow::Page::tools);
    QEventLoop untilClosed;
    QObject::connect(&settings, &PreferencesWindow::closed, &untilClosed, &QEventLoop::quit);
    toplevel::bringToFront(settings);
    untilClosed.exec();
}

bool WidgetApplication::isOptionKeyDown() const
{
    return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::AltModifier);
}

void WidgetApplication::beep()
{
    QApplication::beep();
}

int WidgetApplication::runModal(const platform::Alert &alert)
{
    if (alert.buttons.isEmpty() && QGuiApplication::platformName() == "offscreen"_L1) {
        std::fprintf(stderr, "%s\n%s\n", qUtf8Printable(alert.messageText),
                     qUtf8Printable(alert.informativeText));
        m_exitStatus = EXIT_FAILURE;
        return platform::alertFirstButton;
    }
    AlertBox box(alert);
    box.exec();
    return box.answer();
}

void WidgetApplication::runPageLayout()
{
    m_printer.runPageLayout();
}

QList<platform::Window *> WidgetApplication::windowsFrontToBack() const
{
    return m_order.frontToBack();
}

// The application would close its windows first, and stay if one of them did.
bool WidgetApplication::eventFilter(QObject *watched, QEvent *event)
{
    if (m_paintsNothing && event->type() == QEvent::Polish) {
        if (auto *const widget = qobject_cast<QWidget *>(watched); widget && widget->isWindow())
            widget->setUpdatesEnabled(false);
    }
    if (watched != qApp || event->type() != QEvent::Quit)
        return QObject::eventFilter(watched, event);
    event->accept();
    terminate();
    return true;
}

} // namespace sealwright
