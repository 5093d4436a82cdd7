#include "formats/resourceseal/bundlescan.h"

#include "support/openfile.h"

#include <QFile>
#include <QStringBuilder>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

using namespace Qt::StringLiterals;

namespace toolchain::seal {

namespace {

constexpr qsizetype mostItems = 2'000'000;
constexpr QByteArrayView appleDoubleMagic("\x00\x05\x16\x07", 4);

enum class EntryType { file, folder, link, other };

EntryType typeOf(mode_t mode)
{
    if (S_ISREG(mode))
        return EntryType::file;
    if (S_ISDIR(mode))
        return EntryType::folder;
    return S_ISLNK(mode) ? EntryType::link : EntryType::other;
}

/// Whether XML 1.0 can hold the bytes, which are UTF-8.
bool isText(QByteArrayView bytes)
{
    const auto isControl = [](char byte) {
        return uchar(byte) < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
    };
    return std::none_of(bytes.begin(), bytes.end(), isControl)
        && !bytes.contains(QByteArrayView("\xef\xbf\xbe")) && !bytes.contains(QByteArrayView("\xef\xbf\xbf"));
}

/// What most names are: printable ASCII.
bool isPlain(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= 0x20 && byte < 0x7f; });
}

struct Name {
    QByteArray name;
    EntryType type;
};

class Scanner {
public:
    Scanner(const SealedFolder &folder, const RuleSet &rules, const RuleSet &rules2, Keep keep)
        : m_folder(folder)
        , m_base(QFile::encodeName(folder.base))
        , m_rules(rules)
        , m_rules2(rules2)
        , m_keep(keep)
    {
    }

    platform::Result<std::vector<ScannedItem>> scan()
    {
        QList<QByteArray> waiting{QByteArray()};
        while (!waiting.isEmpty() && m_outcome)
            scanOne(waiting.takeLast(), waiting);
        if (!m_outcome)
            return m_outcome.failure();
        return std::move(m_items);
    }

private:
    void fail(const QByteArray &path, const QString &reason)
    {
        if (m_outcome)
            m_outcome = platform::Error{QFile::decodeName(m_base + (path.isEmpty() ? "" : "/") + path)
                                        + u": "_s + reason};
    }
    void failWithErrno(const QByteArray &path) { fail(path, QString::fromLocal8Bit(std::strerror(errno))); }

    void scanOne(const QByteArray &folder, QList<QByteArray> &waiting)
    {
        const std::vector<Name> names = namesIn(folder);
        for (const Name &name : names) {
            const QByteArray path = folder.isEmpty() ? name.name : QByteArray(folder % '/' % name.name);
            if (!m_outcome)
                return;
            if (path == m_folder.executable || isOutsideOfSeals(path)
                || isAttributesOfAnother(path, name, names))
                continue;
            if (name.type == EntryType::folder && !isNestedFolder(path, name.name))
                waiting.append(path);
            else
                take(path, name.type);
        }
    }

    std::vector<Name> namesIn(const QByteArray &folder)
    {
        const QByteArray path = folder.isEmpty() ? m_base : m_base + '/' + folder;
        std::vector<Name> names;
        const int descriptor = open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        const std::unique_ptr<DIR, int (*)(DIR *)> stream(descriptor < 0 ? nullptr : fdopendir(descriptor),
                                                          closedir);
        if (!stream)
            failWithErrno(folder);
        while (stream) {
            errno = 0;
            const dirent *entry = readdir(stream.get());
            if (entry == nullptr)
                break;
            const QByteArray name(entry->d_name);
            if (name != "." && name != "..")
                names.push_back({name, typeOf(*entry, dirfd(stream.get()))});
        }
        if (stream && errno != 0)
            failWithErrno(folder);
        std::sort(names.begin(), names.end(), isBefore);
        return names;
    }

    static bool isBefore(const Name &left, const Name &right) { return left.name < right.name; }

    static EntryType typeOf(const dirent &entry, int folder)
    {
        if (entry.d_type != DT_UNKNOWN)
            return seal::typeOf(mode_t(DTTOIF(entry.d_type)));
        struct stat information { };
        const int outcome = fstatat(folder, entry.d_name, &information, AT_SYMLINK_NOFOLLOW);
        return outcome == 0 ? seal::typeOf(information.st_mode) : EntryType::other;
    }

    /// `names` is all that lies in the folder, in the order of names.
    bool isAttributesOfAnother(const QByteArray &path, const Name &name, const std::vector<Name> &names) const
    {
        const bool isSuspect = name.name.startsWith("._") && name.type == EntryType::file;
        if (!isSuspect
            || !std::binary_search(names.begin(), names.end(), Name{name.name.mid(2), {}}, isBefore))
            return false;
        const OpenFile file((m_base + '/' + path).toStdString());
        char first[4];
        return file.descriptor() >= 0 && read(file.descriptor(), first, sizeof first) == sizeof first
            && QByteArrayView(first, sizeof first) == appleDoubleMagic;
    }

    bool isNestedFolder(const QByteArray &path, const QByteArray &name)
    {
        return name.contains('.') && coverage(m_rules2, path) == Coverage::nested;
    }

    Coverage coverage(const RuleSet &rules, const QByteArray &path)
    {
        const auto result = rules.coverageOf(path);
        if (!result)
            fail(path, u"a resource rule takes too long on this name"_s);
        return result.value_or(Coverage::omitted);
    }

    void take(const QByteArray &path, EntryType type)
    {
        if (!isPlain(path) && !checkCharacters(path))
            return;
        ScannedItem item{path, ItemKind::file, Coverage::omitted, coverage(m_rules2, path), {}};
        const bool isNested = item.second == Coverage::nested && type != EntryType::link;
        if (isNested)
            item.kind = ItemKind::nestedCode;
        else if (type == EntryType::file)
            item.first = coverage(m_rules, path);
        if (item.first == Coverage::omitted && item.second == Coverage::omitted)
            return;
        if (type == EntryType::other)
            return fail(path, u"neither a file, a folder nor a symbolic link"_s);
        if (type == EntryType::link)
            readLink(item);
        if (++m_found > mostItems)
            return fail(path, u"the bundle has more than %1 files"_s.arg(mostItems));
        if (m_keep == Keep::everything || item.kind != ItemKind::file)
            m_items.push_back(std::move(item));
    }

    bool checkCharacters(const QByteArray &path)
    {
        if (!path.isValidUtf8())
            fail(path, u"the name is not valid UTF-8"_s);
        else if (!isText(path))
            fail(path, u"the name holds characters that a property list cannot hold"_s);
        return bool(m_outcome);
    }

    void readLink(ScannedItem &item)
    {
        item.kind = ItemKind::link;
        QByteArray target(PATH_MAX, Qt::Uninitialized);
        const ssize_t length =
            readlink((m_base + '/' + item.path).constData(), target.data(), std::size_t(target.size()));
        if (length < 0)
            return failWithErrno(item.path);
        item.linkTarget = target.first(length);
        if (!item.linkTarget.isValidUtf8() || !isText(item.linkTarget))
            fail(item.path, u"a property list cannot hold the link's target"_s);
    }

    const SealedFolder &m_folder;
    const QByteArray m_base;
    const RuleSet &m_rules;
    const RuleSet &m_rules2;
    const Keep m_keep;
    std::vector<ScannedItem> m_items;
    qsizetype m_found = 0; ///< kept or not
    platform::Outcome m_outcome;
};

/// How many folders lie between a bundle's own folder and the one that the seal's paths start from.
qsizetype levelsInBundle(const SealedFolder &folder)
{
    if (folder.layout == Layout::flat)
        return 0;
    return folder.base.endsWith(u"/Contents"_s) ? 1 : folder.base.contains(u"/Versions/"_s) ? 2 : 0;
}

} // namespace

platform::Result<std::vector<ScannedItem>> scanFolder(const SealedFolder &folder, const RuleSet &rules,
                                                      const RuleSet &rules2, Keep keep)
{
    return Scanner(folder, rules, rules2, keep).scan();
}

bool leadsOut(const SealedFolder &folder, const QByteArray &path, const QByteArray &linkTarget)
{
    if (linkTarget.startsWith('/'))
        return !linkTarget.startsWith("/System/") && !linkTarget.startsWith("/Library/");
    qsizetype depth = levelsInBundle(folder) + path.count('/');
    for (const QByteArray &part : linkTarget.split('/')) {
        if (part == "..")
            --depth;
        else if (!part.isEmpty() && part != ".")
            ++depth;
        if (depth < 0)
            return true;
    }
    return false;
}

} // namespace toolchain::seal
