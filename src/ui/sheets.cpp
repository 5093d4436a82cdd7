#include "ui/sheets.h"

#include "ui/toplevel.h"

#include <QApplication>
#include <QEvent>
#include <QWindow>

namespace {

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

} // namespace

Sheets::Sheets(QWidget &page)
    : m_page(page)
{
}

void Sheets::begin(QDialog *dialog, std::function<void()> completion)
{
    connect(dialog, &QDialog::finished, this, [this, dialog] {
        toplevel::closeCompletions(*dialog);
        if (!m_sheets.isEmpty() && m_sheets.first().dialog == dialog)
            m_sheets.first().hasEnded = true;
    });
    // Queued: the completion may destroy the page, and the dialog with it, which is then not in use.
    connect(
        dialog, &QDialog::finished, this, [this, dialog] { end(dialog); }, Qt::QueuedConnection);
    m_sheets.append({dialog, std::move(completion)});
    qApp->installEventFilter(this);
    putUp();
    Q_EMIT changed();
}

void Sheets::putUp()
{
    if (m_sheets.isEmpty() || m_sheets.first().hasEnded || !m_page.isVisible())
        return;
    QDialog &dialog = *m_sheets.first().dialog;
    if (dialog.isVisible())
        return;
    lendKeys(dialog);
    dialog.winId(); // makes its window
    dialog.windowHandle()->setTransientParent(m_page.window()->windowHandle()); // which changes with the page
    dialog.show();
}

/// Has the keys of the frame lead from the sheet to other tabs as well.
void Sheets::lendKeys(QDialog &dialog)
{
    for (const auto &action : std::exchange(m_lent, {})) // of the frame in which the page was before
        dialog.removeAction(action);
    for (QAction *const action : m_page.window()->actions()) {
        dialog.addAction(action);
        m_lent.append(action);
    }
}

void Sheets::activate()
{
    if (m_sheets.isEmpty())
        return;
    m_sheets.first().dialog->raise();
    m_sheets.first().dialog->activateWindow();
}

void Sheets::end(const QDialog *dialog)
{
    if (m_sheets.isEmpty() || m_sheets.first().dialog != dialog)
        return; // dropped in the meantime
    const Sheet ended = m_sheets.takeFirst();
    ended.dialog->deleteLater();
    if (m_sheets.isEmpty())
        qApp->removeEventFilter(this);
    Q_EMIT changed();
    if (m_page.isVisible())
        m_page.activateWindow(); // not every desktop gives the focus back
    const QPointer<Sheets> alive(this);
    ended.completion();
    if (alive)
        putUp();
}

void Sheets::drop()
{
    qApp->removeEventFilter(this);
    const QList<Sheet> dropped = std::exchange(m_sheets, {});
    for (const Sheet &sheet : dropped) {
        sheet.dialog->hide();
        sheet.dialog->deleteLater();
    }
    Q_EMIT changed();
}

bool Sheets::eventFilter(QObject *object, QEvent *event)
{
    if (object == &m_page && event->type() == QEvent::Show)
        QMetaObject::invokeMethod(this, &Sheets::putUp, Qt::QueuedConnection);
    else if (object == &m_page && event->type() == QEvent::Hide)
        m_sheets.first().dialog->hide();
    if (!isInput(event->type()) || !isOfPage(object))
        return false;
    if (event->type() == QEvent::MouseButtonPress)
        activate();
    return true;
}

bool Sheets::isOfPage(const QObject *object) const
{
    const auto *const widget = qobject_cast<const QWidget *>(object);
    return widget && (widget == &m_page || m_page.isAncestorOf(widget));
}
