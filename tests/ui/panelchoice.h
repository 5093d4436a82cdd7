#pragma once

#include "ui/itempanel.h"

#include <QListView>
#include <QTest>

#include <gtest/gtest.h>

/// Waits for the panel of the page and chooses what has that name in the folder, as a person does in its
/// list.
inline void chooseInPanel(QWidget &page, const QString &folder, const QString &name)
{
    constexpr int deadline = 20'000; // milliseconds
    const auto panel = [&page] { return page.findChild<ItemPanel *>(); };
    ASSERT_TRUE(QTest::qWaitFor([&panel] { return panel() != nullptr; }, deadline));
    panel()->setDirectory(folder);
    auto *const list = panel()->findChild<QListView *>(QStringLiteral("listView"));
    const auto row = [list, &name] {
        const QModelIndex first = list->model()->index(0, 0, list->rootIndex());
        return list->model()->match(first, Qt::DisplayRole, name, 1, Qt::MatchExactly).value(0);
    };
    ASSERT_TRUE(QTest::qWaitFor([&row] { return row().isValid(); }, deadline)) << name.toStdString();
    list->setCurrentIndex(row());
    QMetaObject::invokeMethod(panel(), "accept");
}
