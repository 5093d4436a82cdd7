#include "ui/findbar.h"

#include "ui/icons.h"
#include "ui/named.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace sealwright {

using icons::Command;

namespace {

constexpr QChar paragraphSeparator(0x2029);
constexpr int charactersOfWords = 16; // that are seen while they are typed
constexpr int charactersOfResult = 12;

QToolButton *makeButton(QWidget *parent, const QString &text, Command picture, const QString &name,
                        const QString &toolTip)
{
    auto *const button = named(new QToolButton(parent), name, text);
    button->setText(text);
    button->setIcon(icons::of(picture));
    button->setToolTip(toolTip);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

/// The button within the field has neither name nor text of its own.
void nameClearButton(const QLineEdit &field)
{
    for (auto *const button : field.findChildren<QToolButton *>()) {
        button->setAccessibleName(FindBar::tr("Clear"));
        button->setToolTip(FindBar::tr("Empties the field"));
    }
}

} // namespace

FindBar::FindBar(QPlainTextEdit &text, QWidget *parent)
    : QWidget(parent)
    , m_text(text)
    , m_words(named(new QLineEdit(this), u"findField"_s, tr("Find in log")))
    , m_result(new QLabel(this))
{
    m_words->setPlaceholderText(tr("Find in log"));
    m_words->setClearButtonEnabled(true);
    nameClearButton(*m_words);
    m_words->setAcceptDrops(false);
    m_result->setObjectName(u"findResult"_s);
    auto *const previous = makeButton(this, tr("Previous"), Command::findPrevious, u"findPreviousButton"_s,
                                      tr("The place before (Shift+F3)"));
    auto *const next =
        makeButton(this, tr("Next"), Command::findNext, u"findNextButton"_s, tr("The next place (F3)"));
    auto *const done =
        makeButton(this, tr("Done"), Command::close, u"findDoneButton"_s, tr("Puts the search away (Esc)"));
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_words, 1);
    row->addWidget(m_result);
    m_buttons = {previous, next, done};
    for (QToolButton *const button : m_buttons)
        row->addWidget(button);
    connect(m_words, &QLineEdit::textChanged, this, &FindBar::findWhileTyping);
    connect(m_words, &QLineEdit::returnPressed, this, &FindBar::findNext);
    connect(previous, &QToolButton::clicked, this, &FindBar::findPrevious);
    connect(next, &QToolButton::clicked, this, &FindBar::findNext);
    connect(done, &QToolButton::clicked, this, &FindBar::putAway);
    hide();
}

QWidget *FindBar::words() const
{
    return m_words;
}

void FindBar::open()
{
    const QString selected = m_text.textCursor().selectedText();
    show();
    if (!selected.isEmpty() && !selected.contains(paragraphSeparator))
        m_words->setText(selected);
    m_words->setFocus(Qt::ShortcutFocusReason);
    m_words->selectAll();
}

void FindBar::findNext()
{
    find(Direction::forward);
}

void FindBar::findPrevious()
{
    find(Direction::backward);
}

/// Where the words would have no room the buttons are their pictures alone.
void FindBar::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    int needed = fontMetrics().averageCharWidth() * (charactersOfWords + charactersOfResult);
    for (const QToolButton *const button : m_buttons)
        needed += fontMetrics().horizontalAdvance(button->text()) + 3 * button->iconSize().width();
    const auto style = needed <= width() ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly;
    for (QToolButton *const button : m_buttons)
        button->setToolButtonStyle(style);
}

void FindBar::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        return putAway();
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return; // the field has searched, and nothing else is meant
    default:
        QWidget::keyPressEvent(event);
    }
}

void FindBar::findWhileTyping()
{
    // From where the selection begins: a longer word may still fit the place that a shorter one has found.
    QTextCursor cursor = m_text.textCursor();
    cursor.setPosition(cursor.selectionStart());
    m_text.setTextCursor(cursor);
    if (m_words->text().isEmpty())
        m_result->clear();
    else
        find(Direction::forward);
}

void FindBar::find(Direction direction)
{
    if (m_words->text().isEmpty())
        return open();
    const bool isForward = direction == Direction::forward;
    const auto flags = isForward ? QTextDocument::FindFlags() : QTextDocument::FindBackward;
    if (m_text.find(m_words->text(), flags))
        return tellFound();
    const QTextCursor before = m_text.textCursor();
    m_text.moveCursor(isForward ? QTextCursor::Start : QTextCursor::End);
    const bool isFound = m_text.find(m_words->text(), flags);
    if (isFound)
        return tellFound();
    m_text.setTextCursor(before);
    m_result->setText(tr("Not found"));
}

void FindBar::tellFound()
{
    m_result->setText(placeText());
    Q_EMIT found();
}

/// "3 of 12": the place that is selected, among all. Beyond so many, only that there are more.
QString FindBar::placeText() const
{
    constexpr int mostCounted = 1000;
    int count = 0;
    int selected = 0;
    QTextCursor place(m_text.document());
    while (count <= mostCounted && !(place = m_text.document()->find(m_words->text(), place)).isNull()) {
        ++count;
        if (place.selectionStart() == m_text.textCursor().selectionStart())
            selected = count;
    }
    return count > mostCounted ? tr("more than %1").arg(mostCounted)
                               : tr("%1 of %2").arg(selected).arg(count);
}

void FindBar::putAway()
{
    hide();
    m_text.setFocus(Qt::OtherFocusReason);
}

} // namespace sealwright
