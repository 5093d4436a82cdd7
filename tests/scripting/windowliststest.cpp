// The application's lists of windows and documents, front to back.

#include "document/mainwincontroller.h"
#include "scripting/NSApplication+Scripting.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class WindowLists : public testing::Test {
protected:
    WindowLists() { host.launch(); }

    /// A new document in front of the others.
    FakeWindow &open(const QString &title)
    {
        host.application().newDocument(0);
        host.window().setTitle(title);
        return host.window();
    }

    /// Four new documents as the tabs of one window, of which one shows.
    void openTabs(const QString &prefix, qsizetype visible)
    {
        FakeTabGroup &group = *open(prefix + u"1"_s).group;
        for (int number = 2; number <= 4; ++number)
            group.insertWindow(open(prefix + QString::number(number)), number - 1);
        group.setSelectedWindow(*group.windows().at(visible));
    }

    void closeUntitled() { host.application().allControllers().first()->window().performClose(); }

    static QStringList titles(const QList<platform::Window *> &windows)
    {
        QStringList titles;
        for (const platform::Window *window : windows)
            titles.append(window->title());
        return titles;
    }
    QStringList ordered() { return titles(scripting().orderedWindows()); }
    QStringList allOrdered() { return titles(scripting().allOrderedWindows()); }
    NSApplicationScripting &scripting() { return host.application().scripting(); }

    TestHost host;
};

struct TabsRow {
    const char *name;
    qsizetype visible;
    QStringList order;
};

class TabGroup : public WindowLists, public testing::WithParamInterface<TabsRow> { };

} // namespace

TEST_P(TabGroup, listsTheVisibleTabFirstAndTheOthersByNearness)
{
    closeUntitled();
    openTabs(u"tab "_s, GetParam().visible);
    EXPECT_EQ(allOrdered(), GetParam().order);
}

TEST_P(TabGroup, isOneWindowOnScreen)
{
    closeUntitled();
    openTabs(u"tab "_s, GetParam().visible);
    EXPECT_EQ(ordered(), QStringList{GetParam().order.first()});
    EXPECT_EQ(scripting().frontmostWindow()->title(), GetParam().order.first());
    EXPECT_EQ(scripting().allOrderedWindows().size(), 4);
}

TEST_P(TabGroup, staysTogetherAmongOtherWindows)
{
    openTabs(u"tab "_s, GetParam().visible);
    open(u"front"_s);
    EXPECT_EQ(ordered(), (QStringList{u"front"_s, GetParam().order.first(), u"Untitled"_s}));
    EXPECT_EQ(allOrdered(), QStringList{u"front"_s} + GetParam().order + QStringList{u"Untitled"_s});
}

INSTANTIATE_TEST_SUITE_P(
    VisibleTabs, TabGroup,
    testing::Values(TabsRow{"first", 0, {u"tab 1"_s, u"tab 2"_s, u"tab 3"_s, u"tab 4"_s}},
                    TabsRow{"second", 1, {u"tab 2"_s, u"tab 3"_s, u"tab 4"_s, u"tab 1"_s}},
                    TabsRow{"third", 2, {u"tab 3"_s, u"tab 4"_s, u"tab 2"_s, u"tab 1"_s}},
                    TabsRow{"last", 3, {u"tab 4"_s, u"tab 3"_s, u"tab 2"_s, u"tab 1"_s}}),
    [](const auto &row) { return row.param.name; });

TEST_F(WindowLists, groupsKeepTheirOrder)
{
    closeUntitled();
    openTabs(u"back "_s, 0);
    openTabs(u"front "_s, 3);
    EXPECT_EQ(allOrdered(),
              (QStringList{u"front 4"_s, u"front 3"_s, u"front 2"_s, u"front 1"_s, u"back 1"_s, u"back 2"_s,
                           u"back 3"_s, u"back 4"_s}));
}

TEST_F(WindowLists, theDocumentsFollowTheWindows)
{
    openTabs(u"tab "_s, 2);
    QStringList documents;
    for (const MainWinController *document : scripting().orderedPseudoDocuments())
        documents.append(document->window().title());
    EXPECT_EQ(documents, allOrdered());
    EXPECT_EQ(scripting().orderedDocuments(), scripting().orderedPseudoDocuments());
    EXPECT_EQ(scripting().frontmostPseudoDocument()->window().title(), u"tab 3"_s);
}

TEST_F(WindowLists, windowsOfNoDocumentAreInNone)
{
    FakeWindow panel(host.applicationHost);
    panel.setTitle(u"panel"_s);
    panel.show();
    EXPECT_EQ(ordered(), QStringList{u"Untitled"_s});
    EXPECT_EQ(allOrdered(), QStringList{u"Untitled"_s});
    EXPECT_EQ(scripting().frontmostWindow(), &host.window());
    EXPECT_EQ(scripting().windowController(&panel), nullptr);
}

TEST_F(WindowLists, areEmptyWithoutADocument)
{
    closeUntitled();
    EXPECT_TRUE(ordered().isEmpty());
    EXPECT_TRUE(allOrdered().isEmpty());
    EXPECT_TRUE(scripting().orderedPseudoDocuments().isEmpty());
    EXPECT_EQ(scripting().frontmostWindow(), nullptr);
    EXPECT_EQ(scripting().frontmostPseudoDocument(), nullptr);
}

TEST_F(WindowLists, closeAllReachesTheHiddenTabs)
{
    openTabs(u"tab "_s, 2);
    QStringList closed;
    QObject::connect(&host.application(), &AppDelegate::documentRemoved, &host.application(),
                     [&closed](MainWinController *document) { closed.append(document->window().title()); });
    host.application().doCloseAll();
    EXPECT_EQ(closed, (QStringList{u"tab 3"_s, u"tab 4"_s, u"tab 2"_s, u"tab 1"_s, u"Untitled"_s}));
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}
