#pragma once

#include <QLabel>

namespace sealwright {

/// A text in as many lines as it takes, and while it is empty a hint in its place. Main thread.
class HintedLabel : public QLabel {
    Q_OBJECT

public:
    explicit HintedLabel(QWidget *parent = nullptr);

    /// What stands there, in grey, while there is no text; empty for nothing.
    void setHint(const QString &hint);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_hint;
};

} // namespace sealwright
