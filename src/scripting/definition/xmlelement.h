#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

namespace sealwright {

/// One element of an XML document with all that is in it, but for its text.
struct XmlElement {
    QString name;
    QHash<QString, QString> attributes; ///< by qualified name
    QList<XmlElement> children;

    /// The root element; one without a name if the text is no XML.
    [[nodiscard]] static XmlElement parse(const QByteArray &xml);

    bool hasAttribute(const QString &attributeName) const { return attributes.contains(attributeName); }
    /// Null if there is none.
    QString attribute(const QString &attributeName) const { return attributes.value(attributeName); }
    /// The first of that name; one without a name if there is none.
    XmlElement child(const QString &childName) const { return childrenNamed(childName).value(0); }
    QList<XmlElement> childrenNamed(const QString &childName) const;
};

} // namespace sealwright
