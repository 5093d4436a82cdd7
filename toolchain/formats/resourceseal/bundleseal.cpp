#include "formats/resourceseal/bundleseal.h"

#include "formats/resourceseal/filedigests.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace toolchain::seal {

namespace {

QString fullPath(const SealedFolder &folder, const QByteArray &path)
{
    return folder.base + u'/' + QFile::decodeName(path);
}

platform::Result<std::vector<ScannedItem>> scanByUsualRules(const SealedFolder &folder)
{
    return scanFolder(folder, firstRules(folder.layout), secondRules(folder.layout));
}

/// Puts a seal together from what was scanned.
class SealMaker {
public:
    SealMaker(const SealedFolder &folder, Digests digests, const DescribeNested &describe)
        : m_folder(folder)
        , m_digests(digests)
        , m_describe(describe)
    {
    }

    platform::Result<QByteArray> make(const std::vector<ScannedItem> &items)
    {
        for (const ScannedItem &item : items) {
            const QString problem = take(item);
            if (!problem.isEmpty())
                return platform::Error{problem};
        }
        const QString problem = takeDigests();
        if (!problem.isEmpty())
            return platform::Error{problem};
        return sealBytes(std::move(m_files), std::move(m_files2), firstRules(m_folder.layout),
                         secondRules(m_folder.layout));
    }

private:
    QString take(const ScannedItem &item)
    {
        if (item.kind == ItemKind::NestedCode)
            return takeNested(item);
        if (item.kind == ItemKind::Link)
            return takeLink(item);
        m_fileItems.push_back(&item);
        m_jobs.push_back({item.path,
                          item.first != Coverage::Omitted || m_digests != Digests::Sha256,
                          item.second != Coverage::Omitted && m_digests != Digests::Sha1,
                          {},
                          {},
                          {}});
        return {};
    }

    QString takeNested(const ScannedItem &item)
    {
        const QString path = fullPath(m_folder, item.path);
        const auto code = m_describe(path);
        if (!code)
            return code.error() + u"\nIn subcomponent: "_s + path;
        Entry entry;
        entry.cdHash = code->cdHash;
        entry.requirement = code->requirement.isNull() ? u""_s : code->requirement;
        m_files2.push_back({item.path, entry});
        return {};
    }

    QString takeLink(const ScannedItem &item)
    {
        if (leadsOut(m_folder, item.path, item.linkTarget))
            return fullPath(m_folder, item.path) + u": invalid destination for symbolic link in bundle"_s;
        Entry entry;
        entry.linkTarget = item.linkTarget;
        entry.isOptional = item.second == Coverage::Optional;
        m_files2.push_back({item.path, entry});
        return {};
    }

    QString takeDigests()
    {
        digestFiles(m_folder.base, m_jobs);
        for (std::size_t number = 0; number < m_jobs.size(); ++number) {
            const DigestJob &job = m_jobs[number];
            if (!job.problem.isEmpty())
                return fullPath(m_folder, job.path) + u": "_s + job.problem;
            takeFile(*m_fileItems[number], job);
        }
        return {};
    }

    void takeFile(const ScannedItem &item, const DigestJob &job)
    {
        if (item.first != Coverage::Omitted) {
            Entry entry;
            entry.sha1 = job.sha1;
            entry.isOptional = item.first == Coverage::Optional;
            m_files.push_back({item.path, entry});
        }
        if (item.second != Coverage::Omitted) {
            Entry entry;
            entry.sha1 = m_digests == Digests::Sha256 ? QByteArray() : job.sha1;
            entry.sha256 = job.sha256;
            entry.isOptional = item.second == Coverage::Optional;
            m_files2.push_back({item.path, entry});
        }
    }

    const SealedFolder &m_folder;
    const Digests m_digests;
    const DescribeNested &m_describe;
    std::vector<const ScannedItem *> m_fileItems; ///< one for each job
    std::vector<DigestJob> m_jobs;
    std::vector<NamedEntry> m_files;
    std::vector<NamedEntry> m_files2;
};

} // namespace

platform::Result<QList<QString>> nestedCodeIn(const SealedFolder &folder)
{
    const auto items = scanByUsualRules(folder);
    if (!items)
        return items.failure();
    QList<QString> nested;
    for (const ScannedItem &item : *items) {
        if (item.kind == ItemKind::NestedCode)
            nested.append(fullPath(folder, item.path));
    }
    return nested;
}

platform::Result<QByteArray> makeSeal(const SealedFolder &folder, Digests digests,
                                      const DescribeNested &describe)
{
    const auto items = scanByUsualRules(folder);
    return items ? SealMaker(folder, digests, describe).make(*items) : items.failure();
}

} // namespace toolchain::seal
