#include "ui/profilebutton.h"

#include "windowtest.h"

#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

class ProfileButtonTest : public WindowTest {
protected:
    ProfileButton &button() { return part<ProfileButton>(u"profileButton"_s); }
    ProfileStore store() { return {host.files, host.configuration.profilesFolder}; }

    /// The texts of the menu as it opens.
    QStringList texts()
    {
        Q_EMIT button().menu()->aboutToShow();
        QStringList texts;
        for (const QAction *const item : button().menu()->actions()) {
            if (!item->isSeparator())
                texts.append(item->text().remove(u'&'));
        }
        return texts;
    }
    void choose(const QString &text)
    {
        Q_EMIT button().menu()->aboutToShow();
        for (QAction *const item : button().menu()->actions()) {
            if (item->text().remove(u'&') == text)
                return item->trigger();
        }
        ADD_FAILURE() << "no such item: " << text.toStdString();
    }
};

} // namespace

TEST_F(ProfileButtonTest, savesWhatTheDocumentIsSetToUnderTheNameThatIsTyped)
{
    EXPECT_EQ(texts(), QStringList{u"Save as Profile…"_s});
    choose(u"Save as Profile…"_s);
    auto &dialog = part<QInputDialog>(u"profileName"_s);
    QTest::keyClicks(dialog.findChild<QLineEdit *>(), u"Product"_s);
    dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
    until([this] { return !window().hasSheet(); });
    EXPECT_EQ(store().names(), QStringList{u"Product"_s});
    EXPECT_EQ(button().text(), u"Product"_s);
    EXPECT_EQ(texts(),
              (QStringList{u"Product"_s, u"Save as Profile…"_s, u"Show “Product” in Folder"_s,
                           u"Remove “Product”"_s}));
}

TEST_F(ProfileButtonTest, setsTheDocumentToTheOneThatIsChosen)
{
    Profile profile = profiles::profileOf(document());
    profile.insert(u"appleIDValue"_s, u"release@example.com"_s);
    ASSERT_TRUE(store().save(u"Product"_s, profile));
    choose(u"Product"_s);
    EXPECT_EQ(part<QLineEdit>(u"appleIDField"_s).text(), u"release@example.com"_s);
    EXPECT_EQ(button().text(), u"Product"_s);
    choose(u"Remove “Product”"_s);
    EXPECT_EQ(button().text(), u"Profile"_s);
    EXPECT_EQ(part<QLineEdit>(u"appleIDField"_s).text(), u"release@example.com"_s);
}

TEST_F(ProfileButtonTest, saysWhyOneCannotBeUsed)
{
    ASSERT_TRUE(store().save(u"Product"_s, {{u"lastUsedIdentity"_s, u"Other (Z9Z9Z9Z9Z9)"_s}}));
    choose(u"Product"_s);
    EXPECT_EQ(awaitSheet().informativeText(), u"The keychain has no identity “Other (Z9Z9Z9Z9Z9)”."_s);
    answer(u"OK"_s);
    EXPECT_EQ(button().text(), u"Profile"_s);
}
