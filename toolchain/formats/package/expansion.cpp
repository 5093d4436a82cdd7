#include "formats/package/expansion.h"

#include "formats/package/payload.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::package {

namespace {

constexpr quint64 longestTarget = 4'096; // bytes

/// Writes the items of a cpio archive below a folder of the expansion.
class CpioTaker {
public:
    CpioTaker(SafeFolder &folder, QByteArray below)
        : m_folder(folder)
        , m_below(std::move(below))
    {
    }

    CpioVisitor visitor()
    {
        return {[this](const CpioEntry &entry) { return begin(entry); },
                [this](QByteArrayView bytes) { return take(bytes); }};
    }

private:
    platform::Outcome begin(const CpioEntry &entry)
    {
        m_path = entry.path.isEmpty() ? m_below : m_below + '/' + entry.path;
        m_target.clear();
        m_targetLeft = entry.type == CpioType::link ? entry.size : 0;
        switch (entry.type) {
        case CpioType::folder:
            return m_folder.makeFolder(m_path, entry.mode);
        case CpioType::file:
            return m_folder.beginFile(m_path, entry.mode, entry.size);
        case CpioType::link:
            return entry.size > 0 && entry.size <= longestTarget ? platform::Outcome()
                                                                 : wrong(u"a link without a target"_s);
        case CpioType::other:
            break;
        }
        return wrong(u"neither a file, a folder nor a symbolic link"_s);
    }

    platform::Outcome take(QByteArrayView bytes)
    {
        if (m_targetLeft == 0)
            return m_folder.write(bytes);
        m_target.append(bytes);
        m_targetLeft -= quint64(bytes.size());
        return m_targetLeft > 0 ? platform::Outcome() : makeLink();
    }

    /// A target is relative to the payload's own top: one that leads out of that leads out.
    platform::Outcome makeLink() { return m_folder.makeLink(m_path, m_target); }

    [[nodiscard]] platform::Error wrong(const QString &reason) const
    {
        return {QString::fromUtf8(m_path) + u": "_s + reason};
    }

    SafeFolder &m_folder;
    const QByteArray m_below;
    QByteArray m_path;
    QByteArray m_target;
    quint64 m_targetLeft = 0; ///< bytes
};

bool isScripts(const QString &path)
{
    return path == u"Scripts" || (path.endsWith(u"/Scripts") && path.count(u'/') == 1);
}

class Expander {
public:
    Expander(const xar::Archive &archive, SafeFolder &folder, Depth depth)
        : m_archive(archive)
        , m_folder(folder)
    {
        if (depth == Depth::payloads)
            m_payloads = payloadsOf(archive);
    }

    platform::Outcome expand()
    {
        for (const xar::TocFile &file : m_archive.toc().files) {
            const auto outcome = take(file);
            if (!outcome)
                return outcome;
        }
        return {};
    }

private:
    platform::Outcome take(const xar::TocFile &file)
    {
        const QByteArray path = file.path.toUtf8();
        switch (file.type) {
        case xar::TocFileType::folder:
            return m_folder.makeFolder(path, file.mode);
        case xar::TocFileType::link:
            return m_folder.makeLink(path, file.linkTarget.toUtf8());
        case xar::TocFileType::file:
            return m_payloads.contains(&file) || isScripts(file.path) ? takeCpio(file) : takeFile(file, path);
        case xar::TocFileType::other:
            break;
        }
        return platform::Error{file.path + u": neither a file, a folder nor a symbolic link"_s};
    }

    platform::Outcome takeFile(const xar::TocFile &file, const QByteArray &path)
    {
        auto outcome = m_folder.beginFile(path, file.mode, file.data ? file.data->size : 0);
        if (!outcome)
            return outcome;
        const auto unpacked = m_archive.unpack(file, [&](QByteArrayView bytes) {
            outcome = m_folder.write(bytes);
            return bool(outcome);
        });
        return outcome ? unpacked : outcome;
    }

    platform::Outcome takeCpio(const xar::TocFile &file)
    {
        const QByteArray path = file.path.toUtf8();
        CpioTaker taker(m_folder, path);
        const CpioVisitor visitor = taker.visitor();
        const auto made = m_folder.makeFolder(path, 0755);
        return made ? readPayload(m_archive, file, visitor) : made;
    }

    const xar::Archive &m_archive;
    SafeFolder &m_folder;
    QList<const xar::TocFile *> m_payloads;
};

} // namespace

platform::Outcome expandPackage(const xar::Archive &archive, const QString &place, Depth depth)
{
    const auto folder = SafeFolder::create(place);
    if (!folder)
        return folder.failure();
    const auto outcome = Expander(archive, **folder, depth).expand();
    return outcome ? (*folder)->finish() : outcome;
}

} // namespace toolchain::package
