#include "formats/resourceseal/bundleseal.h"

#include <QFile>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;

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

    platform::Result<MadeSeal> make(std::vector<ScannedItem> items)
    {
        m_files.reserve(items.size());
        for (ScannedItem &item : items) {
            const Outcome taken = take(item);
            if (!taken)
                return taken.failure();
        }
        items = {};
        const Outcome digested = digestAll();
        if (!digested)
            return digested.failure();
        return MadeSeal(m_folder.layout, m_digests, std::move(m_files), std::move(m_others));
    }

private:
    Outcome take(ScannedItem &item)
    {
        if (item.kind == ItemKind::nestedCode)
            return takeNested(item);
        if (item.kind == ItemKind::link)
            return takeLink(item);
        SealedFile file;
        file.path = std::move(item.path);
        file.wantsSha1 = item.first != Coverage::omitted || m_digests != Digests::sha256;
        file.wantsSha256 = item.second != Coverage::omitted && m_digests != Digests::sha1;
        file.first = item.first;
        file.second = item.second;
        m_files.push_back(std::move(file));
        return {};
    }

    Outcome takeNested(const ScannedItem &item)
    {
        const QString path = fullPath(m_folder, item.path);
        const auto code = m_describe(path);
        if (!code)
            return Error{code.error() + u"\nIn subcomponent: "_s + path};
        Entry entry;
        entry.cdHash = code->cdHash;
        entry.requirement = code->requirement.isNull() ? u""_s : code->requirement;
        m_others.push_back({item.path, entry});
        return {};
    }

    Outcome takeLink(const ScannedItem &item)
    {
        if (leadsOut(m_folder, item.path, item.linkTarget))
            return Error{u"invalid destination for symbolic link in bundle\nIn detail: "_s
                         + fullPath(m_folder, item.path)};
        Entry entry;
        entry.linkTarget = item.linkTarget;
        entry.isOptional = item.second == Coverage::optional;
        m_others.push_back({item.path, entry});
        return {};
    }

    Outcome digestAll()
    {
        digestFiles(m_folder.base, m_files);
        for (const SealedFile &file : m_files) {
            if (!file.problem.isEmpty())
                return Error{fullPath(m_folder, file.path) + u": "_s + file.problem};
        }
        return {};
    }

    const SealedFolder &m_folder;
    const Digests m_digests;
    const DescribeNested &m_describe;
    std::vector<SealedFile> m_files;
    std::vector<NamedEntry> m_others; ///< links and nested code
};

} // namespace

platform::Result<QList<QString>> nestedCodeIn(const SealedFolder &folder)
{
    const auto items = scanByUsualRules(folder);
    if (!items)
        return items.failure();
    QList<QString> nested;
    for (const ScannedItem &item : *items) {
        if (item.kind == ItemKind::nestedCode)
            nested.append(fullPath(folder, item.path));
    }
    return nested;
}

platform::Result<MadeSeal> collectSeal(const SealedFolder &folder, Digests digests,
                                       const DescribeNested &describe)
{
    auto items = scanByUsualRules(folder);
    if (!items)
        return items.failure();
    return SealMaker(folder, digests, describe).make(*std::move(items));
}

platform::Result<QByteArray> makeSeal(const SealedFolder &folder, Digests digests,
                                      const DescribeNested &describe)
{
    const auto seal = collectSeal(folder, digests, describe);
    return seal ? seal->bytes() : platform::Result<QByteArray>(seal.failure());
}

} // namespace toolchain::seal
