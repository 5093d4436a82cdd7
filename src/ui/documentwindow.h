#pragma once

#include <QMainWindow>

class LogView;
class MainWinController;
class QBoxLayout;
class QLabel;
class QPagedPaintDevice;

/// The widgets of one document, bound to its controls. Knows what the document offers; opening, closing and
/// sheets are its owner's task.
class DocumentWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit DocumentWindow(MainWinController &document);

    void setStatusWord(const QString &word);
    /// Puts the text of the log on paper, as it looks here.
    void printLog(QPagedPaintDevice &paper) const;

Q_SIGNALS:
    /// A person wants to close the window. It stays until its owner hides it.
    void closeRequested();
    void cameToFront();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void addFileMenu();
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
};
