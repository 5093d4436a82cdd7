#pragma once

#include <QLabel>

namespace sealwright {

/// One line of text that is shortened in its middle where there is no room for all of it.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace sealwright
