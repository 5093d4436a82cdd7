#include "dbus/hostonbus.h"

#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

class Introspection : public HostOnBus {
protected:
    /// The "name" attributes of the elements of a kind, on the given level below the root.
    QStringList names(const QString &path, const QString &element)
    {
        const QDBusMessage answer = client.call(path, bus::introspectableInterface, u"Introspect"_s);
        EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
        QXmlStreamReader xml(answer.arguments().value(0).toString());
        QStringList found;
        int depth = 0;
        while (!xml.atEnd()) {
            const auto token = xml.readNext();
            depth += token == QXmlStreamReader::StartElement ? 1 : 0;
            if (token == QXmlStreamReader::StartElement && depth > 1 && xml.name() == element)
                found.append(xml.attributes().value(u"name"_s).toString());
            depth -= token == QXmlStreamReader::EndElement ? 1 : 0;
        }
        EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
        return found;
    }
};

TEST_F(Introspection, theApplicationTellsItsInterfacesAndChildren)
{
    const QStringList interfaces = names(bus::applicationPath, u"interface"_s);
    for (const QString &name : {bus::applicationInterface, bus::desktopInterface, bus::objectManagerInterface,
                                bus::propertiesInterface, bus::introspectableInterface})
        EXPECT_EQ(interfaces.count(name), 1) << name.toStdString();
    EXPECT_EQ(names(bus::applicationPath, u"node"_s), (QStringList{u"document"_s, u"window"_s}));
    EXPECT_TRUE(names(bus::applicationPath, u"method"_s).contains(u"SubmitForNotarizing"_s));
    EXPECT_TRUE(names(bus::applicationPath, u"property"_s).contains(u"LastErrorFrom"_s));
}

TEST_F(Introspection, aDocumentTellsItsMethodsPropertiesAndSignals)
{
    const QStringList methods = names(documentPath(), u"method"_s);
    for (const QString &name : {u"SubmitForNotarizing"_s, u"FetchLog"_s, u"Cancel"_s, u"Close"_s})
        EXPECT_TRUE(methods.contains(name)) << name.toStdString();
    const QStringList properties = names(documentPath(), u"property"_s);
    EXPECT_EQ(properties.first(), u"UniqueID"_s); // in the order of the definition
    EXPECT_EQ(properties.last(), u"DropDMGConfig"_s);
    EXPECT_EQ(properties.count(u"DocStatus"_s), 1);
    for (const QString &name : {u"LogAppended"_s, u"LogCleared"_s, u"StatusChanged"_s})
        EXPECT_TRUE(names(documentPath(), u"signal"_s).contains(name)) << name.toStdString();
    EXPECT_EQ(names(documentPath(), u"interface"_s).count(bus::propertiesInterface), 1);
}

TEST_F(Introspection, aWindowTellsItsProperties)
{
    const QStringList properties = names(windowPath(), u"property"_s);
    for (const QString &name : {u"Title"_s, u"Document"_s})
        EXPECT_EQ(properties.count(name), 1) << name.toStdString();
}

TEST_F(Introspection, thePathsBetweenListTheObjectsBelow)
{
    EXPECT_EQ(names(u"/org/sealwright"_s, u"node"_s), QStringList{u"Sealwright"_s});
    EXPECT_EQ(names(bus::documentsPath, u"node"_s), QStringList{bus::pathElement(host.document().uniqueID)});
    EXPECT_EQ(names(bus::windowsPath, u"node"_s), QStringList{u"1"_s});
}

TEST_F(Introspection, aPathWithoutAnObjectIsUnknown)
{
    for (const QString &path : {bus::documentsPath + u"/none"_s, bus::windowsPath + u"/99"_s,
                                bus::applicationPath + u"/other"_s, documentPath() + u"/below"_s}) {
        const QDBusMessage answer = client.call(path, bus::introspectableInterface, u"Introspect"_s);
        EXPECT_EQ(errorOf(answer), buserror::unknownObject) << path.toStdString();
    }
}
