#include "ui/sheets.h"

#include "ui/sheetbackdrop.h"
#include "ui/toplevel.h"

#include <QApplication>
#include <QEvent>

namespace sealwright {

Sheets::Sheets(QWidget &page)
    : m_page(page)
{
    m_page.installEventFilter(this);
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
    if (m_sheets.size() == 1)
        cover();
    putUp();
    Q_EMIT changed();
}

void Sheets::putUp()
{
    if (m_sheets.isEmpty() || m_sheets.first().hasEnded)
        return;
    QDialog &dialog = *m_sheets.first().dialog;
    if (!dialog.isHidden())
        return;
    m_backdrop->hold(dialog);
    if (m_page.isVisible())
        activate();
}

void Sheets::cover()
{
    m_focused = m_page.focusWidget();
    m_tookDrops = m_page.acceptDrops();
    m_page.setAcceptDrops(false);
    setPartsEnabled(false);
    m_backdrop = new SheetBackdrop(m_page);
    place();
    m_backdrop->show();
}

void Sheets::uncover()
{
    delete m_backdrop;
    m_page.setAcceptDrops(m_tookDrops);
    setPartsEnabled(true);
    if (m_focused && m_page.isVisible() && hasStrayedFocus())
        m_focused->setFocus();
}

/// A sheet that goes leaves the keyboard to what is in use: nothing, or what stays so under a sheet.
bool Sheets::hasStrayedFocus() const
{
    const QWidget *const focused = m_page.focusWidget();
    return !focused || (m_uncovered && m_uncovered->isAncestorOf(focused));
}

/// The page's parts, without what stays in use. A control keeps what it has been told itself.
void Sheets::setPartsEnabled(bool areEnabled)
{
    if (areEnabled) {
        for (const QPointer<QWidget> &part : std::exchange(m_disabled, {})) {
            if (part)
                part->setEnabled(true);
        }
        return;
    }
    for (auto *const part : m_page.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
        const bool isNoPart = part == m_backdrop || part->isWindow() || qobject_cast<QDialog *>(part);
        if (isNoPart || isLeft(*part) || !part->isEnabled())
            continue;
        part->setEnabled(false);
        m_disabled.append(part);
    }
}

bool Sheets::isLeft(const QWidget &part) const
{
    return &part == m_uncovered && m_isInUse();
}

void Sheets::heedUse()
{
    if (!m_backdrop)
        return;
    setPartsEnabled(true);
    setPartsEnabled(false);
    place();
}

void Sheets::place()
{
    QRect room = m_page.rect();
    if (m_uncovered && isLeft(*m_uncovered))
        room.setTop(m_uncovered->geometry().bottom() + 1);
    m_backdrop->setGeometry(room);
    m_backdrop->raise();
}

void Sheets::activate()
{
    if (!m_sheets.isEmpty())
        SheetBackdrop::giveKeys(*m_sheets.first().dialog);
}

void Sheets::end(const QDialog *dialog)
{
    if (m_sheets.isEmpty() || m_sheets.first().dialog != dialog)
        return; // dropped in the meantime
    const Sheet ended = m_sheets.takeFirst();
    SheetBackdrop::letGo(*ended.dialog); // since the backdrop may go before it
    ended.dialog->deleteLater();
    if (m_sheets.isEmpty())
        uncover();
    Q_EMIT changed();
    takeBackKeys();
    const QPointer<Sheets> alive(this);
    ended.completion();
    if (alive)
        putUp();
}

/// A menu or a list of completions may have left no window active, or one that only looks so. A window in
/// which somebody works stays as it is.
void Sheets::takeBackKeys()
{
    const QWidget *const active = QApplication::activeWindow();
    if (m_page.isVisible() && (!active || active == m_page.window()))
        m_page.activateWindow();
}

void Sheets::drop()
{
    const QList<Sheet> dropped = std::exchange(m_sheets, {});
    for (const Sheet &sheet : dropped) {
        SheetBackdrop::letGo(*sheet.dialog);
        sheet.dialog->deleteLater();
    }
    if (m_backdrop)
        uncover();
    Q_EMIT changed();
}

bool Sheets::eventFilter(QObject *object, QEvent *event)
{
    const bool concerns = object == &m_page && m_backdrop;
    if (concerns && (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest))
        QMetaObject::invokeMethod(
            m_backdrop, [this] { place(); }, Qt::QueuedConnection);
    else if (concerns && event->type() == QEvent::Show)
        QMetaObject::invokeMethod(
            m_backdrop, [this] { takeKeysOnShow(); }, Qt::QueuedConnection);
    return false;
}

/// Somebody who goes through the tabs by keys goes on doing so.
void Sheets::takeKeysOnShow()
{
    if (!m_page.isVisible())
        return;
    place();
    const QWidget *const focused = m_page.window()->focusWidget();
    if (!focused || focused == m_page.window() || !focused->isVisible() || m_page.isAncestorOf(focused))
        activate();
}

} // namespace sealwright
