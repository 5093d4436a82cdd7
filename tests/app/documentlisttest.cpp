// The list of documents: titles, new documents, the again item, closing all.

#include "document/mainwincontroller.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using platform::TabbingMode;

namespace {

class DocumentList : public testing::Test {
protected:
    DocumentList() { host.launch(); }

    QStringList titles()
    {
        QStringList titles;
        for (const DocumentPtr &document : host.application().allControllers())
            titles.append(document->window().title());
        return titles;
    }

    void closeAt(qsizetype index) { host.application().allControllers().at(index)->window().performClose(); }

    TestHost host;
};

} // namespace

TEST_F(DocumentList, newDocumentsTakeTheFirstFreeTitle)
{
    host.application().newDocument(0);
    host.application().newDocument(0);
    EXPECT_EQ(titles(), (QStringList{u"Untitled"_s, u"Untitled-2"_s, u"Untitled-3"_s}));
    closeAt(1);
    host.application().newDocument(0);
    EXPECT_EQ(titles(), (QStringList{u"Untitled"_s, u"Untitled-3"_s, u"Untitled-2"_s}));
}

TEST_F(DocumentList, theHundredthDocumentOfATitleGetsItBare)
{
    while (host.application().allControllers().size() < 99)
        host.application().newDocument(0);
    EXPECT_EQ(titles().last(), u"Untitled-99"_s);
    host.application().newDocument(0);
    EXPECT_EQ(titles().last(), u"Untitled"_s);
    EXPECT_EQ(titles().count(u"Untitled"_s), 2);
}

TEST_F(DocumentList, aDocumentsOwnTitleCountsAsTaken)
{
    host.window().setTitle(u"Foo.app"_s);
    EXPECT_EQ(host.application().uniqueWindowNameFrom(u"Foo.app"_s), u"Foo.app-2"_s);
    EXPECT_EQ(host.application().uniqueWindowNameFrom(u"foo.app"_s), u"foo.app"_s);
    EXPECT_EQ(host.application().uniqueWindowNameFrom({}), u"Untitled"_s);
}

// New documents

TEST_F(DocumentList, anAddedDocumentIsShownBeforeItIsListed)
{
    const int activations = host.applicationHost.activations;
    bool wasOnScreen = false;
    QObject::connect(&host.application(), &AppDelegate::documentAdded, &host.application(),
                     [&](MainWinController *added) {
                         wasOnScreen = host.applicationHost.onScreen.contains(&host.window(*added));
                     });
    const DocumentPtr document = host.application().addedDocument();
    EXPECT_TRUE(wasOnScreen);
    EXPECT_EQ(document, host.application().allControllers().last());
    EXPECT_EQ(host.applicationHost.activations, activations + 1);
    EXPECT_TRUE(host.window(*document).tabbingModes.isEmpty());
}

TEST_F(DocumentList, aNewDocumentIsListedBeforeItIsShownAndBringsNothingToTheFront)
{
    const int activations = host.applicationHost.activations;
    bool wasOnScreen = true;
    QObject::connect(&host.application(), &AppDelegate::documentAdded, &host.application(),
                     [&](MainWinController *added) {
                         wasOnScreen = host.applicationHost.onScreen.contains(&host.window(*added));
                     });
    host.application().newDocument(0);
    EXPECT_FALSE(wasOnScreen);
    EXPECT_EQ(host.applicationHost.onScreen.first(), &host.window());
    EXPECT_EQ(host.applicationHost.activations, activations);
}

namespace {

struct TagRow {
    const char *name;
    int tag;
    TabbingMode whenShown;
};

class NewDocumentTag : public DocumentList, public testing::WithParamInterface<TagRow> { };

} // namespace

TEST_P(NewDocumentTag, decidesOnATabForTheMomentOfShowing)
{
    host.application().newDocument(GetParam().tag);
    EXPECT_EQ(host.window().modesWhenShown, QList<TabbingMode>{GetParam().whenShown});
    QList<TabbingMode> modes{TabbingMode::automatic};
    if (GetParam().whenShown != TabbingMode::automatic)
        modes.prepend(GetParam().whenShown);
    EXPECT_EQ(host.window().tabbingModes, modes);
}

INSTANTIATE_TEST_SUITE_P(Tags, NewDocumentTag,
                         testing::Values(TagRow{"none", 0, TabbingMode::automatic},
                                         TagRow{"separateWindow", 1, TabbingMode::disallowed},
                                         TagRow{"tab", 2, TabbingMode::preferred},
                                         TagRow{"unknown", 3, TabbingMode::automatic},
                                         TagRow{"negative", -1, TabbingMode::automatic}),
                         [](const auto &row) { return row.param.name; });

// Closing

TEST_F(DocumentList, aClosedDocumentLeavesTheListAndGoesSoonAfter)
{
    const std::weak_ptr<MainWinController> document = host.application().allControllers().first();
    closeAt(0);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    EXPECT_FALSE(document.expired()) << "its window is still closing";
    host.settle();
    EXPECT_TRUE(document.expired());
}

TEST_F(DocumentList, aDocumentThatIsNotListedIsNoneToRemove)
{
    const DocumentPtr document = host.application().allControllers().first();
    host.application().removeWindowController(*document);
    host.application().removeWindowController(*document);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}

TEST_F(DocumentList, closeAllClosesFrontToBackAndEachMayRefuse)
{
    host.application().newDocument(0);
    host.application().newDocument(0);
    MainWinController &busy = *host.application().allControllers().at(1);
    busy.isBusy.set(true);
    QStringList closed;
    QObject::connect(&host.application(), &AppDelegate::documentRemoved, &host.application(),
                     [&closed](MainWinController *document) { closed.append(document->window().title()); });
    host.application().doCloseAll();
    EXPECT_EQ(closed, (QStringList{u"Untitled-3"_s, u"Untitled"_s}));
    EXPECT_EQ(titles(), QStringList{u"Untitled-2"_s});
    ASSERT_TRUE(host.window(busy).sheet);
    EXPECT_EQ(host.window(busy).sheet->alert.messageText, u"Continue Closing?"_s);
}

TEST_F(DocumentList, closeAllWithoutADocumentDoesNothing)
{
    host.application().doCloseAll();
    host.application().doCloseAll();
    EXPECT_TRUE(titles().isEmpty());
}

// The again item

namespace {

struct AgainRow {
    const char *name;
    quint64 lastAction;
    QString title;
    Action action;
};

class AgainItem : public DocumentList, public testing::WithParamInterface<AgainRow> { };

} // namespace

TEST_P(AgainItem, repeatsTheLastAction)
{
    host.document().lastAction.set(GetParam().lastAction);
    AppDelegate::AgainItem item{u"as it was"_s, Action::doCancel};
    host.application().menuNeedsUpdate(item);
    EXPECT_EQ(item.title, GetParam().title);
    EXPECT_EQ(item.action, GetParam().action);
}

INSTANTIATE_TEST_SUITE_P(LastActions, AgainItem,
                         testing::Values(AgainRow{"nothing", 0, u"Submit Again"_s, Action::none},
                                         AgainRow{"submit", 1, u"Submit Again"_s, Action::doSubmitAgain},
                                         AgainRow{"staple", 2, u"Staple Again"_s, Action::doStapleAgain},
                                         AgainRow{"sign", 3, u"Sign Again"_s, Action::doSignAgain},
                                         AgainRow{"unknown", 4, u"as it was"_s, Action::doCancel}),
                         [](const auto &row) { return row.param.name; });

TEST_F(DocumentList, withoutADocumentTheAgainItemIsDisabled)
{
    closeAt(0);
    AppDelegate::AgainItem item{u"Sign Again"_s, Action::doSignAgain};
    host.application().menuNeedsUpdate(item);
    EXPECT_EQ(item.title, u"Submit Again"_s);
    EXPECT_EQ(item.action, Action::none);
}

TEST_F(DocumentList, theAgainItemIsTheFrontDocuments)
{
    host.document().lastAction.set(signAction);
    host.application().newDocument(0);
    host.document().lastAction.set(stapleAction);
    AppDelegate::AgainItem item;
    host.application().menuNeedsUpdate(item);
    EXPECT_EQ(item.title, u"Staple Again"_s);
    host.application().allControllers().first()->window().show();
    host.application().menuNeedsUpdate(item);
    EXPECT_EQ(item.title, u"Sign Again"_s);
}

TEST_F(DocumentList, theApplicationEnablesEveryItemThatReachesIt)
{
    EXPECT_TRUE(host.application().validateMenuItem());
}
