#pragma once

#include "ui/bannerframe.h"

class QBoxLayout;
class QLabel;
class QPushButton;

namespace sealwright {

class MainWinController;

/// Says, in a document that has done nothing yet, what an earlier launch has left waiting for a verdict, and
/// goes on with it at a press. Main thread.
class WaitingBanner : public BannerFrame {
    Q_OBJECT

public:
    explicit WaitingBanner(MainWinController &document, QWidget *parent = nullptr);

private:
    QPushButton &addButton(QBoxLayout &row, const QString &name, const QString &title,
                           void (WaitingBanner::*press)());
    void follow();
    void goOn();
    void dismiss();

    MainWinController &m_document;
    QLabel *m_text;
};

/// "Foo still waits for…" and so on, by the names of the folders; paths. Empty for none.
[[nodiscard]] QString waitingSentence(const QStringList &folders);

} // namespace sealwright
