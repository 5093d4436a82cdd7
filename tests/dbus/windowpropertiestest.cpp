// A window's scripting properties, over a real bus.

#include "dbus/hostonbus.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusArgument>

using namespace Qt::StringLiterals;

namespace {

constexpr int separateWindow = 1; // tags of the items that make documents
constexpr int tab = 2;

class WindowProperties : public HostOnBus {
protected:
    /// The path of the window that was opened first, second and so on.
    static QString at(int number) { return bus::windowsPath + u'/' + QString::number(number); }
    FakeWindow &fake(qsizetype number)
    {
        return TestHost::window(*host.application().allControllers().at(number - 1));
    }
    void open(int tag) { host.application().newDocument(tag); }

    QVariant get(int number, const QString &name)
    {
        return client.get(at(number), bus::windowInterface, name);
    }
    QString set(int number, const QString &name, const QVariant &value)
    {
        return failureOf(client.set(at(number), bus::windowInterface, name, value));
    }
    QString pathIn(int number, const QString &name)
    {
        return get(number, name).value<QDBusObjectPath>().path();
    }
    QStringList tabs(int number)
    {
        QStringList paths;
        const auto list = qdbus_cast<QList<QDBusObjectPath>>(get(number, u"TabbedWindows"_s));
        for (const QDBusObjectPath &path : list)
            paths.append(path.path());
        return paths;
    }
    QStringList orderedWindows() { return client.getPaths(u"OrderedWindows"_s); }
    static QVariant object(const QString &path) { return QVariant::fromValue(QDBusObjectPath(path)); }

    const QString noError = u"no error"_s;
};

} // namespace

TEST_F(WindowProperties, theOnlyWindowTakesTheIndexOneOnly)
{
    EXPECT_EQ(get(1, u"OrderedIndex"_s), QVariant(qlonglong(1)));
    EXPECT_EQ(set(1, u"OrderedIndex"_s, 1), noError);
    EXPECT_EQ(set(1, u"OrderedIndex"_s, 2), u"N6 Invalid index: 2; there is only 1 window."_s);
}

TEST_F(WindowProperties, anIndexBeyondTheWindowsIsRefusedWithItsText)
{
    open(separateWindow);
    open(separateWindow);
    for (const int index : {0, -1, 4})
        EXPECT_EQ(set(2, u"OrderedIndex"_s, index),
                  u"N6 Invalid index: %1; there are only 3 windows."_s.arg(index));
    EXPECT_EQ(orderedWindows(), (QStringList{at(3), at(2), at(1)}));
}

TEST_F(WindowProperties, theIndexThatItHasChangesNothingAndOneBringsToTheFront)
{
    open(separateWindow);
    open(separateWindow);
    EXPECT_EQ(set(2, u"OrderedIndex"_s, 2), noError);
    EXPECT_EQ(orderedWindows(), (QStringList{at(3), at(2), at(1)}));
    EXPECT_EQ(set(1, u"OrderedIndex"_s, 1), noError);
    EXPECT_EQ(orderedWindows(), (QStringList{at(1), at(3), at(2)}));
}

TEST_F(WindowProperties, aHiddenTabSaysWhereItIs)
{
    open(tab);
    open(tab);
    open(separateWindow);
    EXPECT_EQ(get(2, u"IsVisible"_s), QVariant(false));
    EXPECT_TRUE(isNoValue(get(2, u"TabbedWindows"_s)));
    EXPECT_EQ(get(2, u"OrderedIndex"_s), QVariant(qlonglong(2)));
    EXPECT_EQ(get(2, u"TabOrderedIndex"_s), QVariant(qlonglong(2)));
    EXPECT_EQ(get(2, u"IsTabbed"_s), QVariant(true));
    EXPECT_EQ(pathIn(2, u"ParentWindow"_s), at(3));
    EXPECT_EQ(get(3, u"IsVisible"_s), QVariant(true));
    EXPECT_EQ(tabs(3), (QStringList{at(1), at(2), at(3)}));
}

TEST_F(WindowProperties, aWindowWithoutTabsSaysSo)
{
    EXPECT_EQ(get(1, u"IsTabbed"_s), QVariant(false));
    EXPECT_TRUE(isNoValue(get(1, u"TabbedWindows"_s)));
    EXPECT_EQ(pathIn(1, u"ParentWindow"_s), at(1));
    EXPECT_EQ(get(1, u"TabOrderedIndex"_s), QVariant(qlonglong(1)));
}

TEST_F(WindowProperties, hidingAVisibleWindowDoesNothingAndHidingTheLastTabShowsTheOneBeforeIt)
{
    open(tab);
    open(tab);
    EXPECT_EQ(set(3, u"IsVisible"_s, false), noError);
    EXPECT_EQ(orderedWindows(), QStringList{at(3)});
    EXPECT_EQ(set(1, u"IsVisible"_s, true), noError);
    EXPECT_EQ(orderedWindows(), QStringList{at(1)});
    EXPECT_EQ(set(3, u"IsVisible"_s, false), noError);
    EXPECT_EQ(orderedWindows(), QStringList{at(2)});
}

TEST_F(WindowProperties, theTabIndexMovesATabAndRefusesAnyBeyond)
{
    for (const int index : {1, 0, -3, 7})
        EXPECT_EQ(set(1, u"TabOrderedIndex"_s, index), noError) << "a window without tabs";
    open(tab);
    open(tab);
    EXPECT_EQ(set(1, u"TabOrderedIndex"_s, 3), noError);
    EXPECT_EQ(tabs(3), (QStringList{at(2), at(3), at(1)}));
    for (const int index : {0, -1, 4})
        EXPECT_EQ(set(1, u"TabOrderedIndex"_s, index),
                  u"N6 Invalid index: %1; there are only 3 tabs in the window."_s.arg(index));
    EXPECT_EQ(tabs(3), (QStringList{at(2), at(3), at(1)}));
}

TEST_F(WindowProperties, aLoneTabRefusesAnyOtherPlace)
{
    fake(1).showsTabWhenAlone = true;
    EXPECT_EQ(set(1, u"TabOrderedIndex"_s, 2), u"N6 Invalid index: 2; there is only 1 tab in the window."_s);
}

TEST_F(WindowProperties, tabbingTheOnlyWindowDoesNothingAndTheFrontOfTwoGoesBeforeTheOther)
{
    EXPECT_EQ(set(1, u"IsTabbed"_s, true), noError);
    EXPECT_EQ(get(1, u"IsTabbed"_s), QVariant(false));
    open(separateWindow);
    EXPECT_EQ(set(2, u"IsTabbed"_s, true), noError);
    EXPECT_EQ(get(2, u"TabOrderedIndex"_s), QVariant(qlonglong(1)));
    EXPECT_EQ(get(1, u"TabOrderedIndex"_s), QVariant(qlonglong(2)));
    EXPECT_EQ(orderedWindows().size(), 1);
}

TEST_F(WindowProperties, untabbingATabMovesItAsideAndLeavesTheOthers)
{
    open(tab);
    open(tab);
    const QRect before = fake(2).place;
    EXPECT_EQ(set(2, u"IsTabbed"_s, false), noError);
    EXPECT_EQ(fake(2).place, before.translated(21, -23));
    EXPECT_EQ(tabs(3), (QStringList{at(1), at(3)}));
    EXPECT_EQ(get(2, u"IsTabbed"_s), QVariant(false));
}

TEST_F(WindowProperties, aParentTakesTheWindowAsItsLastTab)
{
    open(tab);
    open(separateWindow);
    EXPECT_EQ(set(3, u"ParentWindow"_s, object(at(1))), noError);
    EXPECT_EQ(tabs(2), (QStringList{at(1), at(2), at(3)}));
    EXPECT_EQ(set(1, u"ParentWindow"_s, object(at(3))), noError);
    EXPECT_EQ(tabs(2), (QStringList{at(1), at(2), at(3)}));
}

TEST_F(WindowProperties, theBoundsAreFourNumbers)
{
    const platform::QDRect bounds{-10, 20, 710, 940};
    EXPECT_EQ(set(1, u"BoundsAsQDRect"_s, QVariant::fromValue(bounds)), noError);
    EXPECT_EQ(fake(1).bounds, bounds);
    const QVariant read = get(1, u"BoundsAsQDRect"_s);
    EXPECT_EQ(read.value<QDBusArgument>().currentSignature(), u"(nnnn)"_s);
    EXPECT_EQ(qdbus_cast<platform::QDRect>(read), bounds);
}

TEST_F(WindowProperties, theBoundsOfAHiddenTabAreThoseOfTheVisibleOneAndOffScreenThereAreNone)
{
    open(tab);
    fake(2).bounds = {1, 2, 3, 4};
    EXPECT_EQ(qdbus_cast<platform::QDRect>(get(1, u"BoundsAsQDRect"_s)), fake(2).bounds);
    host.applicationHost.onScreen.clear();
    EXPECT_TRUE(isNoValue(get(1, u"BoundsAsQDRect"_s)));
    EXPECT_EQ(get(1, u"OrderedIndex"_s), QVariant(qlonglong(0)));
}

TEST_F(WindowProperties, valuesOfAnotherTypeAreRefused)
{
    for (const QString &name : {u"OrderedIndex"_s, u"TabOrderedIndex"_s, u"IsVisible"_s, u"IsTabbed"_s,
                                u"BoundsAsQDRect"_s, u"ParentWindow"_s}) {
        for (const QVariant &value : {QVariant(u"1"_s), nothing}) {
            const QDBusMessage answer = client.set(at(1), bus::windowInterface, name, value);
            EXPECT_EQ(errorOf(answer), buserror::invalidArgs) << name.toStdString();
        }
    }
    EXPECT_EQ(errorOf(client.set(at(1), bus::windowInterface, u"ParentWindow"_s, object(documentPath()))),
              buserror::invalidArgs)
        << "no window is there";
}

TEST_F(WindowProperties, theTabsHaveNoWrite)
{
    const QDBusMessage answer = client.set(at(1), bus::windowInterface, u"TabbedWindows"_s, nothing);
    EXPECT_EQ(errorOf(answer), buserror::propertyReadOnly);
}

TEST_F(WindowProperties, aDocumentTellsOfItsWindowAndRearrangesItWhileItIsBusy)
{
    open(separateWindow);
    MainWinController &front = host.document();
    front.changeStatus(status::waiting);
    EXPECT_EQ(failureOf(client.set(path(front), bus::documentInterface, u"IsTabbed"_s, true)), noError);
    EXPECT_EQ(client.get(path(front), bus::documentInterface, u"IsTabbed"_s), QVariant(true));
    EXPECT_EQ(client.get(path(front), bus::documentInterface, u"WindowTab"_s).value<QDBusObjectPath>().path(),
              at(1));
    EXPECT_EQ(failureOf(client.set(path(front), bus::documentInterface, u"WindowTab"_s, object(at(2)))),
              u"Minus10003 "_s);
    front.changeStatus(status::ready);
}

TEST_F(WindowProperties, aGroupIsOneWindowInTheOrderAndAllOfItsTabsInTheWholeList)
{
    open(tab);
    open(tab);
    open(tab);
    set(3, u"IsVisible"_s, true);
    EXPECT_EQ(orderedWindows(), QStringList{at(3)});
    EXPECT_EQ(client.getPaths(u"AllOrderedWindows"_s), (QStringList{at(3), at(4), at(2), at(1)}));
}
