// A notary service that is that of this machine, and what a window says of it; and the end of the first
// steps.

#include "ui/practice.h"

#include "platform/itempath.h"
#include "support/items.h"
#include "ui/itemfacts.h"
#include "ui/itemlook.h"
#include "ui/relaunchplace.h"
#include "ui/setupbanner.h"
#include "windowtest.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

class Practice : public WindowTest {
protected:
    QString text(const QString &label) { return part<QLabel>(label).text(); }
    QString submittedToTheEnd()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        host.submitToTheEnd(host.item(u"Foo.app"_s));
        answer(u"OK"_s);
        return text(u"outcomeSentence"_s);
    }
};

} // namespace

TEST_F(Practice, isKnownFromWhatTheToolsAreSetToAsk)
{
    const QString program = u"/usr/bin/sealwright-keychain"_s;
    host.tools.add(program);
    host.tools.answer(u"sealwright-keychain"_s, {.output = "local\n"});
    practice::ask(host.host(), program, document());
    host.settle();
    EXPECT_TRUE(practice::isOn(host.preferences));
    host.tools.answer(u"sealwright-keychain"_s, {.output = "apple\n"});
    practice::ask(host.host(), program, document());
    host.settle();
    EXPECT_FALSE(practice::isOn(host.preferences));
    practice::heedService(host.preferences, u"local"_s);
    practice::ask(host.host(), {}, document());
    EXPECT_FALSE(practice::isOn(host.preferences)) << "where the tools are not ours";
}

TEST_F(Practice, isToldBeforeARunAndAtItsEnd)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    EXPECT_TRUE(itemfacts::intention(document(), host.item(u"Foo.app"_s)).endsWith(u"as a zip archive"_s));
    practice::heedService(host.preferences, u"local"_s);
    EXPECT_TRUE(itemfacts::intention(document(), host.item(u"Foo.app"_s)).endsWith(u", to practise"_s));
    EXPECT_TRUE(submittedToTheEnd().endsWith(u"For practice: other Macs do not accept it."_s));
}

TEST_F(Practice, isNotToldOfWhatAppleHasNotarized)
{
    EXPECT_EQ(
        submittedToTheEnd(),
        u"Foo.app is notarized and stapled. It lies in the folder “Foo - Notarized”, with the original."_s);
}

TEST_F(Practice, ofAnItemThatCannotBeSignedThatIsTold)
{
    document().identitiesPopup.setItemTitles({noIdentitiesPlaceholder.toString()});
    EXPECT_EQ(itemfacts::intention(document(), host.item(u"Foo.app"_s)),
              u"cannot be signed, since there is no Developer ID"_s);
}

TEST_F(Practice, withoutAnItemTheHeaderSaysHowToChooseOne)
{
    const auto hint = [this] { return part<QLabel>(u"itemFacts"_s).accessibleDescription(); };
    EXPECT_EQ(hint(), u"Drop one on this window, or press Submit…"_s);
    items::makeBundle(host.item(u"Foo.app"_s));
    host.application().applicationOpenFiles({host.item(u"Foo.app"_s)});
    EXPECT_EQ(hint(), QString());
}

TEST_F(Practice, ofACancelTheOneSentenceThatMattersIsTold)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.submit(host.item(u"Foo.app"_s));
    document().perform(Action::doCancel);
    answer(u"OK"_s);
    EXPECT_TRUE(
        text(u"outcomeSentence"_s)
            .startsWith(u"The app has been uploaded, but notarizing has not been confirmed. Go on in a "
                        "new document"_s))
        << text(u"outcomeSentence"_s).toStdString();
}

TEST_F(Practice, afterTheFirstStepsAWindowSaysWhatIsNextUntilAnItemComes)
{
    host.preferences.setValue(setupEnded, true);
    practice::heedService(host.preferences, u"local"_s);
    host.application().addedDocument();
    EXPECT_TRUE(page().setupBanner().isVisible());
    EXPECT_TRUE(text(u"setupText"_s).contains(u"Ready to practise."_s));
    EXPECT_FALSE(part<QPushButton>(u"setupPractice"_s).isVisible());
    document().appletNameField.setStringValue(u"Foo.app"_s);
    EXPECT_FALSE(page().setupBanner().isVisible());
    host.application().addedDocument();
    EXPECT_FALSE(page().setupBanner().isVisible());
}

TEST_F(Practice, aNewStartLeavesTheWindowWhereItIs)
{
    widget().move(30, 40);
    widget().resize(640, 500);
    const QSize size = widget().size();
    relaunchplace::remember(host.preferences, part<QLineEdit>(u"appleIDField"_s));
    QWidget next;
    relaunchplace::takeUp(host.preferences, next);
    EXPECT_EQ(next.pos(), QPoint(30, 40));
    EXPECT_EQ(next.size(), size);
    QWidget another;
    another.move(5, 6);
    relaunchplace::takeUp(host.preferences, another);
    EXPECT_EQ(another.pos(), QPoint(5, 6)) << "once";
}

TEST_F(Practice, aPlaceThatNoScreenHasIsNone)
{
    for (const QString &place : {u"90000 10 640 500"_s, u"10 10"_s, u"a b c d"_s, u"10 10 0 0"_s}) {
        host.preferences.setValue(u"placeForNewStart"_s, place);
        QWidget next;
        next.move(5, 6);
        relaunchplace::takeUp(host.preferences, next);
        EXPECT_EQ(next.pos(), QPoint(5, 6)) << place.toStdString();
    }
}

TEST_F(Practice, theStepsNameTheServiceThatIsAsked)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.application().applicationOpenFiles({host.item(u"Foo.app"_s)});
    const auto names = [this] {
        QStringList all;
        const auto &model = *part<QListView>(u"stepList"_s).model();
        for (int row = 0; row < model.rowCount(); ++row)
            all.append(model.index(row, 0).data().toString());
        return all;
    };
    EXPECT_TRUE(names().contains(u"Upload to Apple"_s));
    practice::heedService(host.preferences, u"local"_s);
    host.settle();
    EXPECT_TRUE(names().contains(u"Upload to this machine's service"_s));
    EXPECT_TRUE(names().contains(u"Wait for its result"_s));
}

TEST_F(Practice, hasASignThatStays)
{
    const auto &sign = part<QLabel>(u"practiceSign"_s);
    EXPECT_FALSE(sign.isVisible());
    practice::heedService(host.preferences, u"local"_s);
    host.settle();
    EXPECT_TRUE(sign.isVisible());
    practice::heedService(host.preferences, u"https://notary.example.com"_s);
    host.settle();
    EXPECT_FALSE(sign.isVisible());
}

TEST_F(Practice, afterASuccessTheHeaderTellsOfTheItemWhereItLiesNow)
{
    submittedToTheEnd();
    EXPECT_FALSE(host.files.isReachable(host.item(u"Foo.app"_s)));
    EXPECT_EQ(placeOfItem(document()), host.item(u"Foo - Notarized/Foo.app"_s));
    EXPECT_TRUE(text(u"itemFacts"_s).startsWith(u"Application"_s)) << text(u"itemFacts"_s).toStdString();
}

TEST_F(Practice, ofADiskImageTheNameOfTheImageIsTold)
{
    document().useDiskImage.set(true);
    EXPECT_TRUE(submittedToTheEnd().startsWith(u"Foo.dmg is notarized and stapled."_s));
}

TEST_F(Practice, theNewDocumentAfterACancelHasTheItemAndWhatHasBeenSetForIt)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    document().appleIDField.setStringValue(u"other@example.com"_s);
    host.submit(host.item(u"Foo.app"_s));
    document().perform(Action::doCancel);
    answer(u"OK"_s);
    part<QPushButton>(u"outcomeNewDocument"_s).click();
    const MainWinController &next = *host.application().allControllers().last();
    EXPECT_EQ(next.submitAppButton.action(), Action::doDirectSubmit);
    EXPECT_EQ(next.originalAppletURL(), itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_EQ(next.appleIDField.stringValue(), u"other@example.com"_s);
}
