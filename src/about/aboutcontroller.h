#pragma once

#include "document/controls.h"
#include "platform/host.h"
#include "platform/panel.h"

#include <memory>

namespace sealwright {

class AppDelegate;

/// The panel that tells who the program is. There is one at a time, made on the first request; it stays for
/// as long as the application object. Main thread.
class AboutController : public QObject {
    Q_OBJECT

public:
    static AboutController &instance(AppDelegate &appDelegate);
    ~AboutController() override;

    /// Brings the panel to the front; the first time its window is made.
    void showWindow();
    /// Gives the fields the colours that go with the desktop's light or dark appearance.
    void appearanceDidChange();

    TextField mTitleView;
    TextField mVersionView;
    TextField mCopyrightView;
    TextView mCreditsView;

private:
    explicit AboutController(AppDelegate &appDelegate);
    void windowDidLoad();
    void _showUserInfo();

    static AboutController *theController;

    AppDelegate &m_appDelegate;
    const platform::Host m_host;
    std::unique_ptr<platform::Panel> m_window;
};

} // namespace sealwright
