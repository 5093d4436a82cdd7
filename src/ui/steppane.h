#pragma once

#include <QWidget>

namespace sealwright {

class MainWinController;

/// The steps of a document's run, to stand beside the log.
class StepPane : public QWidget {
    Q_OBJECT

public:
    explicit StepPane(MainWinController &document, QWidget *parent = nullptr);
};

} // namespace sealwright
