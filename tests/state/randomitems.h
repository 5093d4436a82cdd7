#pragma once

#include "support/items.h"
#include "support/testhost.h"

#include "platform/itempath.h"

#include <QDirIterator>

#include <gtest/gtest.h>

#include <random>

/// The items of a user, each with bytes of its own, and chance.
class RandomItems : public testing::Test {
protected:
    explicit RandomItems(unsigned seed)
        : m_random(seed)
    {
    }

    /// So that no copy that has been worked on passes for the item of the user. Another document may just
    /// have taken the copy away.
    static void leaveTrace(const QString &tool, const QStringList &arguments)
    {
        const QString item = arguments.value(arguments.size() - 1);
        const bool isFileSigned = tool == QLatin1String("productsign")
            || (tool == QLatin1String("codesign") && QFileInfo(item).isFile());
        if (!isFileSigned && tool != QLatin1String("xattr") && tool != QLatin1String("codesign"))
            return;
        QFile trace(isFileSigned ? item : item + QStringLiteral("/signed"));
        if (trace.open(QIODevice::WriteOnly))
            trace.write("signed");
    }

    // Chance

    int below(qsizetype limit)
    {
        return static_cast<int>(std::uniform_int_distribution<qsizetype>(0, limit - 1)(m_random));
    }
    bool happens(int percent) { return below(100) < percent; }
    template <class List>
    auto &oneOf(List &list)
    {
        return list[below(std::size(list))];
    }

    // The user's items, each with bytes of its own

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

    TestHost test;

private:
    std::mt19937 m_random;
    int m_serial = 0;
    QList<QByteArray> m_fingerprints;
    const QStringList itemNames{QStringLiteral("A.app"), QStringLiteral("B.pkg"), QStringLiteral("C.dmg"),
                                QStringLiteral("D.plugin")};
};
