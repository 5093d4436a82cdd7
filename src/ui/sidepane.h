#pragma once

#include <QTabWidget>

namespace sealwright {

class MainWinController;

/// What stands beside the log: the steps of the run, what a look at the item tells, and what the service
/// said.
class SidePane : public QTabWidget {
    Q_OBJECT

public:
    explicit SidePane(MainWinController &document, QWidget *parent = nullptr);
};

} // namespace sealwright
