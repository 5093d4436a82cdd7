#pragma once

#include <QScrollArea>

class QBoxLayout;

namespace sealwright {

class MainWinController;

/// What a document is signed and submitted with: credentials, identity, entitlements and options. Scrolls
/// where the window or the font leaves it too little room, and keeps what has the keyboard focus in sight.
class SettingsPane : public QScrollArea {
    Q_OBJECT

public:
    explicit SettingsPane(MainWinController &document, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QBoxLayout *m_columns;
};

} // namespace sealwright
