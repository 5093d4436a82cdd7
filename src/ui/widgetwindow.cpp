#include "ui/widgetwindow.h"

#include "notarization/providernames.h"
#include "ui/alertbox.h"
#include "ui/itempanel.h"
#include "ui/logprinter.h"
#include "ui/providernamesheet.h"
#include "ui/windoworder.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QPrintDialog>
#include <QPrinter>

WidgetWindow::WidgetWindow(MainWinController &document, WindowOrder &order, LogPrinter &printer)
    : m_document(document)
    , m_order(order)
    , m_printer(printer)
    , m_widget(document)
{
    QObject::connect(&m_widget, &DocumentWindow::closeRequested, &m_sheets, [this] { performClose(); });
    QObject::connect(&m_widget, &DocumentWindow::cameToFront, &m_sheets, [this] {
        if (!m_isClosed)
            m_order.bringToFront(*this);
    });
}

WidgetWindow::~WidgetWindow()
{
    m_order.remove(*this);
    m_sheets.drop();
}

void WidgetWindow::show()
{
    if (m_isClosed)
        return;
    m_widget.setWindowState(m_widget.windowState() & ~Qt::WindowMinimized);
    m_widget.show();
    m_widget.raise();
    m_widget.activateWindow();
    m_order.bringToFront(*this);
}

void WidgetWindow::endEditing()
{
    // What is typed is in the control at once, but for what an input method still composes.
    if (m_widget.isActiveWindow())
        QGuiApplication::inputMethod()->commit();
}

bool WidgetWindow::makeNothingFirstResponder()
{
    if (auto *const widget = m_widget.focusWidget())
        widget->clearFocus();
    return true;
}

void WidgetWindow::performClose()
{
    if (!m_delegate.shouldClose || m_delegate.shouldClose())
        close();
}

void WidgetWindow::close()
{
    if (std::exchange(m_isClosed, true))
        return;
    m_sheets.drop();
    m_order.remove(*this);
    m_widget.hide();
    if (m_delegate.willClose)
        m_delegate.willClose();
}

void WidgetWindow::beginSheet(const platform::Alert &alert, std::function<void(int)> completion)
{
    if (m_isClosed)
        return;
    auto *const box = new AlertBox(alert, &m_widget);
    m_sheets.begin(box, [box, completion = std::move(completion)] { completion(box->answer()); });
}

void WidgetWindow::beginSheetNamed(const QString &interfaceName, std::function<void(int)> completion)
{
    if (m_isClosed || interfaceName != providerNameSheet) // the only one there is
        return;
    m_namedSheet = new ProviderNameSheet(m_document, &m_widget);
    m_sheets.begin(m_namedSheet, [sheet = m_namedSheet.get(), completion = std::move(completion)] {
        completion(sheet->result());
    });
}

void WidgetWindow::endSheet(int returnCode)
{
    if (m_namedSheet)
        m_namedSheet->done(returnCode);
}

void WidgetWindow::beginOpenPanel(const platform::OpenPanel &panel,
                                  std::function<void(const QUrl &)> completion)
{
    if (m_isClosed)
        return;
    auto *const dialog = new ItemPanel(panel, &m_widget);
    m_sheets.begin(dialog,
                   [dialog, completion = std::move(completion)] { completion(dialog->chosenItem()); });
}

void WidgetWindow::printLog()
{
    if (m_isClosed)
        return;
    QPrintDialog *const dialog = m_printer.makeDialog(title(), &m_widget);
    m_sheets.begin(dialog, [this, dialog] {
        if (dialog->result() == QDialog::Accepted)
            m_widget.printLog(*dialog->printer());
    });
}
