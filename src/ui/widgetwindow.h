#pragma once

#include "document/windowfactory.h"
#include "ui/aboutwindow.h"
#include "ui/documentpage.h"
#include "ui/panelfolder.h"
#include "ui/setupbanner.h"
#include "ui/sheets.h"

#include <QPointer>

namespace sealwright {

class FrameWindow;
class LogPrinter;
class WindowOrder;

/// A document's window made of widgets: a page that is in one frame or another, from its first day to its
/// last. Once closed it stays closed: it takes what a workflow that still runs puts into it, and shows
/// nothing of it.
class WidgetWindow : public platform::Window {
public:
    WidgetWindow(MainWinController &document, WindowOrder &order, LogPrinter &printer,
                 PanelFolder &panelFolder);
    ~WidgetWindow() override;

    QString title() const override { return m_page.windowTitle(); }
    void setTitle(const QString &title) override { m_page.setWindowTitle(title); }
    void setSubtitle(const QString &subtitle) override { m_page.setStatusWord(subtitle); }
    void setTabbingMode(platform::TabbingMode mode) override { m_tabbingMode = mode; }
    void show() override;
    platform::TabGroup &tabGroup() const override;
    QRect frame() const override;
    void setFrame(const QRect &frame) override;
    platform::QDRect boundsAsQDRect() const override;
    void setBoundsAsQDRect(const platform::QDRect &bounds) override;
    void orderAbove(qint64 windowNumber) override;
    void endEditing() override;
    [[nodiscard]] bool makeNothingFirstResponder() override;
    /// A sheet that is up has to be answered first, whoever closes the window.
    void performClose() override;
    void close() override;
    void beginSheet(const platform::Alert &alert, std::function<void(int)> completion) override;
    void beginSheetNamed(const QString &interfaceName, std::function<void(int)> completion) override;
    void endSheet(int returnCode) override;
    void beginOpenPanel(const platform::OpenPanel &panel,
                        std::function<void(const QUrl &)> completion) override;
    void printLog() override;
    /// Asks where to, and writes the text of the log there, all of it whatever is in sight.
    void saveLog();
    /// Leads the person to what a first submission needs.
    void beginSetup(SetupRoad road);
    /// Where nothing else can show the item to the person.
    void sayWhereItLies(const QString &path);
    /// Attaches a dialog of this window's own, which it takes over.
    void beginDialog(QDialog &dialog, std::function<void()> completion);
    void setDelegate(Delegate delegate) override { m_delegate = std::move(delegate); }

    bool hasSheet() const { return !m_sheets.isEmpty(); }
    /// Null if there is none.
    QDialog *sheet() const { return m_sheets.current(); }
    const Sheets &sheets() const { return m_sheets; }
    DocumentPage &page() { return m_page; }
    const DocumentPage &page() const { return m_page; }
    /// The frame that the page is in.
    FrameWindow *frameWindow() const;
    /// The same as a widget.
    QWidget &widget();

private:
    void insistOnSheet();
    void beginOwnPanel(const platform::OpenPanel &panel, std::function<void(const QUrl &)> completion);
    void beginDesktopPanel(const platform::OpenPanel &panel, std::function<void(const QUrl &)> completion);
    void saveLogByOurs();
    void saveLogByTheDesktop();
    QString nameOfLog() const;
    void writeLog(const QString &path);
    QRect place() const;
    void setPlace(const QRect &place);

    MainWinController &m_document;
    WindowOrder &m_order;
    LogPrinter &m_printer;
    PanelFolder &m_panelFolder;
    DocumentPage m_page;
    Sheets m_sheets{m_page};
    QPointer<QDialog> m_namedSheet;
    Delegate m_delegate;
    platform::TabbingMode m_tabbingMode = platform::TabbingMode::automatic;
    bool m_isClosed = false;
};

/// Outlives the windows that it makes.
class WidgetWindowFactory : public WindowFactory {
public:
    WidgetWindowFactory(WindowOrder &order, LogPrinter &printer)
        : m_order(order)
        , m_printer(printer)
    {
    }
    [[nodiscard]] std::unique_ptr<platform::Window> makeWindow(MainWinController &document) override
    {
        return std::make_unique<WidgetWindow>(document, m_order, m_printer, m_panelFolder);
    }
    [[nodiscard]] std::unique_ptr<platform::Panel> makeAboutPanel(AboutController &controller) override
    {
        return std::make_unique<AboutWindow>(controller);
    }

private:
    WindowOrder &m_order;
    LogPrinter &m_printer;
    PanelFolder m_panelFolder;
};

} // namespace sealwright
