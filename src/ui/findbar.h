#pragma once

#include <QList>
#include <QWidget>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QToolButton;

namespace sealwright {

/// Finds words in a text, without regard to the case, and selects what it finds. Hidden until it is asked
/// for; Escape puts it away and gives the text the keyboard focus.
class FindBar : public QWidget {
    Q_OBJECT

public:
    explicit FindBar(QPlainTextEdit &text, QWidget *parent = nullptr);

    /// Where the words are typed, the first of its parts.
    QWidget *words() const;
    /// Comes up with what is selected in the text, if that lies in one line.
    void open();
    /// Selects the next place behind the selection; after the last one the first. The other way round before
    /// it. Without words to look for the bar comes up.
    void findNext();
    void findPrevious();

Q_SIGNALS:
    /// The text's selection is a place that has been found.
    void found();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    enum class Direction { forward, backward };

    void findWhileTyping();
    void find(Direction direction);
    void tellFound();
    QString placeText() const;
    void putAway();

    QPlainTextEdit &m_text;
    QLineEdit *m_words;
    QLabel *m_result;
    QList<QToolButton *> m_buttons;
};

} // namespace sealwright
