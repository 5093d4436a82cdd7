#pragma once

#include <QList>
#include <QObject>

class QBoxLayout;
class QLayout;
class QPushButton;
class QWidget;

namespace sealwright {

/// Lays out what a banner says and its buttons: side by side, or the buttons below where the words would be
/// squeezed beside them. Lives as long as the banner. Main thread.
class BannerRow : public QObject {
    Q_OBJECT

public:
    /// Takes over the layout of what it says.
    BannerRow(QWidget &banner, QLayout *words);

    void addButton(QPushButton &button);
    /// To be called after a button has come or gone.
    void arrange();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int widthOfButtons() const;
    void showPicturesWithin(int room);

    QWidget &m_banner;
    QBoxLayout *m_all;
    QBoxLayout *m_buttons;
    QList<QPushButton *> m_present;
};

} // namespace sealwright
