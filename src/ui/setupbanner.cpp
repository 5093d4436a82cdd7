#include "ui/setupbanner.h"

#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "platform/host.h"
#include "platform/preferences.h"
#include "ui/bannerrow.h"
#include "ui/named.h"
#include "ui/practice.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sealwright {

using icons::Command;

namespace {

/// Set once a person wants to hear no more of it.
const QString setupDismissed = u"setupDismissed"_s;

} // namespace

SetupBanner::SetupBanner(MainWinController &document, QWidget *parent)
    : BannerFrame(theme::Meaning::underway, parent)
    , m_document(document)
    , m_text(new QLabel(this))
{
    named(this, u"setupBanner"_s, tr("First steps"));
    m_text->setObjectName(u"setupText"_s);
    m_text->setWordWrap(true);
    auto *const words = new QHBoxLayout;
    words->addWidget(m_text);
    auto *const row = new BannerRow(*this, words);
    spaceOut();
    addButton(*row, u"setupPractice"_s, tr("Practise on This Machine…"), Command::setUp,
              [this] { Q_EMIT wanted(SetupRoad::practice); });
    addButton(*row, u"setupDeveloperID"_s, tr("Use My Developer ID…"), Command::keychain,
              [this] { Q_EMIT wanted(SetupRoad::developerID); });
    addButton(*row, u"setupNotNow"_s, tr("Not Now"), Command::close, [this] { dismiss(); });
    connect(&document.appletNameField, &Control::changed, this, &SetupBanner::endWithItem);
    showPhase();
}

/// What is missing; and once nothing is, what comes next.
void SetupBanner::showPhase()
{
    const platform::Preferences &preferences = m_document.host().preferences;
    const bool isReady = !isNeeded(m_document) && preferences.boolean(setupEnded);
    for (auto *const button : findChildren<QPushButton *>())
        button->setVisible(!isReady);
    if (!isReady)
        m_text->setText(tr("<b>Welcome.</b> Sealwright needs a signing identity and a notary key."));
    else if (practice::isOn(preferences))
        m_text->setText(tr("<b>Ready to practise.</b> Drop an app, plug-in, package or disk image on this "
                           "window. What is notarized so counts on this machine alone."));
    else
        m_text->setText(tr("<b>Ready.</b> Drop an app, plug-in, package or disk image on this window."));
    setVisible(isNeeded(m_document) || isReady);
}

void SetupBanner::endWithItem()
{
    auto &preferences = m_document.host().preferences;
    if (m_document.appletNameField.stringValue().isEmpty() || !preferences.boolean(setupEnded))
        return;
    preferences.remove(setupEnded);
    setVisible(isNeeded(m_document));
}

bool SetupBanner::isNeeded(MainWinController &document)
{
    const ApplicationInterface &application = document.appDelegate();
    return !application.keychainProgram().isEmpty()
        && application.identities().contains(noIdentitiesPlaceholder)
        && !document.host().preferences.boolean(setupDismissed);
}

void SetupBanner::addButton(BannerRow &row, const QString &name, const QString &title, Command picture,
                            std::function<void()> press)
{
    auto *const button = named(new QPushButton(title, this), name, title);
    button->setIcon(icons::of(picture));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, std::move(press));
    row.addButton(*button);
}

void SetupBanner::dismiss()
{
    m_document.host().preferences.setValue(setupDismissed, true);
    hide();
}

} // namespace sealwright
