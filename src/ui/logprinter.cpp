#include "ui/logprinter.h"

#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrinter>

namespace sealwright {

namespace {

constexpr int dotsPerInch = 1200; // letters stand where they belong, not on the pixels of a screen

} // namespace

void LogPrinter::runPageLayout()
{
    QPrinter printer;
    if (m_pageLayout)
        printer.setPageLayout(*m_pageLayout);
    QPageSetupDialog dialog(&printer);
    if (dialog.exec() == QDialog::Accepted)
        m_pageLayout = printer.pageLayout();
}

QPrintDialog *LogPrinter::makeDialog(const QString &documentName, QWidget *window)
{
    auto *const dialog = new QPrintDialog(window);
    QPrinter &printer = *dialog->printer();
    printer.setResolution(dotsPerInch);
    printer.setDocName(documentName);
    if (m_pageLayout)
        printer.setPageLayout(*m_pageLayout);
    return dialog;
}

} // namespace sealwright
