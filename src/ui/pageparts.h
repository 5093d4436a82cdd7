#pragma once

#include <QSplitter>

namespace sealwright {

/// The settings over the run: the settings are as high as they want to be, as far as there is room, and the
/// run has the rest. Where a person moves the divider it stays. Main thread.
class PageParts : public QSplitter {
    Q_OBJECT

public:
    PageParts(QWidget &settings, QWidget &run, QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void share();

    const QWidget &m_settings;
    bool m_isChosen = false; ///< where the divider is
};

} // namespace sealwright
