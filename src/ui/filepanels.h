#pragma once

#include "platform/qt/filechooserportal.h"
#include "platform/window.h"

#include <QDialog>

#include <functional>

class QWidget;

namespace sealwright {

/// Panels for files: the desktop's own where it has them, ours elsewhere. Main thread.
namespace filepanels {

/// The application's way to the desktop's panels, a child of the application object; null where there is
/// none, or where the desktop has no such panels.
[[nodiscard]] platform::FileChooserPortal *desktopPanels();

/// Whether the desktop's panels can choose what this panel is to choose. Theirs take a bundle for a folder,
/// and choose either files or folders.
[[nodiscard]] bool suitsTheDesktop(const platform::OpenPanel &panel);

/// The window in the portal's form.
[[nodiscard]] QString portalNameOf(const QWidget &widget);

struct Choice {
    QString title;
    QString folder; ///< path where the panel begins
    QString filter = {}; ///< in the form of QFileDialog; empty: a folder is to be chosen
};

/// Asks for a file or a folder beside the window of the widget; `chosen` is called with its path, and not at
/// all if there was no choice.
void choose(QWidget &owner, const Choice &choice, std::function<void(const QString &path)> chosen);

/// Stands on the page while the desktop asks, so that the document waits.
class DesktopPanel : public QDialog {
    Q_OBJECT

public:
    DesktopPanel(platform::FileChooserPortal &portal, const platform::FileChooserPortal::Question &question,
                 QWidget *parent);
    ~DesktopPanel() override;

    const platform::FileChooserPortal::Answer &answer() const { return m_answer; }

private:
    platform::FileChooserPortal &m_portal;
    platform::FileChooserPortal::Answer m_answer{platform::FileChooserPortal::Ending::cancelled, {}};
    quint64 m_request;
    bool m_isAnswered = false;
};

} // namespace filepanels

} // namespace sealwright
