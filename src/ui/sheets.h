#pragma once

#include <QAction>
#include <QDialog>
#include <QList>
#include <QPointer>

#include <functional>

/// The dialogs attached to one page of a window. One is up at a time; the others wait for their turn. While
/// there is one, the page takes no input; other pages and windows do. It hides with its page. Main thread.
class Sheets : public QObject {
    Q_OBJECT

public:
    explicit Sheets(QWidget &page);

    /// Attaches the dialog, a child of the page, and returns at once. The completion is called from the
    /// event loop when the dialog has gone; it may end the life of the page.
    void begin(QDialog *dialog, std::function<void()> completion);

    bool isEmpty() const { return m_sheets.isEmpty(); }
    /// The one that is up or will be when its page shows; null if there is none.
    QDialog *current() const { return m_sheets.isEmpty() ? nullptr : m_sheets.first().dialog; }
    /// Brings the one that is up to the front.
    void activate();

    /// Takes all dialogs away. Their completions are not called.
    void drop();

Q_SIGNALS:
    /// One has been attached or has gone.
    void changed();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    struct Sheet {
        QDialog *dialog;
        std::function<void()> completion;
        bool hasEnded = false; ///< its completion is on the way
    };

    void putUp();
    void lendKeys(QDialog &dialog);
    void end(const QDialog *dialog);
    bool isOfPage(const QObject *object) const;

    QWidget &m_page;
    QList<Sheet> m_sheets; // the first one is up
    QList<QPointer<QAction>> m_lent; ///< to it, by the frame
};
