#pragma once

#include "document/windowfactory.h"
#include "ui/aboutwindow.h"
#include "ui/documentwindow.h"
#include "ui/sheets.h"

#include <QPointer>

class LogPrinter;
class WindowOrder;

/// A document's window made of widgets. Once closed it stays closed: it takes what a workflow that still runs
/// puts into it, and shows nothing of it.
class WidgetWindow : public platform::Window {
public:
    WidgetWindow(MainWinController &document, WindowOrder &order, LogPrinter &printer);
    ~WidgetWindow() override;

    QString title() const override { return m_widget.windowTitle(); }
    void setTitle(const QString &title) override { m_widget.setWindowTitle(title); }
    void setSubtitle(const QString &subtitle) override { m_widget.setStatusWord(subtitle); }
    /// Kept, without an effect: each document has a window to itself.
    void setTabbingMode(platform::TabbingMode mode) override { m_tabbingMode = mode; }
    platform::TabbingMode tabbingMode() const { return m_tabbingMode; }
    void show() override;
    void endEditing() override;
    [[nodiscard]] bool makeNothingFirstResponder() override;
    void performClose() override;
    void close() override;
    void beginSheet(const platform::Alert &alert, std::function<void(int)> completion) override;
    void beginSheetNamed(const QString &interfaceName, std::function<void(int)> completion) override;
    void endSheet(int returnCode) override;
    void beginOpenPanel(const platform::OpenPanel &panel,
                        std::function<void(const QUrl &)> completion) override;
    void printLog() override;
    void setDelegate(Delegate delegate) override { m_delegate = std::move(delegate); }
    QList<platform::Window *> tabbedWindows() const override { return {}; }

    QWidget &widget() { return m_widget; }
    /// Put away by the person: no longer on screen, but not closed.
    bool isMinimized() const { return m_widget.isMinimized(); }

private:
    MainWinController &m_document;
    WindowOrder &m_order;
    LogPrinter &m_printer;
    DocumentWindow m_widget;
    Sheets m_sheets;
    QPointer<QDialog> m_namedSheet;
    Delegate m_delegate;
    platform::TabbingMode m_tabbingMode = platform::TabbingMode::automatic;
    bool m_isClosed = false;
};

class WidgetWindowFactory : public WindowFactory {
public:
    WidgetWindowFactory(WindowOrder &order, LogPrinter &printer)
        : m_order(order)
        , m_printer(printer)
    {
    }
    [[nodiscard]] std::unique_ptr<platform::Window> makeWindow(MainWinController &document) override
    {
        return std::make_unique<WidgetWindow>(document, m_order, m_printer);
    }
    [[nodiscard]] std::unique_ptr<platform::Panel> makeAboutPanel(AboutController &controller) override
    {
        return std::make_unique<AboutWindow>(controller);
    }

private:
    WindowOrder &m_order;
    LogPrinter &m_printer;
};
