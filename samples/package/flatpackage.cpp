// Makes a flat installer package of one folder: flatpackage PACKAGEINFO FOLDER PACKAGE
// A xar archive with the PackageInfo and the folder as a Payload, which is a cpio archive in gzip form. There
// is no list of materials (Bom), which the installer of macOS would ask for.

#include <archive.h>
#include <archive_entry.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <set>

namespace fs = std::filesystem;

namespace {

using Archive = std::unique_ptr<archive, decltype(&archive_write_free)>;
using Entry = std::unique_ptr<archive_entry, decltype(&archive_entry_free)>;

void require(bool holds, const std::string &complaint)
{
    if (holds)
        return;
    std::cerr << "flatpackage: " << complaint << '\n';
    std::exit(1);
}

std::string bytesOf(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    require(file.is_open(), path.string() + " cannot be read");
    return {std::istreambuf_iterator<char>(file), {}};
}

void add(archive *target, archive_entry *entry, const std::string &bytes)
{
    archive_entry_set_size(entry, la_int64_t(bytes.size()));
    const bool isAdded = archive_write_header(target, entry) == ARCHIVE_OK
        && archive_write_data(target, bytes.data(), bytes.size()) == la_ssize_t(bytes.size());
    require(isAdded, std::string(archive_entry_pathname(entry)) + " cannot be packed");
}

void addFromDisk(archive *target, const fs::path &path, const fs::path &name)
{
    struct stat status = {};
    require(lstat(path.c_str(), &status) == 0, path.string() + " cannot be read");
    const Entry entry(archive_entry_new(), archive_entry_free);
    archive_entry_copy_stat(entry.get(), &status);
    archive_entry_set_uid(entry.get(), 0);
    archive_entry_set_gid(entry.get(), 0);
    archive_entry_set_pathname(entry.get(), ("./" / name).c_str());
    if (S_ISLNK(status.st_mode))
        archive_entry_set_symlink(entry.get(), fs::read_symlink(path).c_str());
    add(target, entry.get(), S_ISREG(status.st_mode) ? bytesOf(path) : std::string());
}

la_ssize_t append(archive *, void *bytes, const void *buffer, std::size_t length)
{
    static_cast<std::string *>(bytes)->append(static_cast<const char *>(buffer), length);
    return la_ssize_t(length);
}

std::string payloadOf(const fs::path &folder)
{
    std::string bytes;
    const Archive cpio(archive_write_new(), archive_write_free);
    archive_write_set_format_cpio(cpio.get());
    archive_write_add_filter_gzip(cpio.get());
    archive_write_set_bytes_in_last_block(cpio.get(), 1);
    archive_write_open(cpio.get(), &bytes, nullptr, append, nullptr);
    std::set<fs::path> paths{folder};
    for (const auto &entry : fs::recursive_directory_iterator(folder))
        paths.insert(entry.path());
    for (const fs::path &path : paths)
        addFromDisk(cpio.get(), path, path.lexically_relative(folder.parent_path()));
    require(archive_write_close(cpio.get()) == ARCHIVE_OK, "the payload cannot be packed");
    return bytes;
}

/// Some programs take files of one number for one file.
void addFile(archive *target, int number, const char *name, const std::string &bytes)
{
    const Entry entry(archive_entry_new(), archive_entry_free);
    archive_entry_set_pathname(entry.get(), name);
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_ino(entry.get(), number);
    add(target, entry.get(), bytes);
}

} // namespace

int main(int argc, char **argv)
{
    require(argc == 4, "a PackageInfo, a folder and a package are needed");
    const Archive xar(archive_write_new(), archive_write_free);
    archive_write_set_format_xar(xar.get());
    archive_write_set_bytes_in_last_block(xar.get(), 1); // nothing belongs behind a package
    require(archive_write_open_filename(xar.get(), argv[3]) == ARCHIVE_OK,
            std::string(argv[3]) + " cannot be made");
    addFile(xar.get(), 1, "PackageInfo", bytesOf(argv[1]));
    addFile(xar.get(), 2, "Payload", payloadOf(argv[2]));
    require(archive_write_close(xar.get()) == ARCHIVE_OK, "the package cannot be written");
    return 0;
}
