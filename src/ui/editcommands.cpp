#include "ui/editcommands.h"

#include "ui/framewindow.h"
#include "ui/widgetwindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

EditCommands::EditCommands(FrameWindow &frame, QMenu &menu)
    : QObject(&menu)
    , m_frame(frame)
    , m_cut(add(menu, u"Cu&t"_s, QKeySequence::Cut, "cut"))
    , m_copy(add(menu, u"&Copy"_s, QKeySequence::Copy, "copy"))
    , m_paste(add(menu, u"&Paste"_s, QKeySequence::Paste, "paste"))
    , m_selectAll(add(menu, u"Select &All"_s, QKeySequence::SelectAll, "selectAll"))
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        const bool isText = qobject_cast<QLineEdit *>(now) || qobject_cast<QPlainTextEdit *>(now);
        if (isText && isOfFrame(*now))
            m_lastEditor = now;
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
        if (QWidget *const target = editor())
            QMetaObject::invokeMethod(target, slot);
    });
}

bool EditCommands::isOfFrame(const QWidget &text) const
{
    const QWidget *const top = text.window();
    const QWidget *const page = top->parentWidget(); // if it is a sheet
    return top == &m_frame || (page && page->window() == &m_frame);
}

/// The text that the items act on; null if the last one is out of sight or out of reach.
QWidget *EditCommands::editor() const
{
    const QWidget *const sheet = m_frame.selected().sheet();
    const QWidget *const top = sheet ? sheet : &m_frame;
    return m_lastEditor && m_lastEditor->isVisible() && m_lastEditor->window() == top ? m_lastEditor.get()
                                                                                      : nullptr;
}

void EditCommands::showWhatIsPossible()
{
    m_cut->setEnabled(isEditable() && hasSelection());
    m_copy->setEnabled(hasSelection());
    const QMimeData *const clipboard = QApplication::clipboard()->mimeData(); // null where it holds nothing
    m_paste->setEnabled(isEditable() && clipboard && clipboard->hasText());
    m_selectAll->setEnabled(editor());
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
