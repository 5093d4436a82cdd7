#pragma once

#include "ui/theme.h"

#include <QFrame>

namespace sealwright {

/// What all banners are drawn on: the ground of a meaning, with round corners and the meaning's own colour at
/// its edge. Main thread.
class BannerFrame : public QFrame {
    Q_OBJECT

public:
    explicit BannerFrame(theme::Meaning meaning, QWidget *parent = nullptr);

    theme::Meaning meaning() const { return m_meaning; }
    void setMeaning(theme::Meaning meaning);
    /// Gives the layout of what stands on it its distances.
    void spaceOut();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    theme::Meaning m_meaning;
};

} // namespace sealwright
