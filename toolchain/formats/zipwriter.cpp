#include "formats/zipwriter.h"

#include "support/openfile.h"
#include "support/wholefile.h"

#include <archive.h>
#include <archive_entry.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

namespace fs = std::filesystem;

namespace toolchain {

namespace {

class ZipWriter {
public:
    ZipWriter(int descriptor, fs::path destination)
        : m_descriptor(descriptor)
        , m_destination(std::move(destination))
        , m_archive(archive_write_new(), archive_write_free)
    {
        archive_write_set_format_zip(m_archive.get());
        archive_write_set_options(m_archive.get(), "zip:compression=deflate,zip:hdrcharset=UTF-8");
        archive_write_set_bytes_per_block(m_archive.get(), 1 << 20);
        archive_write_set_bytes_in_last_block(m_archive.get(), 1);
        if (archive_write_open(m_archive.get(), this, nullptr, writeBlock, nullptr) != ARCHIVE_OK)
            m_error = archiveError();
    }
    ZipWriter(const ZipWriter &) = delete;
    ZipWriter &operator=(const ZipWriter &) = delete;

    void add(const fs::path &path, const std::string &name)
    {
        struct stat info = {};
        if (lstat(path.c_str(), &info) != 0) {
            m_error = systemError(path, errno);
            return;
        }
        if (!S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode) && !S_ISLNK(info.st_mode)) {
            m_error = path.string() + ": neither a file, a folder nor a symbolic link";
            return;
        }
        addHeader(path, name, info);
        if (m_error.empty() && S_ISREG(info.st_mode))
            addBytes(path, info.st_size);
    }

    void close()
    {
        if (m_error.empty() && archive_write_close(m_archive.get()) != ARCHIVE_OK)
            m_error = archiveError();
    }

    [[nodiscard]] const std::string &error() const { return m_error; }

private:
    /// Tells the library of no failure, since it would not free the compressor then.
    static la_ssize_t writeBlock(archive *, void *writer, const void *block, std::size_t length)
    {
        auto *self = static_cast<ZipWriter *>(writer);
        const auto *bytes = static_cast<const char *>(block);
        for (std::size_t done = 0; done < length && self->m_error.empty();) {
            const ssize_t written = write(self->m_descriptor, bytes + done, length - done);
            if (written < 0)
                self->m_error = systemError(self->m_destination, errno);
            else
                done += static_cast<std::size_t>(written);
        }
        return static_cast<la_ssize_t>(length);
    }

    void addHeader(const fs::path &path, const std::string &name, const struct stat &info)
    {
        const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                                  archive_entry_free);
        archive_entry_copy_stat(entry.get(), &info);
        archive_entry_set_pathname(entry.get(), name.c_str());
        if (S_ISLNK(info.st_mode)) {
            std::error_code error;
            archive_entry_set_symlink(entry.get(), fs::read_symlink(path, error).c_str());
            if (error)
                m_error = systemError(path, error.value());
        }
        const int result = archive_write_header(m_archive.get(), entry.get());
        if (result == ARCHIVE_WARN)
            m_error = path.string() + ": " + archive_error_string(m_archive.get());
        else if (result != ARCHIVE_OK)
            m_error = archiveError();
    }

    /// Packs exactly the size that the header has announced.
    void addBytes(const fs::path &path, off_t size)
    {
        const OpenFile file(path);
        if (file.descriptor() < 0) {
            m_error = systemError(path, errno);
            return;
        }
        while (size > 0 && m_error.empty()) {
            const auto wanted = std::min<std::size_t>(m_buffer.size(), static_cast<std::size_t>(size));
            const ssize_t length = read(file.descriptor(), m_buffer.data(), wanted);
            if (length > 0
                && archive_write_data(m_archive.get(), m_buffer.data(), static_cast<std::size_t>(length)) < 0)
                m_error = archiveError();
            else if (length < 0)
                m_error = systemError(path, errno);
            else if (length == 0)
                m_error = path.string() + ": became shorter while it was read";
            size -= length;
        }
    }

    std::string archiveError()
    {
        const char *text = archive_error_string(m_archive.get());
        return m_destination.string() + ": " + (text ? text : "cannot be written");
    }

    const int m_descriptor;
    std::string m_error;
    const fs::path m_destination;
    const std::unique_ptr<archive, decltype(&archive_write_free)> m_archive;
    std::vector<char> m_buffer = std::vector<char>(1 << 18);
};

struct Member {
    fs::path path;
    std::string name;
};

/// Everything to pack, parents first, in the order of the names.
std::vector<Member> membersOf(const fs::path &source, ZipRoot root, std::string &problem)
{
    std::vector<Member> members;
    const fs::path base = root == ZipRoot::Parent ? source.parent_path() : source;
    if (root == ZipRoot::Parent || !fs::is_directory(source))
        members.push_back({source, source.filename().string()});
    std::error_code error;
    if (fs::symlink_status(source, error).type() == fs::file_type::directory) {
        auto entry = fs::recursive_directory_iterator(source, error);
        for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
            members.push_back({entry->path(), entry->path().lexically_relative(base).string()});
    }
    if (error)
        problem = systemError(source, error.value());
    std::sort(members.begin(), members.end(),
              [](const Member &a, const Member &b) { return a.name < b.name; });
    return members;
}

} // namespace

std::string writeZipArchive(const fs::path &source, ZipRoot root, const fs::path &destination)
{
    std::string problem;
    const auto members = membersOf(source, root, problem);
    if (!problem.empty())
        return problem;
    WholeFile file(destination);
    if (file.descriptor() < 0)
        return systemError(destination, errno);
    ZipWriter writer(file.descriptor(), destination);
    for (const Member &member : members) {
        if (!writer.error().empty())
            return writer.error();
        writer.add(member.path, member.name);
    }
    writer.close();
    if (!writer.error().empty())
        return writer.error();
    return file.finish() ? std::string() : systemError(destination, errno);
}

} // namespace toolchain
