#include "ui/sheets.h"

#include <QPointer>

void Sheets::begin(QDialog *dialog, std::function<void()> completion)
{
    dialog->setWindowModality(Qt::WindowModal);
    // Queued: the completion may destroy the window, and the dialog with it, which is then not in use.
    connect(
        dialog, &QDialog::finished, this, [this, dialog] { end(dialog); }, Qt::QueuedConnection);
    m_sheets.append({dialog, std::move(completion)});
    if (m_sheets.size() == 1)
        dialog->open();
}

void Sheets::end(const QDialog *dialog)
{
    if (m_sheets.isEmpty() || m_sheets.first().dialog != dialog)
        return; // dropped in the meantime
    const Sheet ended = m_sheets.takeFirst();
    ended.dialog->deleteLater();
    ended.dialog->parentWidget()->activateWindow(); // not every desktop gives the focus back
    const QPointer<Sheets> alive(this);
    ended.completion();
    if (alive && !m_sheets.isEmpty() && m_sheets.first().dialog->isHidden())
        m_sheets.first().dialog->open();
}

void Sheets::drop()
{
    const QList<Sheet> dropped = std::exchange(m_sheets, {});
    for (const Sheet &sheet : dropped) {
        sheet.dialog->hide();
        sheet.dialog->deleteLater();
    }
}
