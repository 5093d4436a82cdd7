// The tree of objects: lists, the object manager, and what answers where nothing is.

#include "dbus/hostonbus.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusArgument>

using namespace Qt::StringLiterals;

class Objects : public HostOnBus {
protected:
    /// Has a document made by the script; its path.
    QString makeDocument()
    {
        const QDBusMessage answer = HostOnBus::makeDocument();
        EXPECT_EQ(answer.signature(), u"o"_s) << answer.errorMessage().toStdString();
        return answer.arguments().value(0).value<QDBusObjectPath>().path();
    }
    qsizetype documentCount() { return host.application().allControllers().size(); }
};

TEST_F(Objects, theListsGoFromFrontToBack)
{
    host.application().newDocument(0);
    const QStringList documents{path(*host.application().allControllers().at(1)),
                                path(*host.application().allControllers().at(0))};
    EXPECT_EQ(client.getPaths(u"OrderedDocuments"_s), documents);
    EXPECT_EQ(client.getPaths(u"OrderedPseudoDocuments"_s), documents);
    const QStringList windows{bus::windowsPath + u"/2"_s, bus::windowsPath + u"/1"_s};
    EXPECT_EQ(client.getPaths(u"OrderedWindows"_s), windows);
    EXPECT_EQ(client.getPaths(u"AllOrderedWindows"_s), windows);
}

TEST_F(Objects, withoutDocumentsTheListsAreEmpty)
{
    host.window().close();
    EXPECT_TRUE(client.getPaths(u"OrderedDocuments"_s).isEmpty());
    EXPECT_TRUE(client.getPaths(u"OrderedWindows"_s).isEmpty());
}

TEST_F(Objects, aTabBehindAnotherIsInTheListOfAllWindowsOnly)
{
    host.application().newDocument(2);
    EXPECT_EQ(client.getPaths(u"OrderedWindows"_s), QStringList{bus::windowsPath + u"/2"_s});
    EXPECT_EQ(client.getPaths(u"AllOrderedWindows"_s),
              (QStringList{bus::windowsPath + u"/2"_s, bus::windowsPath + u"/1"_s}));
}

struct TabsRow {
    qsizetype visible;
    QList<int> order; ///< the numbers of the windows
};

class TabbedObjects : public Objects, public testing::WithParamInterface<TabsRow> {
protected:
    /// Four new windows as tabs of one frame, of which one shows.
    void openTabs(qsizetype visible)
    {
        host.application().newDocument(0);
        FakeTabGroup &group = *host.window().group;
        for (int place = 1; place < 4; ++place) {
            host.application().newDocument(0);
            group.insertWindow(host.window(), place);
        }
        group.setSelectedWindow(*group.windows().at(visible));
    }
    static QStringList paths(const QList<int> &numbers)
    {
        QStringList paths;
        for (const int number : numbers)
            paths.append(bus::windowsPath + u'/' + QString::number(number));
        return paths;
    }
};

TEST_P(TabbedObjects, areOneWindowOnScreenAndAllOfThemByNearnessToIt)
{
    host.window().close();
    openTabs(GetParam().visible);
    EXPECT_EQ(client.getPaths(u"OrderedWindows"_s), paths({GetParam().order.first()}));
    EXPECT_EQ(client.getPaths(u"AllOrderedWindows"_s), paths(GetParam().order));
    QStringList windowsOfDocuments;
    for (const QString &document : client.getPaths(u"OrderedPseudoDocuments"_s))
        windowsOfDocuments.append(
            client.get(document, bus::documentInterface, u"Window"_s).value<QDBusObjectPath>().path());
    EXPECT_EQ(windowsOfDocuments, paths(GetParam().order));
}

TEST_P(TabbedObjects, stayTogetherAmongOtherWindows)
{
    openTabs(GetParam().visible);
    host.application().newDocument(0);
    EXPECT_EQ(client.getPaths(u"OrderedWindows"_s), paths({6, GetParam().order.first(), 1}));
    EXPECT_EQ(client.getPaths(u"AllOrderedWindows"_s), paths(QList{6} + GetParam().order + QList{1}));
    openTabs(0); // the windows 7 to 10
    EXPECT_EQ(client.getPaths(u"AllOrderedWindows"_s),
              paths(QList{7, 8, 9, 10, 6} + GetParam().order + QList{1}));
}

INSTANTIATE_TEST_SUITE_P(VisibleTabs, TabbedObjects,
                         testing::Values(TabsRow{0, {2, 3, 4, 5}}, TabsRow{1, {3, 4, 5, 2}},
                                         TabsRow{2, {4, 5, 3, 2}}, TabsRow{3, {5, 4, 3, 2}}));

TEST_F(Objects, aMadeDocumentKnowsWhoMadeIt)
{
    const QString made = makeDocument();
    EXPECT_EQ(made, documentPath());
    EXPECT_EQ(client.get(made, bus::documentInterface, u"Caller"_s), QVariant(client.name()));
    host.application().newDocument(0);
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"Caller"_s), QVariant(u""_s));
}

TEST_F(Objects, aDocumentOfTheDesktopsActionsIsNobodysOnTheBus)
{
    client.call(bus::applicationPath, bus::desktopInterface, u"ActivateAction"_s,
                {u"new-document"_s, QVariantList(), QVariantMap()});
    ASSERT_EQ(documentCount(), 2);
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"Caller"_s), QVariant(u""_s));
}

TEST_F(Objects, aDocumentIsNotMadeWithAPropertyThatCannotBeSet)
{
    const auto make = [this](const QVariantMap &properties) { return HostOnBus::makeDocument(properties); };
    const QDBusMessage unknown = make({{u"NoSuchThing"_s, true}});
    EXPECT_EQ(errorOf(unknown), buserror::invalidArgs);
    EXPECT_TRUE(errorTextOf(unknown).contains(u"NoSuchThing"_s));
    const QDBusMessage readOnly = make({{u"UniqueID"_s, u"x"_s}});
    EXPECT_EQ(errorOf(readOnly), buserror::propertyReadOnly);
    EXPECT_TRUE(errorTextOf(readOnly).contains(u"UniqueID"_s));
    EXPECT_EQ(documentCount(), 1);
    EXPECT_EQ(errorOf(make({{u"DocStatus"_s, u"x"_s}})), u"org.sealwright.Error.Minus10003"_s);
}

TEST_F(Objects, theManagerListsDocumentsAndWindowsWithTheirProperties)
{
    const QDBusMessage answer =
        client.call(bus::applicationPath, bus::objectManagerInterface, u"GetManagedObjects"_s);
    const auto objects = qdbus_cast<BusManagedObjects>(answer.arguments().value(0));
    ASSERT_EQ(objects.size(), 2);
    const QVariantMap document = objects.value(QDBusObjectPath(documentPath())).value(bus::documentInterface);
    EXPECT_EQ(document.value(u"UniqueID"_s), QVariant(host.document().uniqueID));
    const QVariantMap window = objects.value(QDBusObjectPath(windowPath())).value(bus::windowInterface);
    EXPECT_EQ(window.value(u"Title"_s), QVariant(host.window().title()));
}

TEST_F(Objects, theManagerTellsOfEachDocumentThatComesAndGoes)
{
    client.listen();
    const QString made = makeDocument();
    host.window().close();
    const QStringList heard = client.heard(bus::objectManagerInterface);
    ASSERT_EQ(heard.size(), 4);
    EXPECT_TRUE(heard[0].startsWith(u"InterfacesAdded(%1/2,"_s.arg(bus::windowsPath)));
    EXPECT_TRUE(heard[1].startsWith(u"InterfacesAdded(%1,"_s.arg(made)));
    EXPECT_EQ(heard[2], u"InterfacesRemoved(%1, %2)"_s.arg(made, bus::documentInterface));
    EXPECT_EQ(heard[3], u"InterfacesRemoved(%1/2, %2)"_s.arg(bus::windowsPath, bus::windowInterface));
    const auto interfaces =
        qdbus_cast<BusInterfaceProperties>(client.messagesHeard().at(1).arguments().at(1));
    EXPECT_EQ(interfaces.value(bus::documentInterface).value(u"Caller"_s), QVariant(client.name()));
    EXPECT_EQ(errorOf(client.tryToGet(made, bus::documentInterface, u"Caller"_s)), buserror::unknownObject);
}

TEST_F(Objects, aWindowNumberIsNeverUsedAgain)
{
    host.window().close();
    makeDocument();
    EXPECT_EQ(windowPath(), bus::windowsPath + u"/2"_s);
}

TEST_F(Objects, whereNothingIsTheUsualErrorsAnswer)
{
    EXPECT_EQ(errorOf(client.call(bus::documentsPath + u"/x"_s, bus::documentInterface, u"Close"_s)),
              buserror::unknownObject);
    EXPECT_EQ(errorOf(client.call(documentPath(), u"org.example.Other"_s, u"Close"_s)),
              buserror::unknownInterface);
    EXPECT_EQ(errorOf(client.call(documentPath(), bus::documentInterface, u"NoSuchMethod"_s)),
              buserror::unknownMethod);
    EXPECT_EQ(errorOf(client.call(bus::documentsPath, bus::documentInterface, u"Close"_s)),
              buserror::unknownInterface);
}

TEST_F(Objects, aMethodIsFoundWithoutItsInterface)
{
    EXPECT_EQ(errorOf(client.call(documentPath(), {}, u"Cancel"_s)), u"no error"_s);
}

TEST_F(Objects, argumentsOfTheWrongTypesAreRefusedBeforeAnythingHappens)
{
    const std::pair<QString, QVariantList> calls[] = {
        {u"SubmitForNotarizing"_s, {}},
        {u"SubmitForNotarizing"_s, {u"file:///a"_s}},
        {u"SubmitForNotarizing"_s, {QVariantMap(), 1}},
        {u"MakeDocument"_s, {}},
        {u"MakeDocument"_s, {7}},
    };
    for (const auto &[method, arguments] : calls) {
        const QDBusMessage answer =
            client.call(bus::applicationPath, bus::applicationInterface, method, arguments);
        EXPECT_EQ(errorOf(answer), buserror::invalidArgs) << method.toStdString();
    }
    EXPECT_EQ(errorOf(client.call(documentPath(), bus::documentInterface, u"Close"_s, {1})),
              buserror::invalidArgs);
    EXPECT_EQ(documentCount(), 1);
}
