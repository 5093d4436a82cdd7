#pragma once

#include <QLabel>

class QAbstractItemView;

namespace sealwright {

/// Stands in a view while it has no rows, and says what will stand there. It takes no input. Main thread.
class EmptyHint : public QLabel {
    Q_OBJECT

public:
    /// The view has its model by now. It owns the hint.
    EmptyHint(QAbstractItemView &view, const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow();

    const QAbstractItemView &m_view;
};

} // namespace sealwright
