#pragma once

#include <QWidget>

class QBoxLayout;

namespace sealwright {

/// Two groups of controls, at the two ends of one line, or one below the other where a line has no room for
/// both.
class TwoPartRow : public QWidget {
    Q_OBJECT

public:
    explicit TwoPartRow(QWidget *parent = nullptr);

    QBoxLayout &first() { return *m_first; }
    QBoxLayout &second() { return *m_second; }

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QBoxLayout *m_all;
    QBoxLayout *m_first;
    QBoxLayout *m_second;
};

} // namespace sealwright
