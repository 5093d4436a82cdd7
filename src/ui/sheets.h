#pragma once

#include <QDialog>
#include <QList>
#include <QPointer>

#include <functional>

namespace sealwright {

class SheetBackdrop;

/// The dialogs attached to one page of a window, each drawn inside of the page, which is dimmed behind it and
/// takes no input meanwhile. One is up at a time; the others wait for their turn. Other pages, the menus and
/// other windows go on as ever. Main thread.
class Sheets : public QObject {
    Q_OBJECT

public:
    explicit Sheets(QWidget &page);

    /// A part of the page that stays in sight and in use above every sheet, as long as it `isInUse`. The page
    /// owns it.
    void leaveUncovered(
        QWidget &part, std::function<bool()> isInUse = [] { return true; })
    {
        m_uncovered = &part;
        m_isInUse = std::move(isInUse);
    }
    /// To be called when that part has come into use, or has gone out of it.
    void heedUse();

    /// Attaches the dialog, a child of the page, and returns at once. The completion is called from the
    /// event loop when the dialog has gone; it may end the life of the page.
    void begin(QDialog *dialog, std::function<void()> completion);

    bool isEmpty() const { return m_sheets.isEmpty(); }
    /// The one that is up or will be when its page shows; null if there is none.
    QDialog *current() const { return m_sheets.isEmpty() ? nullptr : m_sheets.first().dialog; }
    /// Gives the keyboard to the one that is up.
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
    void cover();
    void uncover();
    bool hasStrayedFocus() const;
    bool isLeft(const QWidget &part) const;
    void place();
    void takeKeysOnShow();
    void takeBackKeys();
    void end(const QDialog *dialog);
    void setPartsEnabled(bool areEnabled);

    QWidget &m_page;
    QPointer<QWidget> m_uncovered;
    std::function<bool()> m_isInUse; ///< the part that is left uncovered
    QPointer<SheetBackdrop> m_backdrop; ///< while there is a sheet
    QPointer<QWidget> m_focused; ///< what had the keyboard before the first of them
    bool m_tookDrops = false; ///< the page, before it was covered
    QList<QPointer<QWidget>> m_disabled; ///< the parts of the page
    QList<Sheet> m_sheets; // the first one is up
};

} // namespace sealwright
