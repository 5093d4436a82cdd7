#pragma once

#include <QPageLayout>
#include <QString>

#include <optional>

class QPrintDialog;
class QWidget;

namespace sealwright {

/// How logs are printed: one page setup for all windows, which lasts as long as the application runs. Main
/// thread.
class LogPrinter {
public:
    /// Asks for paper, orientation and margins, and returns when that is done. A dialog that is cancelled
    /// changes nothing.
    void runPageLayout();

    /// A print dialog for a window, whose child it is. When it has been accepted, its printer is ready to
    /// print on.
    [[nodiscard]] QPrintDialog *makeDialog(const QString &documentName, QWidget *window);

private:
    std::optional<QPageLayout> m_pageLayout; ///< of the default printer until somebody has chosen
};

} // namespace sealwright
