#pragma once

#include "ui/bannerframe.h"
#include "ui/icons.h"

#include <functional>

class QLabel;

namespace sealwright {

class BannerRow;
class MainWinController;

/// A key of the settings: true from the end of the first steps until an item comes.
inline const QString setupEnded = QStringLiteral("setupEnded");

/// The two ways to what a first submission needs.
enum class SetupRoad { practice, developerID };

/// Says at a first start what is missing before anything can be signed and submitted, and offers the ways to
/// it. Not where the keychain is managed elsewhere, nor once a person has waved it away. Main thread.
class SetupBanner : public BannerFrame {
    Q_OBJECT

public:
    explicit SetupBanner(MainWinController &document, QWidget *parent = nullptr);

    /// Whether what a first submission needs is missing, and is asked for.
    [[nodiscard]] static bool isNeeded(MainWinController &document);

Q_SIGNALS:
    void wanted(SetupRoad road);

private:
    void addButton(BannerRow &row, const QString &name, const QString &title, icons::Command picture,
                   std::function<void()> press);
    void dismiss();
    void showPhase();
    void endWithItem();

    MainWinController &m_document;
    QLabel *const m_text;
};

} // namespace sealwright
