#pragma once

#include <QPushButton>

namespace sealwright {

/// A button with a letter that leads to it by the keyboard and is underlined where the style does so. Its
/// text is its title letter for letter, without a sign for the letter. Main thread.
class LetterButton : public QPushButton {
    Q_OBJECT

public:
    explicit LetterButton(const QString &title, QWidget *parent = nullptr);

    /// Gives each of the buttons in a dialog a letter that none before it has: the first of a word, or else
    /// any. One whose letters are all taken gets none. A title that is changed needs it anew.
    static void assignLetters(const QList<LetterButton *> &buttons);

protected:
    void initStyleOption(QStyleOptionButton *option) const override;

private:
    void setLetter(qsizetype position);
    QString markedText() const;

    qsizetype m_letter = -1; ///< its position in the text
};

} // namespace sealwright
