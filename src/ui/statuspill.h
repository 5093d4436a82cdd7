#pragma once

#include <QLabel>

namespace sealwright {

/// A document's status word on a ground in the colour of what it means. Main thread.
class StatusPill : public QLabel {
    Q_OBJECT

public:
    explicit StatusPill(QWidget *parent = nullptr);

    /// What people read for the word, which scripts read as it is.
    [[nodiscard]] static QString wording(const QString &word);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace sealwright
