#pragma once

#include "state/randomwalk.h"
#include "support/items.h"

#include "platform/itempath.h"

#include <QDirIterator>

/// The items of a user, each with bytes of its own.
class RandomItems : public RandomWalk {
protected:
    using RandomWalk::RandomWalk;

    QString itemPath(const QString &name) const { return test.item(name.left(1) + u'/' + name); }

    QUrl someItem()
    {
        const QString name = oneOf(itemNames);
        const QString path = itemPath(name);
        if (!QFileInfo::exists(path)) {
            const QByteArray serial = QByteArray::number(++m_serial);
            if (name.endsWith(QLatin1String(".pkg")) || name.endsWith(QLatin1String(".dmg"))) {
                items::makeFile(path, "item " + serial);
            } else {
                items::makeBundle(path);
                items::makeFile(path + QStringLiteral("/Contents/serial"), serial);
            }
            m_fingerprints.append(items::fingerprint(path));
        }
        return itempath::toUrl(path);
    }

    void expectAllItemsAreSomewhere()
    {
        QSet<QByteArray> found;
        QDirIterator entries(test.item(QStringLiteral("..")), QDir::AllEntries | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            if (itemNames.contains(entries.fileName()))
                found.insert(items::fingerprint(path));
        }
        for (const QByteArray &fingerprint : m_fingerprints)
            EXPECT_TRUE(found.contains(fingerprint));
    }

private:
    int m_serial = 0;
    QList<QByteArray> m_fingerprints;
    const QStringList itemNames{QStringLiteral("A.app"), QStringLiteral("B.pkg"), QStringLiteral("C.dmg"),
                                QStringLiteral("D.plugin")};
};
