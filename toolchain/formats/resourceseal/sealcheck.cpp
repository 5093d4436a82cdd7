#include "formats/resourceseal/sealcheck.h"

#include "formats/resourceseal/filedigests.h"
#include "support/openfile.h"

#include <QFile>
#include <QSet>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;

namespace toolchain::seal {

namespace {

constexpr qint64 largestSealFile = 256 << 20; // bytes
const QString invalidResource = u"a sealed resource is missing or invalid"_s;

/// Gathers what is wrong with one bundle.
class SealChecker {
public:
    SealChecker(const SealedFolder &folder, const CodeSeal &seal, const VerifyNested &verify)
        : m_folder(folder)
        , m_seal(seal)
        , m_verify(verify)
    {
    }

    QList<Problem> check(const RuleSet &rules, Strictness strictness)
    {
        static const RuleSet none = *RuleSet::fromRules({});
        const auto items = scanFolder(m_folder, none, rules);
        if (!items)
            return {{ProblemKind::badSeal, m_folder.base, invalidResource, items.error()}};
        for (const ScannedItem &item : *items)
            take(item, strictness);
        takeDigests();
        takeMissing();
        std::stable_sort(m_problems.begin(), m_problems.end(),
                         [](const Problem &left, const Problem &right) { return left.path < right.path; });
        return m_problems;
    }

private:
    void add(ProblemKind kind, const QByteArray &path, const QString &text = invalidResource,
             const QString &detail = {})
    {
        m_problems.append({kind, m_folder.base + u'/' + QFile::decodeName(path), text, detail});
    }

    const QHash<QByteArray, Entry> &entries() const
    {
        return m_seal.version == 1 ? m_seal.files : m_seal.files2;
    }

    void take(const ScannedItem &item, Strictness strictness)
    {
        const bool isBeyondSeal = m_seal.version == 1 && item.kind == ItemKind::link;
        if (strictness == Strictness::strict && item.kind == ItemKind::link
            && leadsOut(m_folder, item.path, item.linkTarget))
            add(ProblemKind::badLink, item.path, u"invalid destination for symbolic link in bundle"_s);
        const auto entry = entries().constFind(item.path);
        m_seen.insert(item.path);
        if (entry == entries().constEnd()) {
            if (!isBeyondSeal)
                add(ProblemKind::added, item.path);
            return;
        }
        if (entry->isNested())
            takeNested(item, *entry);
        else if (entry->isLink() || item.kind != ItemKind::file)
            takeLink(item, *entry);
        else
            takeFile(item, *entry);
    }

    void takeNested(const ScannedItem &item, const Entry &entry)
    {
        if (item.kind == ItemKind::link)
            return add(ProblemKind::modified, item.path);
        const QString text = m_verify(m_folder.base + u'/' + QFile::decodeName(item.path), entry);
        if (!text.isEmpty())
            add(ProblemKind::nested, item.path, text);
    }

    void takeLink(const ScannedItem &item, const Entry &entry)
    {
        const bool agrees =
            item.kind == ItemKind::link && entry.isLink() && item.linkTarget == entry.linkTarget;
        if (!agrees)
            add(ProblemKind::modified, item.path);
    }

    void takeFile(const ScannedItem &item, const Entry &entry)
    {
        if (entry.sha1.isEmpty() && entry.sha256.isEmpty())
            return add(ProblemKind::modified, item.path);
        m_jobs.push_back({item.path, !entry.sha1.isEmpty(), !entry.sha256.isEmpty(), {}, {}, {}});
    }

    void takeDigests()
    {
        digestFiles(m_folder.base, m_jobs);
        for (const DigestJob &job : m_jobs) {
            const Entry &entry = *entries().constFind(job.path);
            if (!job.problem.isEmpty())
                add(ProblemKind::modified, job.path, invalidResource, job.problem);
            else if (!(job.sha1 == entry.sha1) || !(job.sha256 == entry.sha256))
                add(ProblemKind::modified, job.path);
        }
    }

    void takeMissing()
    {
        for (auto entry = entries().begin(); entry != entries().end(); ++entry) {
            if (!entry->isOptional && !m_seen.contains(entry.key()))
                add(ProblemKind::missing, entry.key());
        }
    }

    const SealedFolder &m_folder;
    const CodeSeal &m_seal;
    const VerifyNested &m_verify;
    QSet<QByteArray> m_seen;
    std::vector<DigestJob> m_jobs;
    QList<Problem> m_problems;
};

QList<Problem> obsolescence(const CodeSeal &seal, const RuleSet &rules, const QString &sealPath)
{
    if (seal.version == 1)
        return {
            {ProblemKind::obsolete, sealPath, u"resource envelope is obsolete (version 1 signature)"_s, {}}};
    if (omitsMoreThanUsual(rules))
        return {
            {ProblemKind::obsolete, sealPath, u"resource envelope is obsolete (custom omit rules)"_s, {}}};
    return {};
}

} // namespace

QString Problem::line() const
{
    switch (kind) {
    case ProblemKind::modified:
        return u"file modified: "_s + path;
    case ProblemKind::added:
        return u"file added: "_s + path;
    case ProblemKind::missing:
        return u"file missing: "_s + path;
    default:
        return {};
    }
}

QList<Problem> checkSeal(const QByteArray &sealBytes, const SealedFolder &folder, Strictness strictness,
                         const VerifyNested &verify)
{
    const QString sealPath = folder.base + u"/_CodeSignature/CodeResources"_s;
    const auto unreadable = [&](const QString &reason) {
        return QList<Problem>{
            {ProblemKind::badSeal, sealPath, u"the sealed resource directory is invalid"_s, reason}};
    };
    const auto seal = readSeal(sealBytes);
    if (!seal)
        return unreadable(seal.error());
    const auto rules = RuleSet::fromRules(seal->version == 1 ? seal->rules : seal->rules2);
    if (!rules)
        return unreadable(rules.error());
    QList<Problem> problems;
    if (strictness == Strictness::strict)
        problems = obsolescence(*seal, *rules, sealPath);
    return problems + SealChecker(folder, *seal, verify).check(*rules, strictness);
}

platform::Result<QByteArray> readSealFile(const QString &base)
{
    const QString path = base + u"/_CodeSignature/CodeResources"_s;
    const OpenFile file(QFile::encodeName(path).toStdString());
    struct stat information { };
    if (file.descriptor() < 0 && (errno == ENOENT || errno == ENOTDIR))
        return platform::Error{u"code object is not signed at all"_s};
    if (file.descriptor() < 0 || fstat(file.descriptor(), &information) != 0)
        return platform::Error{path + u": "_s + QString::fromLocal8Bit(std::strerror(errno))};
    if (!S_ISREG(information.st_mode) || information.st_size > largestSealFile)
        return platform::Error{path + u": not a regular file, or too large"_s};
    QFile reader;
    if (!reader.open(file.descriptor(), QIODevice::ReadOnly))
        return platform::Error{path + u": "_s + reader.errorString()};
    return reader.read(information.st_size);
}

} // namespace toolchain::seal
