#include "formats/zipwriter.h"

#include "formats/appledouble.h"
#include "formats/failures.h"
#include "formats/fileattributes.h"
#include "formats/zip/zipoutput.h"
#include "support/wholefile.h"

#include <QFile>
#include <QSet>
#include <QStringDecoder>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace fs = std::filesystem;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

constexpr std::size_t longestName = 65'535; ///< bytes of a path in an archive

struct Source {
    fs::path path;
    std::string name; ///< in the archive
};

/// Everything to pack, parents first, in the order of the names.
Result<std::vector<Source>> sourcesIn(const fs::path &source, ZipRoot root)
{
    std::vector<Source> sources;
    const fs::path base = root == ZipRoot::parent ? source.parent_path() : source;
    if (root == ZipRoot::parent || !fs::is_directory(source))
        sources.push_back({source, source.filename().string()});
    const std::size_t skipped =
        base.empty() ? 0 : base.native().size() + (base.native().ends_with('/') ? 0 : 1);
    std::error_code error;
    if (fs::symlink_status(source, error).type() == fs::file_type::directory) {
        auto entry = fs::recursive_directory_iterator(source, error);
        for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
            sources.push_back({entry->path(), entry->path().native().substr(skipped)});
    }
    if (error)
        return systemFailure(source, error.value());
    std::sort(sources.begin(), sources.end(),
              [](const Source &a, const Source &b) { return a.name < b.name; });
    return sources;
}

/// Packs sources one after the other until one cannot be packed.
class Packer {
public:
    Packer(zip::ZipOutput &output, ZipAttributes attributes)
        : m_output(output)
        , m_attributes(attributes)
    {
    }

    [[nodiscard]] const platform::Outcome &outcome() const { return m_outcome; }

    void pack(const Source &source)
    {
        const QString path = QFile::decodeName(QByteArray::fromStdString(source.path.native()));
        if (isSidecar(path) || !takeName(source))
            return;
        struct stat info = {};
        if (lstat(source.path.c_str(), &info) != 0)
            m_outcome = systemFailure(source.path, errno);
        else
            packAs(source, info);
        if (m_outcome && m_attributes != ZipAttributes::leftOut)
            packAttributes(source, path, info.st_mtim.tv_sec);
        if (m_outcome)
            m_outcome = m_output.outcome();
    }

private:
    /// macOS compares names whatever they are composed of. Names of ASCII alone are one to it if they are one
    /// here.
    bool takeName(const Source &source)
    {
        if (source.name.size() > longestName) {
            m_outcome = failureOf(source.path, "the path is too long for an archive");
            return false;
        }
        const bool isAscii =
            std::all_of(source.name.begin(), source.name.end(), [](char byte) { return byte >= 0; });
        if (isAscii)
            return true;
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString name = decoder(QByteArrayView(source.name.data(), qsizetype(source.name.size())));
        if (decoder.hasError())
            m_outcome = failureOf(source.path, "not a name that macOS can hold");
        else if (const QString same = name.normalized(QString::NormalizationForm_D); m_names.contains(same))
            m_outcome = failureOf(source.path,
                                  "macOS takes its name for the same as that of another file in its folder");
        else
            m_names.insert(same);
        return bool(m_outcome);
    }

    void packAs(const Source &source, const struct stat &info)
    {
        zip::Member member{QByteArray::fromStdString(source.name), quint16(info.st_mode),
                           info.st_mtim.tv_sec};
        if (S_ISDIR(info.st_mode)) {
            member.name += '/';
            m_output.add(member, {});
        } else if (S_ISREG(info.st_mode)) {
            m_output.addFile(member, source.path, quint64(info.st_size));
        } else if (S_ISLNK(info.st_mode)) {
            std::error_code error;
            m_output.add(member, QByteArray::fromStdString(fs::read_symlink(source.path, error).native()));
            if (error)
                m_outcome = systemFailure(source.path, error.value());
        } else {
            m_outcome = failureOf(source.path, "neither a file, a folder nor a symbolic link");
        }
    }

    void packAttributes(const Source &source, const QString &path, qint64 modified)
    {
        const auto attributes = readAttributes(path);
        if (!attributes)
            m_outcome = attributes.failure();
        else if (!attributes->isEmpty())
            m_output.add({nameForAttributesOf(source.name), S_IFREG | 0644, modified},
                         appledouble::fileWith(*attributes));
    }

    [[nodiscard]] QByteArray nameForAttributesOf(const std::string &name) const
    {
        const std::size_t slash = name.rfind('/');
        const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
        const std::string beside = name.substr(0, start) + "._" + name.substr(start);
        return QByteArray::fromStdString((m_attributes == ZipAttributes::sequestered ? "__MACOSX/" : "")
                                         + beside);
    }

    zip::ZipOutput &m_output;
    const ZipAttributes m_attributes;
    platform::Outcome m_outcome;
    QSet<QString> m_names; ///< those that are not ASCII, taken apart
};

} // namespace

Outcome writeZipArchive(const fs::path &source, const ZipOptions &options, const fs::path &destination)
{
    const auto sources = sourcesIn(source, options.root);
    if (!sources)
        return sources.failure();
    WholeFile file(destination);
    if (file.descriptor() < 0)
        return systemFailure(destination, errno);
    zip::ZipOutput output(file.descriptor(), destination, options.level);
    Packer packer(output, options.attributes);
    for (const Source &one : *sources) {
        packer.pack(one);
        if (!packer.outcome())
            return packer.outcome();
    }
    output.finish();
    if (!output.outcome())
        return output.outcome();
    return file.finish() ? Outcome::success() : systemFailure(destination, errno);
}

} // namespace toolchain
