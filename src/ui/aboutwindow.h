#pragma once

#include "platform/panel.h"

#include <QWidget>

namespace sealwright {

class AboutController;

/// The about panel made of widgets, bound to the controller's fields. Closing it puts it away until it is
/// shown again; Escape closes it.
class AboutWindow : public QWidget, public platform::Panel {
    Q_OBJECT

public:
    explicit AboutWindow(AboutController &controller);

    void center() override;
    void show() override;

private:
    QWidget *makeTitle(AboutController &controller);
    QWidget *makeCredits(AboutController &controller);
};

} // namespace sealwright
