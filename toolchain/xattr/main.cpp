#include "support/arguments.h"
#include "support/console.h"

#include <sys/xattr.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <vector>

using namespace toolchain;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view usage = R"(Usage: xattr [-rs] FILE...
       xattr -c [-rs] FILE...
       xattr --help

Lists the extended attributes of each FILE, or removes them.

  -c           remove all extended attributes
  -r           go into folders; links met on the way are never followed
  -s           act on a FILE that is a symbolic link itself, not on what it leads to
  -h, --help   print this text

Works on the extended attributes of this host's file systems. The names that begin with "system." and
"security." carry access lists and labels of the host, which do not travel with a file: they are left alone.
)";

enum class Links { Followed, TakenAsTheyAre };

bool belongsToHost(const std::string &name)
{
    return name.starts_with("system.") || name.starts_with("security.");
}

std::vector<std::string> splitNames(const std::string &block)
{
    std::vector<std::string> names;
    for (std::size_t start = 0; start < block.size();) {
        const std::size_t end = block.find('\0', start);
        const std::string name = block.substr(start, end - start);
        if (!name.empty() && !belongsToHost(name))
            names.push_back(name);
        start = end == std::string::npos ? block.size() : end + 1;
    }
    return names;
}

/// Answers 0 or the system's error number.
int listAttributes(const fs::path &path, Links links, std::vector<std::string> &names)
{
    const auto list = links == Links::Followed ? listxattr : llistxattr;
    std::string block;
    ssize_t length = 0;
    do { // the attributes may change between the two calls
        length = list(path.c_str(), nullptr, 0);
        if (length > 0) {
            block.resize(static_cast<std::size_t>(length));
            length = list(path.c_str(), block.data(), block.size());
        }
    } while (length < 0 && errno == ERANGE);
    if (length < 0)
        return errno == ENOTSUP ? 0 : errno;
    block.resize(static_cast<std::size_t>(length));
    names = splitNames(block);
    return 0;
}

int clearAttributes(const fs::path &path, Links links)
{
    std::vector<std::string> names;
    if (const int error = listAttributes(path, links, names))
        return error;
    const auto remove = links == Links::Followed ? removexattr : lremovexattr;
    for (const std::string &name : names) {
        if (remove(path.c_str(), name.c_str()) != 0 && errno != ENODATA)
            return errno;
    }
    return 0;
}

class Command {
public:
    Command(const ParsedArguments &arguments, bool manyFiles)
        : m_clear(arguments.has("-c"))
        , m_recursive(arguments.has("-r"))
        , m_namesFile(manyFiles || m_recursive)
        , m_links(arguments.has("-s") ? Links::TakenAsTheyAre : Links::Followed)
    {
    }

    void actOnTree(const fs::path &path)
    {
        actOn(path, m_links);
        if (m_recursive)
            actOnContents(path);
    }

    [[nodiscard]] int status() const { return m_status; }

private:
    void actOn(const fs::path &path, Links links)
    {
        std::vector<std::string> names;
        const int error = m_clear ? clearAttributes(path, links) : listAttributes(path, links, names);
        if (error != 0)
            return fail(path, error);
        for (const std::string &name : names)
            print((m_namesFile ? path.string() + ": " : std::string()) + name + "\n");
    }

    void actOnContents(const fs::path &path)
    {
        std::error_code error;
        if (fs::symlink_status(path, error).type() != fs::file_type::directory)
            return;
        auto entry = fs::recursive_directory_iterator(path, error);
        for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
            actOn(entry->path(), Links::TakenAsTheyAre);
        if (error)
            fail(path, error.value());
    }

    void fail(const fs::path &path, int error)
    {
        printError("xattr: [Errno " + std::to_string(error) + "] " + std::strerror(error) + ": '"
                   + path.string() + "'\n");
        m_status = 1;
    }

    const bool m_clear;
    const bool m_recursive;
    const bool m_namesFile;
    const Links m_links;
    int m_status = 0;
};

} // namespace

int main(int argc, char **argv)
{
    const auto arguments =
        parseArguments(wordsOf(argc, argv), {{{"-c"}}, {{"-r"}}, {{"-s"}}, {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("xattr", arguments.error, usage);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (arguments.operands.empty())
        return refuseArguments("xattr", "no file named", usage);
    Command command(arguments, arguments.operands.size() > 1);
    for (const std::string &operand : arguments.operands)
        command.actOnTree(operand);
    return command.status();
}
