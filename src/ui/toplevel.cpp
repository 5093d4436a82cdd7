#include "ui/toplevel.h"

#include <QApplication>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QWheelEvent>

namespace sealwright {

namespace {

/// Refuses the wheel for a widget without the focus, so that it goes on to what the widget is in.
class WheelFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const bool isRefused = event->type() == QEvent::Wheel && !static_cast<QWidget *>(watched)->hasFocus();
        if (isRefused)
            event->ignore();
        return isRefused;
    }
};

/// Waits once for its widget to be enabled.
class FocusFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *const widget = static_cast<QWidget *>(watched);
        if (event->type() == QEvent::EnabledChange && widget->isEnabled()) {
            widget->setFocus(Qt::OtherFocusReason);
            deleteLater();
        }
        return false;
    }
};

} // namespace

void toplevel::bringToFront(QWidget &window)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
}

void toplevel::placeOver(QWidget &window, const QWidget *owner)
{
    if (!owner)
        return;
    QRect place(QPoint(), window.size());
    place.moveCenter(owner->window()->frameGeometry().center());
    const QRect screen = owner->screen()->availableGeometry();
    window.move(qMax(screen.left(), qMin(place.left(), screen.right() - place.width())),
                qMax(screen.top(), qMin(place.top(), screen.bottom() - place.height())));
}

int toplevel::widthOfSheet(const QWidget &sheet, int characters)
{
    constexpr int margin = 40; // pixels, at least, beside it
    const int wanted = sheet.fontMetrics().averageCharWidth() * characters;
    const QWidget *const page = sheet.parentWidget();
    return page ? qMin(wanted, qMax(0, page->width() - 2 * margin)) : wanted;
}

void toplevel::closeByKeys(QWidget &window)
{
    for (const QKeySequence &key : {QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)})
        QObject::connect(new QShortcut(key, &window), &QShortcut::activated, &window, &QWidget::close);
}

void toplevel::closeCompletions(const QWidget &window)
{
    QWidget *const popup = QApplication::activePopupWidget();
    const QWidget *const completed = popup ? popup->focusProxy() : nullptr;
    if (completed && window.isAncestorOf(completed))
        popup->close();
}

void toplevel::leaveTheWheelToScrolling(QWidget &widget)
{
    widget.setFocusPolicy(Qt::StrongFocus); // the wheel would give it the focus
    widget.installEventFilter(new WheelFilter(&widget));
}

void toplevel::focusWhenInUse(QWidget &widget)
{
    if (widget.isEnabled())
        widget.setFocus(Qt::OtherFocusReason);
    else
        widget.installEventFilter(new FocusFilter(&widget));
}

void toplevel::keepFocusInSight(QScrollArea &area)
{
    QObject::connect(qApp, &QApplication::focusChanged, &area, [&area](QWidget *, QWidget *now) {
        if (now && area.isAncestorOf(now))
            area.ensureWidgetVisible(now);
    });
}

} // namespace sealwright
