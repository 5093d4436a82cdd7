#include "scripting/definition/xmlelement.h"

#include <QXmlStreamReader>

namespace sealwright {

namespace {

XmlElement readElement(QXmlStreamReader &xml)
{
    XmlElement element{xml.qualifiedName().toString(), {}, {}};
    for (const QXmlStreamAttribute &attribute : xml.attributes())
        element.attributes.insert(attribute.qualifiedName().toString(), attribute.value().toString());
    while (xml.readNextStartElement())
        element.children.append(readElement(xml));
    return element;
}

} // namespace

XmlElement XmlElement::parse(const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    reader.readNextStartElement();
    XmlElement root = readElement(reader);
    return reader.hasError() ? XmlElement{} : root;
}

QList<XmlElement> XmlElement::childrenNamed(const QString &childName) const
{
    QList<XmlElement> named;
    for (const XmlElement &child : children) {
        if (child.name == childName)
            named.append(child);
    }
    return named;
}

} // namespace sealwright
