// The first steps: what a first start offers, and how it gets from nothing to all that a submission needs.

#include "app/preferencekeys.h"
#include "ui/keychainforms.h"
#include "ui/keychainwindow.h"
#include "ui/practice.h"
#include "ui/protectionpage.h"
#include "ui/setupdialog.h"

#include "windowtest.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

const QString program = u"/usr/bin/sealwright-keychain"_s;
const QString tool = u"sealwright-keychain"_s;
const QByteArray locked = "store: file, under a passphrase\nstate: locked\n";
const QByteArray unlocked = "store: file, under a passphrase\nstate: unlocked\n";

/// Made before the application is launched.
class NothingYet {
protected:
    static ToolAnswer identities(const QString &name)
    {
        const QString line = u"  1) 0A \"Developer ID Application: %1\"\n"_s.arg(name);
        return {.output = name.isEmpty() ? "     0 valid identities found\n" : line.toUtf8()};
    }
};

class Setup : public testing::Test, protected NothingYet {
protected:
    ~Setup() override
    {
        host.settle();
        while (!host.application().allControllers().isEmpty())
            host.document().window().close();
    }

    /// A first start with the program of the keychain, or without it.
    void launch(const QString &keychainProgram = program)
    {
        host.configuration.keychainProgram = keychainProgram;
        host.takeConfiguration();
        host.tools.add(program);
        host.tools.answer(u"security"_s, identities({}));
        host.preferences.remove(key::appleIDValue);
        host.launch();
        host.settle();
    }
    template <class Widget>
    Widget &part(const QString &name)
    {
        auto *const found = page().template findChild<Widget *>(name);
        if (!found)
            throw std::runtime_error("no such part: " + name.toStdString());
        return *found;
    }
    DocumentPage &page() { return dynamic_cast<WidgetWindow &>(host.document().window()).page(); }
    void press(const QString &name)
    {
        part<QPushButton>(name).click();
        host.settle();
    }
    /// Puts a text into a field as a person would.
    void type(const QString &name, const QString &text)
    {
        auto &field = part<QLineEdit>(name);
        field.selectAll();
        QTest::keyClicks(&field, text);
    }
    QString text(const QString &label) { return part<QLabel>(label).text(); }

    WindowOrder order;
    LogPrinter printer;
    WidgetWindowFactory factory{order, printer};
    TestHost host{&factory};
};

} // namespace

TEST_F(Setup, hasNoSignOfPracticeBeforeItHasBegun)
{
    launch();
    practice::heedService(host.preferences, u"local"_s);
    EXPECT_TRUE(part<QLabel>(u"practiceSign"_s).isHidden()) << "nothing is practised yet";
    part<QPushButton>(u"setupNotNow"_s).click();
    EXPECT_FALSE(part<QLabel>(u"practiceSign"_s).isHidden());
}

TEST_F(Setup, isOfferedAtAFirstStart)
{
    launch();
    EXPECT_TRUE(part<QWidget>(u"setupBanner"_s).isVisible());
    EXPECT_TRUE(part<QWidget>(u"appleIDField"_s).isVisible()) << "nothing is in the way of who knows";
}

TEST_F(Setup, isNotOfferedWhereTheKeychainIsManagedElsewhere)
{
    launch({});
    EXPECT_FALSE(part<QWidget>(u"setupBanner"_s).isVisible());
}

TEST_F(Setup, isNotOfferedAgainToWhoWavedItAway)
{
    launch();
    press(u"setupNotNow"_s);
    EXPECT_FALSE(part<QWidget>(u"setupBanner"_s).isVisible());
    host.application().addedDocument();
    EXPECT_FALSE(part<QWidget>(u"setupBanner"_s).isVisible());
}

TEST_F(Setup, forPracticeIsOneFieldAndOneButtonAndThenANewStart)
{
    launch();
    press(u"setupPractice"_s);
    type(u"practiceName"_s, u"Example Corp"_s);
    const QString name = keychain::withTeam(u"Example Corp"_s);
    host.tools.answer(u"security"_s, identities(name));
    press(u"practiceButton"_s);
    EXPECT_EQ(host.tools.callsOf(tool),
              (QList<QStringList>{{u"make-identity"_s, u"--name"_s, name, u"--kind"_s, u"application"_s},
                                  {u"make-identity"_s, u"--name"_s, name, u"--kind"_s, u"installer"_s},
                                  {u"make-api-key"_s, u"practice"_s},
                                  {u"use-notary"_s, u"local"_s}}));
    EXPECT_EQ(host.preferences.string(key::lastUsedIdentity), name);
    EXPECT_EQ(host.preferences.string(key::appPassValue), u"practice"_s);
    EXPECT_EQ(host.preferences.string(key::appleIDValue), u"practice@localhost"_s);
    EXPECT_EQ(host.preferences.number(key::pollingDelay), 20) << "nobody waits longer than need be";
    EXPECT_TRUE(host.applicationHost.isRelaunched);
}

TEST_F(Setup, saysWhyAStepFailedAndStartsNothingAnew)
{
    launch();
    press(u"setupPractice"_s);
    host.tools.answer(tool, {.status = 1, .error = "sealwright-keychain: the keychain is locked\n"});
    press(u"practiceButton"_s);
    EXPECT_EQ(text(u"practiceButtonState"_s), u"the keychain is locked"_s);
    EXPECT_EQ(host.tools.callsOf(tool).size(), 1);
    EXPECT_FALSE(host.applicationHost.isRelaunched);
    EXPECT_TRUE(part<QPushButton>(u"practiceButton"_s).isEnabled()) << "for another try";
}

TEST_F(Setup, withACertificateAndAKeyTakesTwoStepsAndLooksAtEach)
{
    const QTemporaryDir folder;
    const QString certificate = folder.filePath(u"id.p12"_s);
    const QString keyFile = folder.filePath(u"AuthKey_ABC123.p8"_s);
    for (const QString &path : {certificate, keyFile})
        ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    launch();
    press(u"setupDeveloperID"_s);
    EXPECT_TRUE(text(u"setupIdentityState"_s).startsWith(u"None yet"_s));

    EXPECT_FALSE(part<QPushButton>(u"importButton"_s).isEnabled());
    type(u"importFile"_s, u"/no/such/file"_s);
    EXPECT_EQ(text(u"importButtonState"_s), u"There is no such file."_s);
    type(u"importFile"_s, certificate);
    type(u"importPassphrase"_s, u"s3cret"_s);
    host.tools.answer(u"security"_s, identities(u"Example (A1B2C3D4E5)"_s));
    press(u"importButton"_s);
    EXPECT_EQ(text(u"setupIdentityState"_s), u"✓ Example (A1B2C3D4E5)"_s);
    EXPECT_FALSE(host.applicationHost.isRelaunched) << "the second step is missing";

    type(u"apiKeyFile"_s, keyFile);
    type(u"apiKeyIssuer"_s, u"no-uuid"_s);
    EXPECT_EQ(text(u"apiKeyButtonState"_s), u"The issuer ID has the form of a UUID."_s);
    type(u"apiKeyIssuer"_s, u"69a6de70-03db-47e3-e053-5b8c7c11a4d1"_s);
    type(u"apiKeyAppleID"_s, u"me@example.com"_s);
    press(u"apiKeyButton"_s);
    EXPECT_EQ(host.tools.callsOf(tool),
              (QList<QStringList>{{u"add-api-key"_s, u"notary"_s, u"--issuer"_s,
                                   u"69a6de70-03db-47e3-e053-5b8c7c11a4d1"_s, keyFile},
                                  {u"use-notary"_s, u"apple"_s}}));
    EXPECT_EQ(host.preferences.string(key::appPassValue), u"notary"_s);
    EXPECT_EQ(host.preferences.string(key::appleIDValue), u"me@example.com"_s);
    EXPECT_TRUE(host.applicationHost.isRelaunched);
}

TEST_F(Setup, doesNotEndARunInAnotherDocument)
{
    launch();
    host.application().addedDocument()->isBusy.set(true);
    press(u"setupPractice"_s);
    host.tools.answer(u"security"_s, identities(keychain::withTeam(u"Practice"_s)));
    press(u"practiceButton"_s);
    EXPECT_TRUE(part<QLabel>(u"setupEnd"_s).isVisible());
    EXPECT_FALSE(host.applicationHost.isRelaunched);
    host.document().isBusy.set(false);
}

// Later

namespace {

class ManagedKeychain : public testing::Test, protected NothingYet {
protected:
    ManagedKeychain()
    {
        host.tools.add(program);
        host.tools.answer(u"security"_s, identities(u"Example (A1B2C3D4E5)"_s));
        host.tools.answer(tool, {.output = "state: unlocked\n"});
        window = std::make_unique<KeychainWindow>(host.host(), program);
        window->show();
        host.settle();
    }
    template <class Widget>
    Widget &part(const QString &name)
    {
        return *window->findChild<Widget *>(name);
    }
    void press(const QString &name)
    {
        part<QPushButton>(name).click();
        host.settle();
    }

    /// The window as it is after something has changed, with that status.
    void lookAgain(const QByteArray &status)
    {
        host.tools.answer(tool, {.output = status});
        Q_EMIT part<ProtectionPage>(u"keychainProtection"_s).changed();
        host.settle();
    }

    TestHost host;
    std::unique_ptr<KeychainWindow> window;
};

} // namespace

TEST_F(ManagedKeychain, listsTheIdentitiesAndDeletesTheSelectedOne)
{
    auto &list = part<QListWidget>(u"keychainIdentities"_s);
    ASSERT_EQ(list.count(), 1);
    EXPECT_EQ(list.item(0)->text(), u"Developer ID Application: Example (A1B2C3D4E5)"_s);
    EXPECT_FALSE(part<QPushButton>(u"keychainDelete"_s).isEnabled());
    list.setCurrentRow(0);
    host.tools.forgetCalls();
    host.tools.answer(u"security"_s, identities({}));
    press(u"keychainDelete"_s);
    EXPECT_EQ(host.tools.callsOf(u"security"_s),
              (QList<QStringList>{{u"delete-identity"_s, u"-Z"_s, u"0A"_s}, {u"find-identity"_s, u"-v"_s}}));
    EXPECT_EQ(list.count(), 0);
}

TEST_F(ManagedKeychain, tellsInWordsWhatProtectsItAndOffersOnlyWhatHelps)
{
    const auto status = [this] { return part<QLabel>(u"keychainStatus"_s).text(); };
    const auto shown = [this](const QString &name) { return !part<QWidget>(name).isHidden(); };
    EXPECT_EQ(status(), u"state: unlocked"_s) << "what is not understood stays as it is";
    lookAgain("store: file, under a random key that lies beside it\nstate: unlocked\n");
    EXPECT_TRUE(status().startsWith(u"The keys lie unprotected"_s));
    EXPECT_TRUE(shown(u"keychainUseKeyring"_s) && !shown(u"keychainUseFile"_s) && !shown(u"keychainLock"_s));
    lookAgain(unlocked);
    EXPECT_TRUE(status().startsWith(u"The keys lie under a passphrase."_s));
    EXPECT_TRUE(shown(u"keychainLock"_s) && shown(u"keychainNewPassphrase"_s));
    lookAgain(locked);
    EXPECT_TRUE(status().startsWith(u"The keychain is locked."_s));
    EXPECT_TRUE(shown(u"keychainUnlock"_s) && !shown(u"keychainNewPassphrase"_s));
    lookAgain("store: secret-service\nstate: unlocked\n");
    EXPECT_TRUE(shown(u"keychainUseFile"_s) && !shown(u"keychainUseKeyring"_s));
    host.tools.forgetCalls();
    press(u"keychainUseFile"_s);
    EXPECT_EQ(host.tools.callsOf(tool), (QList<QStringList>{{u"use-store"_s, u"file"_s}, {u"status"_s}}));
}

TEST_F(ManagedKeychain, takesANewPassphraseThatIsTypedTwiceAndForgetsIt)
{
    auto &first = part<QLineEdit>(u"newPassphrase"_s);
    auto &again = part<QLineEdit>(u"newPassphraseAgain"_s);
    EXPECT_EQ(first.echoMode(), QLineEdit::Password);
    EXPECT_EQ(again.echoMode(), QLineEdit::Password);
    first.setText(u"s3cret"_s);
    again.setText(u"s3cert"_s);
    EXPECT_FALSE(part<QPushButton>(u"passphraseButton"_s).isEnabled());
    EXPECT_EQ(part<QLabel>(u"passphraseButtonState"_s).text(), u"The two are not the same yet."_s);
    again.setText(u"s3cret"_s);
    const int run = int(host.tools.callsOf(tool).size()) + 1;
    host.tools.answerRun(tool, run, {.output = "the passphrase is set\n", .readsInput = true});
    press(u"passphraseButton"_s);
    EXPECT_EQ(host.tools.inputOf(tool), "s3cret\n");
    EXPECT_EQ(part<QLabel>(u"passphraseButtonState"_s).text(), u"Done."_s);
    EXPECT_EQ(first.text() + again.text(), QString());
}

TEST_F(ManagedKeychain, keepsTheKeyboardWhereOneGoesOn)
{
    part<QTabWidget>(u"keychainPages"_s).setCurrentIndex(int(KeychainWindow::Page::protection));
    lookAgain(unlocked);
    part<QPushButton>(u"keychainLock"_s).setFocus();
    host.tools.answer(tool, {.output = locked});
    press(u"keychainLock"_s);
    EXPECT_EQ(window->focusWidget(), &part<QLineEdit>(u"unlockPassphrase"_s));
    part<QLineEdit>(u"unlockPassphrase"_s).setText(u"s3cret"_s);
    part<QPushButton>(u"unlockButton"_s).setFocus();
    host.tools.answer(tool, {.output = unlocked});
    press(u"unlockButton"_s);
    EXPECT_EQ(window->focusWidget(), &part<QLineEdit>(u"newPassphrase"_s));
}

TEST_F(ManagedKeychain, keepsAPassphraseThatDidNotUnlockItAndSaysWhy)
{
    lookAgain(locked);
    part<QLineEdit>(u"unlockPassphrase"_s).setText(u"wrong"_s);
    host.tools.answer(tool, {.status = 1, .error = "sealwright-keychain: the passphrase is wrong\n"});
    press(u"unlockButton"_s);
    EXPECT_EQ(part<QLabel>(u"unlockButtonState"_s).text(), u"the passphrase is wrong"_s);
    EXPECT_EQ(part<QLineEdit>(u"unlockPassphrase"_s).text(), u"wrong"_s);
}

TEST_F(ManagedKeychain, tellsOfAnItemByItsName)
{
    part<QLineEdit>(u"keychainItem"_s).setText(u"notary"_s);
    press(u"keychainFind"_s);
    EXPECT_EQ(part<QLabel>(u"keychainAnswer"_s).text(), u"“notary” is in the keychain."_s);
    host.tools.answer(u"security"_s, {.status = 44, .error = "security: could not be found\n"});
    press(u"keychainFind"_s);
    EXPECT_EQ(part<QLabel>(u"keychainAnswer"_s).text(), u"could not be found"_s);
}

TEST_F(ManagedKeychain, startsAnewWhenItIsTold)
{
    press(u"keychainStartAnew"_s);
    EXPECT_TRUE(host.applicationHost.isRelaunched);
}

// Locked

namespace {

class LockedKeychain : public Setup {
protected:
    void launchWith(const QByteArray &status)
    {
        host.configuration.keychainProgram = program;
        host.takeConfiguration();
        host.tools.add(program);
        host.tools.answer(u"security"_s, identities(u"Example (A1B2C3D4E5)"_s));
        host.tools.answer(tool, {.output = status});
        host.launch();
        host.settle();
    }
    bool isTold() { return part<QWidget>(u"lockedBanner"_s).isVisible(); }
    static KeychainWindow *openWindow()
    {
        for (QWidget *const top : QApplication::topLevelWidgets()) {
            if (auto *const open = qobject_cast<KeychainWindow *>(top))
                return open;
        }
        return nullptr;
    }
};

} // namespace

TEST_F(LockedKeychain, isToldBeforeARunFailsForIt)
{
    launchWith(locked);
    EXPECT_TRUE(isTold());
    host.tools.answer(tool, {.output = unlocked});
    host.application().lookAtKeychain();
    host.settle();
    EXPECT_FALSE(isTold());
}

TEST_F(LockedKeychain, isLookedForAgainAfterARun)
{
    launchWith(unlocked);
    EXPECT_FALSE(isTold());
    host.tools.answer(tool, {.output = locked});
    Q_EMIT host.document().stepList.changed();
    host.settle();
    EXPECT_TRUE(isTold());
}

TEST_F(LockedKeychain, isUnlockedWhereTheBannerLeads)
{
    launchWith(locked);
    press(u"lockedUnlock"_s);
    host.settle();
    KeychainWindow *const window = openWindow();
    ASSERT_TRUE(window);
    EXPECT_TRUE(window->findChild<QWidget *>(u"keychainUnlock"_s)->isVisible());
    EXPECT_EQ(window->focusWidget(), window->findChild<QLineEdit *>(u"unlockPassphrase"_s));
    window->findChild<QLineEdit *>(u"unlockPassphrase"_s)->setText(u"s3cret"_s);
    host.tools.answer(tool, {.output = unlocked});
    window->findChild<QPushButton *>(u"unlockButton"_s)->click();
    host.settle();
    EXPECT_FALSE(isTold());
    window->close();
}
