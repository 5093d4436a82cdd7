#include "ui/letterbutton.h"

#include "ui/mnemonic.h"

#include <QSet>
#include <QStyleOptionButton>

#include <algorithm>

namespace sealwright {

namespace {

/// The positions of the letters in a title, those first that begin a word.
QList<qsizetype> letterPositions(const QString &title)
{
    QList<qsizetype> first;
    QList<qsizetype> others;
    for (qsizetype position = 0; position < title.size(); ++position) {
        if (!title.at(position).isLetterOrNumber())
            continue;
        const bool beginsWord = position == 0 || title.at(position - 1).isSpace();
        (beginsWord ? first : others).append(position);
    }
    return first + others;
}

} // namespace

LetterButton::LetterButton(const QString &title, QWidget *parent)
    : QPushButton(title, parent)
{
}

void LetterButton::assignLetters(const QList<LetterButton *> &buttons)
{
    QSet<QChar> taken;
    for (LetterButton *const button : buttons) {
        const QString letters = button->text().toUpper();
        const auto positions = letterPositions(letters);
        const auto free = std::find_if(positions.cbegin(), positions.cend(), [&](qsizetype position) {
            return !taken.contains(letters.at(position));
        });
        button->setLetter(free == positions.cend() ? -1 : *free);
        if (free != positions.cend())
            taken.insert(letters.at(*free));
    }
}

void LetterButton::setLetter(qsizetype position)
{
    m_letter = position;
    setShortcut(QKeySequence::mnemonic(markedText()));
    update();
}

QString LetterButton::markedText() const
{
    if (m_letter < 0)
        return withoutMnemonic(text());
    return withoutMnemonic(text().left(m_letter)) + u'&' + withoutMnemonic(text().mid(m_letter));
}

void LetterButton::initStyleOption(QStyleOptionButton *option) const
{
    QPushButton::initStyleOption(option);
    option->text = markedText();
}

} // namespace sealwright
