#include "formats/resourceseal.h"

#include "formats/resourcerules.h"

#include <QCryptographicHash>
#include <QFile>
#include <QVariantMap>

#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

bool isSealable(const QString &path, const QString &executable)
{
    return path != executable && !isOutsideOfSeals(path);
}

QVariant firstVersionEntry(const SealedFile &file, Coverage coverage)
{
    if (coverage != Coverage::Optional)
        return file.sha1;
    return QVariantMap{{u"hash"_s, file.sha1}, {u"optional"_s, true}};
}

QVariant secondVersionEntry(const SealedFile &file, Coverage coverage, SealDigests digests)
{
    QVariantMap entry;
    if (file.isLink()) {
        entry.insert(u"symlink"_s, file.linkTarget);
    } else {
        if (digests == SealDigests::Sha1AndSha256)
            entry.insert(u"hash"_s, file.sha1);
        entry.insert(u"hash2"_s, file.sha256);
    }
    if (coverage == Coverage::Optional)
        entry.insert(u"optional"_s, true);
    return entry;
}

/// What an entry of "files2" says against a file; empty if it agrees.
QString objection(const QVariantMap &entry, const SealedFile &file)
{
    if (entry.contains(u"cdhash"_s))
        return u"nested code sealed by its code directory, which cannot be checked here"_s;
    const bool hasDigest = entry.contains(u"hash"_s) || entry.contains(u"hash2"_s);
    if (!hasDigest && !entry.contains(u"symlink"_s))
        return u"the seal has no digest for it"_s;
    const bool agrees = file.isLink() ? !hasDigest && entry.value(u"symlink"_s).toString() == file.linkTarget
                                      : hasDigest && !entry.contains(u"symlink"_s)
            && entry.value(u"hash"_s, file.sha1).toByteArray() == file.sha1
            && entry.value(u"hash2"_s, file.sha256).toByteArray() == file.sha256;
    return agrees ? QString() : u"a sealed resource is missing or invalid: file modified"_s;
}

QList<SealProblem> missingFiles(const QVariantMap &entries, const SealedTree &tree)
{
    QList<SealProblem> problems;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        const bool isOptional = entry.value().toMap().value(u"optional"_s).toBool();
        if (!tree.contains(entry.key()) && !isOptional)
            problems.append({entry.key(), u"a sealed resource is missing or invalid: file missing"_s});
    }
    return problems;
}

QByteArray readSealFile(const Bundle &bundle)
{
    QFile file(bundle.sealPath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

SealResult makeSeal(const SealedTree &tree, const QString &executable, SealDigests digests)
{
    QVariantMap files;
    QVariantMap files2;
    for (auto entry = tree.begin(); entry != tree.end(); ++entry) {
        if (!isSealable(entry.key(), executable))
            continue;
        const Coverage first = coverageOf(entry.key(), SealVersion::First);
        if (first != Coverage::Omitted && !entry->isLink())
            files.insert(entry.key(), firstVersionEntry(*entry, first));
        const Coverage second = coverageOf(entry.key(), SealVersion::Second);
        if (second != Coverage::Omitted)
            files2.insert(entry.key(), secondVersionEntry(*entry, second, digests));
    }
    const auto list = platform::xmlPropertyListData(QVariantMap{
        {u"files"_s, files},
        {u"files2"_s, files2},
        {u"rules"_s, resourceRules(SealVersion::First)},
        {u"rules2"_s, resourceRules(SealVersion::Second)},
    });
    return {list.data, list.error};
}

QList<SealProblem> checkSeal(const QByteArray &seal, const SealedTree &tree, const QString &executable)
{
    const auto list = platform::propertyListFromData(seal);
    const QVariant files = list.value.toMap().value(u"files2"_s);
    if (files.metaType() != QMetaType::fromType<QVariantMap>())
        return {{QString(),
                 u"the seal cannot be read: "_s + (list.error.isEmpty() ? u"no files2"_s : list.error)}};
    const QVariantMap entries = files.toMap();
    QList<SealProblem> problems = missingFiles(entries, tree);
    for (auto file = tree.begin(); file != tree.end(); ++file) {
        if (!isSealable(file.key(), executable)
            || coverageOf(file.key(), SealVersion::Second) == Coverage::Omitted)
            continue;
        const auto entry = entries.find(file.key());
        const QString message = entry == entries.end()
            ? u"a sealed resource is missing or invalid: file added"_s
            : objection(entry->toMap(), *file);
        if (!message.isEmpty())
            problems.append({file.key(), message});
    }
    return problems;
}

QList<SealProblem> checkSealOf(const Bundle &bundle)
{
    const QByteArray seal = readSealFile(bundle);
    if (seal.isEmpty())
        return {{QString(), u"code object is not signed at all"_s}};
    const auto result = readSealedTree(bundle.base);
    if (!result.error.isEmpty())
        return {{QString(), result.error}};
    return checkSeal(seal, result.tree, bundle.executable);
}

QByteArray sealDigest(const Bundle &bundle)
{
    const QByteArray seal = readSealFile(bundle);
    return seal.isEmpty() ? QByteArray() : QCryptographicHash::hash(seal, QCryptographicHash::Sha256).toHex();
}

} // namespace toolchain
