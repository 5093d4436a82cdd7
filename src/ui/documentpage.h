#pragma once

#include <QPointer>
#include <QWidget>

class LogView;
class MainWinController;
class QBoxLayout;
class QLabel;
class QPagedPaintDevice;

/// The widgets of one document, bound to its controls. Its window title is the document's. Opening, closing
/// and sheets are its owner's task.
class DocumentPage : public QWidget {
    Q_OBJECT

public:
    explicit DocumentPage(MainWinController &document);

    MainWinController &document() const { return m_document; }
    void setStatusWord(const QString &word);
    /// A page that goes into another frame forgets which of its parts has the keyboard focus, unless it is
    /// told to remember.
    void rememberFocus();
    void restoreFocus();
    /// Puts the text of the log on paper, as it looks here.
    void printLog(QPagedPaintDevice &paper) const;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void addHeader(QBoxLayout &rows);
    QWidget *makeItemName();
    QWidget *makeCancelButton();
    void addLog(QBoxLayout &rows);
    void addCommands(QBoxLayout &rows);
    QWidget *makeStapleButton();
    QWidget *makeSubmitButton();

    MainWinController &m_document;
    QLabel *m_statusWord = nullptr;
    LogView *m_log = nullptr;
    QPointer<QWidget> m_lastFocus;
};
