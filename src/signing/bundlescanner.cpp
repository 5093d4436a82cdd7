#include "signing/bundlescanner.h"

#include "run/run.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString fileTool = u"/usr/bin/file"_s;

/// Does to the copy what the walk decides.
class CopyWatcher : public ScanWatcher {
public:
    CopyWatcher(Run &run, OrderedPathSet &signableSet, QSet<QString> &setToSubtract)
        : m_run(run)
        , m_signableSet(signableSet)
        , m_setToSubtract(setToSubtract)
    {
    }

    bool isCode(const QString &file) override
    {
        const auto response = m_run.tools.run(fileTool, {u"-b"_s, file});
        return response->status() == 0 && namesSignableCode(response->outputString());
    }

    void signable(const QString &item) override { m_signableSet.append(item); }
    void mainExecutable(const QString &file) override { m_setToSubtract.insert(file); }

    void passedOver(const QString &item, PassedOver reason) override
    {
        if (reason == PassedOver::leftover)
            m_run.host.files.removeItem(item).ignore();
    }

private:
    Run &m_run;
    OrderedPathSet &m_signableSet;
    QSet<QString> &m_setToSubtract;
};

} // namespace

void BundleScanner::parseDirectory(const QString &directory, OrderedPathSet &signableSet,
                                   QSet<QString> &setToSubtract, const QStringList &arrayToPassOver)
{
    CopyWatcher watcher(m_run, signableSet, setToSubtract);
    ScanDecisions(m_run.host.files, arrayToPassOver, watcher).parseDirectory(directory);
}

void BundleScanner::parseFramework(const QString &framework, OrderedPathSet &signableSet,
                                   QSet<QString> &setToSubtract, const QStringList &arrayToPassOver)
{
    CopyWatcher watcher(m_run, signableSet, setToSubtract);
    ScanDecisions(m_run.host.files, arrayToPassOver, watcher).parseFramework(framework);
}

} // namespace sealwright
