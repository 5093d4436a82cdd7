// The mode in which a document holds an item and waits for a person to confirm it.

#include "document/documentcommands.h"
#include "notarization/submittest.h"

using namespace Qt::StringLiterals;

class DirectSubmit : public Submit { };

TEST_F(DirectSubmit, preparedForAPersonStartsNothing)
{
    MainWinController &document = launched();
    document.commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    EXPECT_EQ(document.statusString(), u"interacting"_s);
    EXPECT_EQ(host.window().title(), u"Foo.app"_s);
    EXPECT_EQ(document.appletNameField.stringValue(),
              itempath::abbreviatedWithTilde(host.item(u"Foo.app"_s)));
    for (const Control *control :
         std::initializer_list<const Control *>{&document.fetchHistoryButton, &document.historyMaxPagesField,
                                                &document.historyMaxPagesLabel, &document.signOnlyButton})
        EXPECT_TRUE(control->isHidden());
    EXPECT_EQ(document.stapleOnlyButton.title(), u"Cancel"_s);
    EXPECT_EQ(document.stapleOnlyButton.keyEquivalent(), u"."_s);
    EXPECT_EQ(document.stapleOnlyButton.toolTip(), u""_s);
    EXPECT_EQ(document.stapleOnlyButton.action(), Action::doCancelDirectSubmit);
    EXPECT_EQ(document.submitAppButton.title(), u"Submit Now"_s);
    EXPECT_EQ(document.submitAppButton.action(), Action::doDirectSubmit);
    EXPECT_EQ(document.lastAction(), quint64(nothingToRepeat));
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(DirectSubmit, preparedForAPersonTakesItsTitleEvenWhereItIsTaken)
{
    launched();
    host.application().loadDroppedURLs(
        {itempath::toUrl(host.item(u"Foo.app"_s)), itempath::toUrl(host.item(u"Foo.app"_s))});
    EXPECT_EQ(host.application().allControllers().at(1)->window().title(), u"Foo.app"_s);
    EXPECT_EQ(host.application().allControllers().at(2)->window().title(), u"Foo.app"_s);
}

TEST_F(DirectSubmit, cancelledBeforeItBeganTurnsTheControlsBack)
{
    MainWinController &document = launched();
    document.commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    document.perform(document.stapleOnlyButton.action());
    EXPECT_EQ(document.statusString(), u"ready"_s);
    EXPECT_FALSE(document.signOnlyButton.isHidden());
    EXPECT_EQ(document.stapleOnlyButton.title(), u"Staple Only…"_s);
    EXPECT_EQ(document.stapleOnlyButton.keyEquivalent(), u"o"_s);
    EXPECT_EQ(document.stapleOnlyButton.toolTip(),
              u"Attempts to staple an item that has already been submitted"_s);
    EXPECT_EQ(document.stapleOnlyButton.action(), Action::doStapleOnly);
    EXPECT_EQ(document.submitAppButton.title(), u"Submit…"_s);
    EXPECT_EQ(document.submitAppButton.action(), Action::doSubmit);
    EXPECT_EQ(document.appletNameField.stringValue(), u""_s);
}

TEST_F(DirectSubmit, confirmedByAPersonSubmitsTheStoredItem)
{
    MainWinController &document = launched();
    document.commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    document.perform(document.submitAppButton.action());
    EXPECT_EQ(document.submitAppButton.action(), Action::doSubmit);
    EXPECT_EQ(document.lastAction(), quint64(submitAction));
    host.settle();
    EXPECT_EQ(document.statusString(), u"waiting"_s);
}

TEST_F(DirectSubmit, confirmedByAPersonIsNoScriptsAndShowsDialogs)
{
    MainWinController &document = launched();
    document.commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    document.isScripted.set(true); // an earlier script's
    document.suppressDialogs.set(true);
    document.perform(Action::doDirectSubmit);
    EXPECT_FALSE(document.isScripted());
    EXPECT_FALSE(document.suppressDialogs());
    host.settle();
}

TEST_F(DirectSubmit, preparedWithAnIdentitySelectsItAndOtherwiseKeepsTheSelection)
{
    host.tools.answer(u"security"_s,
                      {.output = "1) AA \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n"
                                 "2) BB \"Developer ID Application: Other Corp (F6G7H8I9J0)\"\n"});
    MainWinController &document = launched();
    const QUrl item = itempath::toUrl(host.item(u"Foo.app"_s));
    const auto identityAfter = [&](const QString &identity) {
        document.commands().submit.prepareForDirectSubmit(item, identity);
        return document.identitiesPopup.titleOfSelectedItem();
    };
    ASSERT_EQ(identityAfter({}), u"Example Corp (A1B2C3D4E5)"_s);
    EXPECT_EQ(identityAfter(u"Other Corp (F6G7H8I9J0)"_s), u"Other Corp (F6G7H8I9J0)"_s);
    EXPECT_EQ(identityAfter({}), u"Other Corp (F6G7H8I9J0)"_s);
    EXPECT_EQ(identityAfter(u"Gone Corp (K1L2M3N4O5)"_s), u"Other Corp (F6G7H8I9J0)"_s);
}
