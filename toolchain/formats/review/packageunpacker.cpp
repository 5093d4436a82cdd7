#include "formats/review/packageunpacker.h"

#include "formats/package/expansion.h"
#include "formats/review/streamunpacker.h"
#include "formats/xar/archive.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::review {

namespace {

bool isArchiveOfFiles(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    return name == "Payload"_L1 || name == "Scripts"_L1;
}

class PackageUnpacker {
public:
    PackageUnpacker(const xar::Archive &package, QString folder, UnpackBudget &budget)
        : m_package(package)
        , m_folder(std::move(folder))
        , m_budget(budget)
    {
    }

    Result<void> run()
    {
        for (const xar::TocFile &file : m_package.toc().files) {
            if (--m_budget.entries < 0)
                return tooMuch();
            auto laid = file.data ? lay(file) : Result<void>();
            if (!laid)
                return laid;
        }
        return {};
    }

private:
    /// What the path is if no link lies on it below the folder.
    [[nodiscard]] QString canonical(const QString &path) const
    {
        return QFileInfo(m_folder).canonicalFilePath() + path.mid(m_folder.size());
    }

    static Error tooMuch() { return {u"unpacks to more than can be looked at"_s}; }

    Result<void> lay(const xar::TocFile &file)
    {
        const QString place = m_folder + u'/' + file.path;
        const QString parent = QFileInfo(place).path();
        QDir().mkpath(parent);
        if (QFileInfo(parent).canonicalFilePath() != canonical(parent)) // a payload's link is in the way
            return Error{u"\"%1\" leads out of the package"_s.arg(file.path)};
        if (!isArchiveOfFiles(place))
            return copy(file, place);
        const QString packed = place + u".packed"_s;
        auto copied = copy(file, packed);
        if (!copied)
            return copied;
        QDir().mkpath(place);
        auto unpacked = unpackStream(packed, ArchiveKind::compressed, place, m_budget);
        QFile::remove(packed);
        return unpacked;
    }

    Result<void> copy(const xar::TocFile &file, const QString &place)
    {
        QFile out(place);
        if (!out.open(QIODevice::WriteOnly))
            return Error{u"\"%1\" cannot be unpacked"_s.arg(file.path)};
        return m_package.unpack(file, [this, &out](QByteArrayView bytes) {
            m_budget.bytes -= bytes.size();
            return m_budget.bytes >= 0 && out.write(bytes.data(), bytes.size()) == bytes.size();
        });
    }

    const xar::Archive &m_package;
    const QString m_folder;
    UnpackBudget &m_budget;
};

} // namespace

Result<void> unpackPackage(const QString &package, const QString &folder, UnpackBudget &budget)
{
    const auto archive = xar::Archive::open(package);
    if (!archive)
        return archive.failure();
    QDir().rmdir(folder); // it is to be a new one
    if (package::expandPackage(*archive, folder, package::Depth::payloads))
        return {};
    // Payloads may hold links to places on the disk they are installed to, which nobody follows here.
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    return PackageUnpacker(*archive, folder, budget).run();
}

} // namespace toolchain::review
