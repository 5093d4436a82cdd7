#include "ui/setupdialog.h"

#include "app/discovery.h"
#include "app/preferencekeys.h"
#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"
#include "platform/preferences.h"
#include "ui/keychainforms.h"
#include "ui/named.h"
#include "ui/practice.h"
#include "ui/relaunchplace.h"
#include "ui/spacing.h"
#include "ui/statetext.h"
#include "ui/toplevel.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int charactersAcross = 84;

QLabel *makeText(QWidget *parent, const QString &text)
{
    auto *const label = new QLabel(text, parent);
    label->setWordWrap(true);
    return label;
}

/// As tall as the page that shows wants it, and not as the tallest.
class Roads : public QTabWidget {
public:
    explicit Roads(QWidget *parent)
        : QTabWidget(parent)
    {
        connect(this, &QTabWidget::currentChanged, this, &Roads::updateGeometry);
    }

    int heightForWidth(int width) const override
    {
        return fitted(QTabWidget::heightForWidth(width),
                      [width](const QWidget &page) { return page.heightForWidth(width); });
    }
    QSize sizeHint() const override
    {
        const QSize forAll = QTabWidget::sizeHint();
        return {forAll.width(),
                fitted(forAll.height(), [](const QWidget &page) { return page.sizeHint().height(); })};
    }
    QSize minimumSizeHint() const override
    {
        const QSize forAll = QTabWidget::minimumSizeHint();
        return {forAll.width(),
                fitted(forAll.height(), [](const QWidget &page) { return page.minimumSizeHint().height(); })};
    }

private:
    /// The height for all pages without what the tallest has more than the present one.
    template <class HeightOf>
    int fitted(int forAll, HeightOf heightOf) const
    {
        int tallest = 0;
        for (int page = 0; page < count(); ++page)
            tallest = qMax(tallest, heightOf(*widget(page)));
        return forAll - tallest + (currentWidget() ? heightOf(*currentWidget()) : 0);
    }
};

} // namespace

SetupDialog::SetupDialog(MainWinController &document, SetupRoad road, QWidget *parent)
    : QDialog(parent)
    , m_document(document)
    , m_keychain(document.host(), document.appDelegate().keychainProgram())
    , m_roads(named<QTabWidget>(new Roads(this), u"setupRoads"_s, tr("What to set up")))
    , m_end(new QLabel(this))
{
    setWindowTitle(tr("Set Up"));
    m_roads->setDocumentMode(true);
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(m_roads);
    m_roads->addTab(makePractice(), tr("Practise on This Machine"));
    m_roads->addTab(makeDeveloperID(), tr("My Developer ID"));
    m_roads->setCurrentIndex(road == SetupRoad::practice ? 0 : 1);
    m_end->setObjectName(u"setupEnd"_s);
    m_end->setWordWrap(true);
    m_end->setVisible(false);
    rows->addWidget(m_end);
    auto *const cancel = named(new QPushButton(tr("Close"), this), u"setupClose"_s, tr("Close"));
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    rows->addWidget(cancel, 0, Qt::AlignRight);
    setMinimumWidth(toplevel::widthOfSheet(*this, charactersAcross));
    checkIdentity();
}

QWidget *SetupDialog::makePractice()
{
    auto *const page = new QWidget(m_roads);
    auto *const rows = new QVBoxLayout(page);
    rows->addWidget(makeText(
        page,
        tr("Makes a signing identity and a key of a notary service that runs on this machine. Nothing "
           "leaves it, no account is needed, and what you notarize is accepted here alone.")));
    auto *const form = new PracticeForm(m_keychain, PracticeForm::Extent::forAll, page);
    connect(form, &KeychainForm::added, this, [this, form] {
        m_identity.clear();
        askOften();
        practice::heedService(m_document.host().preferences, u"local"_s);
        checkIdentity(form->identity());
        checkCredentials({PracticeForm::item(), PracticeForm::appleID()}, {});
    });
    rows->addWidget(form);
    rows->addStretch(1);
    return page;
}

/// The service of this machine has its verdict soon; a person who practises is not to wait for the next
/// question.
void SetupDialog::askOften()
{
    auto &preferences = m_document.host().preferences;
    if (preferences.number(key::pollingDelay) > shortestPollingDelay)
        preferences.setValue(key::pollingDelay, double(shortestPollingDelay));
}

QWidget *SetupDialog::makeDeveloperID()
{
    auto *const page = new QWidget(m_roads);
    auto *const rows = new QVBoxLayout(page);
    m_identityState = makeState(page, u"setupIdentityState"_s);
    m_credentialState = makeState(page, u"setupCredentialState"_s);
    auto *const import = new ImportForm(m_keychain, page);
    connect(import, &KeychainForm::added, this, [this] { checkIdentity(); });
    rows->addWidget(
        makeText(page, tr("<b>1. Signing identity</b>: a Developer ID certificate with its key")));
    rows->addWidget(import);
    rows->addWidget(m_identityState);
    rows->addSpacing(spacing::between);
    rows->addWidget(makeText(page,
                             tr("<b>2. Key or password</b> of the notary service: Apple's takes API keys "
                                "only")));
    rows->addWidget(makeCredentialForms(page));
    rows->addWidget(m_credentialState);
    statetext::put(*m_credentialState, {}, theme::Meaning::quiet);
    return page;
}

QWidget *SetupDialog::makeCredentialForms(QWidget *parent)
{
    auto *const forms = named(new QTabWidget(parent), u"setupCredentials"_s, tr("Key or password"));
    forms->setDocumentMode(true);
    auto *const key = new ApiKeyForm(m_keychain, forms);
    auto *const password = new PasswordForm(m_keychain, forms);
    forms->addTab(key, tr("API key"));
    forms->addTab(password, tr("App-specific password"));
    follow(*key);
    follow(*password);
    return forms;
}

QLabel *SetupDialog::makeState(QWidget *parent, const QString &name)
{
    auto *const state = new QLabel(parent);
    state->setObjectName(name);
    state->setTextFormat(Qt::PlainText);
    state->setWordWrap(true);
    return state;
}

void SetupDialog::follow(CredentialForm &form)
{
    connect(&form, &KeychainForm::added, this, [this, &form] {
        practice::heedService(m_document.host().preferences, u"apple"_s);
        checkCredentials({form.item(), form.appleID()}, {keychain::useNotary(u"apple"_s)});
    });
}

/// Looks whether the keychain has an identity that signs: the wanted one, or any.
void SetupDialog::checkIdentity(const QString &wanted)
{
    m_keychain.run(keychain::listIdentities(), *this, [this, wanted](const KeychainTools::Answer &answer) {
        heedIdentities(discovery::identitiesInListing(answer.valueOr({})).applications, wanted);
    });
}

void SetupDialog::heedIdentities(const QStringList &names, const QString &wanted)
{
    const bool isWanted =
        wanted.isEmpty() ? !names.contains(noIdentitiesPlaceholder) : names.contains(wanted);
    m_identity = isWanted ? (wanted.isEmpty() ? names.last() : wanted) : QString();
    if (m_identity.isEmpty())
        statetext::put(*m_identityState,
                       tr("None yet: the keychain has no valid Developer ID Application identity."),
                       theme::Meaning::quiet);
    else
        statetext::put(*m_identityState, u"✓ "_s + m_identity, theme::Meaning::good);
    finishIfComplete();
}

/// Looks whether the keychain has the item; then lets the programs do the rest.
void SetupDialog::checkCredentials(const Credentials &credentials, const QList<keychain::Command> &more)
{
    m_keychain.runAll(
        QList{keychain::findPassword(credentials.item)} + more, *this,
        [this, credentials](const KeychainTools::Answer &answer) {
            m_credentials = answer ? credentials : Credentials();
            const QString text =
                answer ? u"✓ "_s + tr("“%1” is in the keychain.").arg(credentials.item) : answer.error();
            statetext::put(*m_credentialState, text, answer ? theme::Meaning::good : theme::Meaning::bad);
            finishIfComplete();
        });
}

void SetupDialog::finishIfComplete()
{
    if (m_identity.isEmpty() || m_credentials.item.isEmpty())
        return;
    auto &preferences = m_document.host().preferences;
    preferences.setValue(key::lastUsedIdentity, m_identity);
    preferences.setValue(key::appPassValue, m_credentials.item);
    preferences.setValue(key::appleIDValue, m_credentials.appleID);
    preferences.setValue(setupEnded, true);
    if (isAnyBusy())
        return tell(tr("All is set up. Start Sealwright anew when its runs have ended."));
    tell(tr("All is set up. Sealwright starts anew…"));
    relaunchplace::remember(preferences, *this);
    m_document.host().application.relaunch();
}

bool SetupDialog::isAnyBusy() const
{
    const auto &documents = m_document.appDelegate().allControllers();
    return std::any_of(documents.cbegin(), documents.cend(),
                       [](const auto &document) { return document->isBusy(); });
}

void SetupDialog::tell(const QString &text)
{
    m_end->setText(text);
    m_end->setVisible(true);
}

} // namespace sealwright
