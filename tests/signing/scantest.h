#pragma once

#include "signing/bundlescanner.h"
#include "signing/scandecisions.h"
#include "support/steptest.h"

/// Walks over folders of a test. Paths are shown relative to the folder of the items.
class ScanTest : public StepTest {
protected:
    ScanTest();

    /// What the walk finds.
    void walk(const QString &name, const QStringList &passedOver = {});

    /// What is signable, main executables included, in the order of discovery.
    QStringList discovered() const;
    /// What is signed on its own, in the order of discovery, and the same sorted.
    QStringList members() const;
    QStringList sortedMembers() const;
    /// The main executables, sorted.
    QStringList subtracted() const;

    /// A file that is code in the eyes of the walk.
    void makeCode(const QString &name, const QByteArray &bytes = items::machO());

private:
    QStringList shown(QStringList paths) const;

    OrderedPathSet m_signableSet;
    QSet<QString> m_setToSubtract;
};
