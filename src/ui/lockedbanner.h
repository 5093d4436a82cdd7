#pragma once

#include "ui/bannerframe.h"

namespace sealwright {

class MainWinController;

/// Says that the keychain is locked, before a run fails for it, and leads to where it is unlocked. Main
/// thread.
class LockedBanner : public BannerFrame {
    Q_OBJECT

public:
    explicit LockedBanner(MainWinController &document, QWidget *parent = nullptr);

private:
    void follow();
    void lookAgain();

    MainWinController &m_document;
};

} // namespace sealwright
