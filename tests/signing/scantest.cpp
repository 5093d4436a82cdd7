#include "signing/scantest.h"

using namespace Qt::StringLiterals;

ScanTest::ScanTest()
{
    host.launch();
    isLaunched = true;
}

void ScanTest::walk(const QString &name, const QStringList &passedOver)
{
    m_signableSet = {};
    m_setToSubtract = {};
    QStringList arrayToPassOver;
    for (const QString &passed : passedOver)
        arrayToPassOver.append(host.item(passed));
    ASSERT_TRUE(run([&] {
        steps().scanner.parseDirectory(host.item(name), m_signableSet, m_setToSubtract, arrayToPassOver);
        return true;
    }));
}

QStringList ScanTest::discovered() const
{
    return shown(m_signableSet.paths());
}

QStringList ScanTest::members() const
{
    return shown(m_signableSet.without(m_setToSubtract));
}

QStringList ScanTest::sortedMembers() const
{
    QStringList sorted = members();
    sorted.sort();
    return sorted;
}

QStringList ScanTest::subtracted() const
{
    QStringList sorted = shown(m_setToSubtract.values());
    sorted.sort();
    return sorted;
}

void ScanTest::makeCode(const QString &name, const QByteArray &bytes)
{
    items::makeFile(host.item(name), bytes, true);
}

QStringList ScanTest::shown(QStringList paths) const
{
    for (QString &path : paths)
        path.remove(0, host.item({}).size());
    return paths;
}
