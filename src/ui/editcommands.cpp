#include "ui/editcommands.h"

#include "ui/framewindow.h"
#include "ui/icons.h"
#include "ui/menuitems.h"
#include "ui/widgetwindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

namespace sealwright {

using icons::Command;

EditCommands::EditCommands(FrameWindow &frame, QMenu &menu)
    : QObject(&menu)
    , m_frame(frame)
{
    add(menu, tr("Cu&t"), QKeySequence::Cut, "cut", [this] {
        return isEditable() && hasSelection();
    }).setIcon(icons::of(Command::cut));
    add(menu, tr("&Copy"), QKeySequence::Copy, "copy", [this] {
        return hasSelection();
    }).setIcon(icons::of(Command::copy));
    add(menu, tr("&Paste"), QKeySequence::Paste, "paste", [this] {
        return isEditable() && canBePasted();
    }).setIcon(icons::of(Command::paste));
    add(menu, tr("Select &All"), QKeySequence::SelectAll, "selectAll", [this] {
        return editor() != nullptr;
    }).setIcon(icons::of(Command::selectAll));
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        const bool isText = qobject_cast<QLineEdit *>(now) || qobject_cast<QPlainTextEdit *>(now);
        if (isText && now->window() == &m_frame)
            m_lastEditor = now;
    });
}

QAction &EditCommands::add(QMenu &menu, const QString &text, const QKeySequence &shortcut, const char *slot,
                           const std::function<bool()> &isPossible)
{
    QAction *const item = menu.addAction(text, shortcut, this, [this, slot] {
        if (QWidget *const target = editor())
            QMetaObject::invokeMethod(target, slot);
    });
    offerWhileOpen(menu, *item, isPossible);
    return *item;
}

/// The text that the items act on; null if the last one is out of sight or out of reach.
QWidget *EditCommands::editor() const
{
    const QWidget *const sheet = m_frame.selected().sheet();
    const QWidget &within = sheet ? *sheet : m_frame;
    const bool isInReach = m_lastEditor && m_lastEditor->isVisible() && within.isAncestorOf(m_lastEditor);
    return isInReach ? m_lastEditor.get() : nullptr;
}

bool EditCommands::canBePasted()
{
    const QMimeData *const clipboard = QApplication::clipboard()->mimeData(); // null where it holds nothing
    return clipboard && clipboard->hasText();
}

bool EditCommands::hasSelection() const
{
    if (const auto *const line = qobject_cast<QLineEdit *>(editor()))
        return line->hasSelectedText();
    const auto *const text = qobject_cast<QPlainTextEdit *>(editor());
    return text && text->textCursor().hasSelection();
}

bool EditCommands::isEditable() const
{
    const auto *const line = qobject_cast<QLineEdit *>(editor());
    return line && !line->isReadOnly();
}

} // namespace sealwright
