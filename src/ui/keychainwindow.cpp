#include "ui/keychainwindow.h"

#include "document/applicationinterface.h"
#include "platform/applicationhost.h"
#include "ui/framewindow.h"
#include "ui/keychainforms.h"
#include "ui/named.h"
#include "ui/protectionpage.h"
#include "ui/relaunchplace.h"
#include "ui/settingrows.h"
#include "ui/spacing.h"
#include "ui/statetext.h"
#include "ui/toplevel.h"

#include <QApplication>
#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int charactersAcross = 92; // of the window at first
constexpr int linesDown = 32;
constexpr int leastRows = 4; // of the list

} // namespace

void KeychainWindow::present(ApplicationInterface &application, Page page)
{
    KeychainWindow *window = nullptr;
    for (QWidget *const top : QApplication::topLevelWidgets()) {
        if (auto *const open = qobject_cast<KeychainWindow *>(top))
            window = open;
    }
    if (!window) {
        window = new KeychainWindow(application.host(), application.keychainProgram());
        window->setAttribute(Qt::WA_DeleteOnClose);
        connect(window, &KeychainWindow::protectionChanged, &application,
                &ApplicationInterface::lookAtKeychain);
        toplevel::placeOver(*window, QApplication::activeWindow());
    }
    window->m_pages->setCurrentIndex(int(page));
    toplevel::bringToFront(*window);
    window->activateWindow();
    window->m_pages->currentWidget()->setFocus();
}

KeychainWindow::KeychainWindow(const platform::Host &host, const QString &program)
    : m_host(host)
    , m_keychain(host, program)
    , m_pages(named(new QTabWidget(this), u"keychainPages"_s, tr("Pages")))
    , m_answer(new QLabel(this))
{
    setWindowTitle(tr("Keychain"));
    m_pages->setDocumentMode(true);
    m_pages->addTab(makeIdentities(), tr("Identities"));
    m_pages->addTab(makePasswords(), tr("Keys and Passwords"));
    auto *const protection = new ProtectionPage(m_keychain, m_pages);
    connect(protection, &ProtectionPage::answered, this, &KeychainWindow::tell);
    connect(protection, &ProtectionPage::changed, this, &KeychainWindow::protectionChanged);
    m_pages->addTab(protection, tr("Protection"));
    m_answer->setObjectName(u"keychainAnswer"_s);
    m_answer->setTextFormat(Qt::PlainText);
    m_answer->setWordWrap(true);
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(spacing::sheetEdge, spacing::between, spacing::sheetEdge, spacing::sheetEdge);
    rows->addWidget(m_pages, 1);
    rows->addWidget(m_answer);
    auto *const anew = makeButton(this, u"keychainStartAnew"_s, tr("Start Sealwright Anew"), [this] {
        rememberPlace();
        m_host.application.relaunch();
    });
    auto *const foot = new QHBoxLayout;
    auto *const hint = new QLabel(tr("Sealwright reads the identities when it starts."), this);
    hint->setForegroundRole(QPalette::PlaceholderText);
    hint->setWordWrap(true);
    foot->addWidget(hint, 1);
    foot->addWidget(anew);
    rows->addLayout(foot);
    toplevel::closeByKeys(*this);
    const QFontMetrics letters = fontMetrics();
    const QSize wanted(letters.averageCharWidth() * charactersAcross, letters.lineSpacing() * linesDown);
    resize(wanted.boundedTo(screen()->availableSize()));
    listIdentities();
}

/// Of the window in which a person goes on, which this one is not.
void KeychainWindow::rememberPlace()
{
    for (const QWidget *const top : QApplication::topLevelWidgets()) {
        if (top->isVisible() && qobject_cast<const FrameWindow *>(top))
            return relaunchplace::remember(m_host.preferences, *top);
    }
}

// Identities

QWidget *KeychainWindow::makeIdentities()
{
    auto *const page = new QWidget(m_pages);
    m_identities = named(new QListWidget(page), u"keychainIdentities"_s, tr("Identities"));
    m_identities->setMinimumHeight(leastRows * m_identities->fontMetrics().lineSpacing());
    m_delete = makeButton(page, u"keychainDelete"_s, tr("&Delete"), [this] { deleteIdentity(); });
    m_delete->setEnabled(false);
    connect(m_identities, &QListWidget::itemSelectionChanged, this,
            [this] { m_delete->setEnabled(!m_identities->selectedItems().isEmpty()); });
    auto *const ways = named(new QTabWidget(page), u"keychainIdentityWays"_s, tr("Add an identity"));
    auto *const import = new ImportForm(m_keychain, ways);
    auto *const make = new PracticeForm(m_keychain, PracticeForm::Extent::identityAlone, ways);
    ways->setDocumentMode(true);
    ways->addTab(import, tr("Import"));
    ways->addTab(make, tr("Make One to Practise"));
    for (const KeychainForm *const form : std::initializer_list<KeychainForm *>{import, make})
        connect(form, &KeychainForm::added, this, &KeychainWindow::listIdentities);
    auto *const rows = new QVBoxLayout(page);
    rows->addWidget(m_identities, 1);
    rows->addWidget(m_delete, 0, Qt::AlignRight);
    rows->addWidget(ways);
    return page;
}

void KeychainWindow::listIdentities()
{
    m_keychain.run(keychain::listIdentities(), *this, [this](const KeychainTools::Answer &answer) {
        m_identities->clear();
        for (const keychain::Identity &identity : keychain::identitiesIn(answer.valueOr({}))) {
            auto *const item = new QListWidgetItem(identity.name, m_identities);
            item->setData(Qt::UserRole, identity.sha1);
            item->setToolTip(u"SHA-1 "_s + identity.sha1);
        }
        if (!answer)
            tell(answer);
    });
}

void KeychainWindow::deleteIdentity()
{
    const auto selected = m_identities->selectedItems();
    if (!selected.isEmpty())
        change(keychain::deleteIdentity(selected.first()->data(Qt::UserRole).toString()),
               [this] { listIdentities(); });
}

// Keys and passwords

QWidget *KeychainWindow::makePasswords()
{
    auto *const page = new QWidget(m_pages);
    auto *const ways = named(new QTabWidget(page), u"keychainItemWays"_s, tr("Add a key or a password"));
    ways->setDocumentMode(true);
    ways->addTab(new ApiKeyForm(m_keychain, ways), tr("API key"));
    ways->addTab(new PasswordForm(m_keychain, ways), tr("App-specific password"));
    auto *const rows = new QVBoxLayout(page);
    rows->addWidget(ways);
    rows->addSpacing(spacing::apart);
    rows->addWidget(makeLookup(page));
    rows->addStretch(1);
    return page;
}

/// The keychain does not list its items; it tells of one by its name.
QWidget *KeychainWindow::makeLookup(QWidget *parent)
{
    auto *const line = new QWidget(parent);
    auto *const row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    m_item = new QLineEdit(line);
    m_item->setObjectName(u"keychainItem"_s);
    row->addWidget(settingrows::makeCaption(line, tr("Item by its &name"), *m_item));
    row->addWidget(m_item, 1);
    const auto look = [this] {
        const QString item = m_item->text();
        m_keychain.run(keychain::findPassword(item), *this, [this, item](const KeychainTools::Answer &found) {
            tell(found ? KeychainTools::Answer(tr("“%1” is in the keychain.").arg(item)) : found);
        });
    };
    connect(m_item, &QLineEdit::returnPressed, this, look);
    row->addWidget(makeButton(line, u"keychainFind"_s, tr("&Look Up"), look));
    row->addWidget(makeButton(line, u"keychainDeleteItem"_s, tr("D&elete"), [this] {
        change(keychain::deletePassword(m_item->text()), [this] { m_item->clear(); });
    }));
    return line;
}

// What all of them use

QPushButton *KeychainWindow::makeButton(QWidget *parent, const QString &name, const QString &title,
                                        std::function<void()> press)
{
    auto *const button = named(new QPushButton(title, parent), name, settingrows::plainLabel(title));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, std::move(press));
    return button;
}

/// Has the program change something, and tells how that went.
void KeychainWindow::change(const keychain::Command &command, std::function<void()> then)
{
    m_keychain.run(command, *this, [this, then = std::move(then)](const KeychainTools::Answer &answer) {
        tell(answer);
        if (answer)
            then();
    });
}

void KeychainWindow::tell(const KeychainTools::Answer &answer)
{
    const QString printed = answer ? answer->trimmed() : answer.error();
    statetext::put(*m_answer, printed.isEmpty() ? tr("Done.") : printed,
                   answer ? theme::Meaning::good : theme::Meaning::bad);
}

} // namespace sealwright
