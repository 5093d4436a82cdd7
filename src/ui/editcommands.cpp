#include "ui/editcommands.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

EditCommands::EditCommands(QWidget &window, QMenu &menu)
    : QObject(&menu)
    , m_cut(add(menu, u"Cu&t"_s, QKeySequence::Cut, "cut"))
    , m_copy(add(menu, u"&Copy"_s, QKeySequence::Copy, "copy"))
    , m_paste(add(menu, u"&Paste"_s, QKeySequence::Paste, "paste"))
    , m_selectAll(add(menu, u"Select &All"_s, QKeySequence::SelectAll, "selectAll"))
{
    connect(qApp, &QApplication::focusChanged, this, [this, &window](QWidget *, QWidget *now) {
        const bool isText = qobject_cast<QLineEdit *>(now) || qobject_cast<QPlainTextEdit *>(now);
        if (isText && now->window() == &window)
            m_editor = now;
    });
    connect(&menu, &QMenu::aboutToShow, this, &EditCommands::showWhatIsPossible);
    connect(
        &menu, &QMenu::aboutToHide, this,
        [this] {
            for (QAction *const item : {m_cut, m_copy, m_paste, m_selectAll})
                item->setEnabled(true);
        },
        Qt::QueuedConnection);
}

QAction *EditCommands::add(QMenu &menu, const QString &text, const QKeySequence &shortcut, const char *slot)
{
    return menu.addAction(text, shortcut, this, [this, slot] {
        if (m_editor)
            QMetaObject::invokeMethod(m_editor, slot);
    });
}

void EditCommands::showWhatIsPossible()
{
    m_cut->setEnabled(isEditable() && hasSelection());
    m_copy->setEnabled(hasSelection());
    const QMimeData *const clipboard = QApplication::clipboard()->mimeData(); // null where it holds nothing
    m_paste->setEnabled(isEditable() && clipboard && clipboard->hasText());
    m_selectAll->setEnabled(!m_editor.isNull());
}

bool EditCommands::hasSelection() const
{
    if (const auto *const line = qobject_cast<QLineEdit *>(m_editor))
        return line->hasSelectedText();
    const auto *const text = qobject_cast<QPlainTextEdit *>(m_editor);
    return text && text->textCursor().hasSelection();
}

bool EditCommands::isEditable() const
{
    const auto *const line = qobject_cast<QLineEdit *>(m_editor);
    return line && !line->isReadOnly();
}
