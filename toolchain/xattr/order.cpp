#include "xattr/order.h"

#include "formats/fileattributes.h"
#include "support/attributenames.h"
#include "support/console.h"
#include "xattr/values.h"

#include <QFile>

#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>

namespace fs = std::filesystem;

namespace toolchain {

namespace {

enum class Links { followed, takenAsTheyAre };

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
    const auto list = links == Links::followed ? listxattr : llistxattr;
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

QString textOf(const fs::path &path)
{
    return QFile::decodeName(QByteArray::fromStdString(path.native()));
}

/// What is acted on: a link itself or what it leads to.
QString targetOf(const fs::path &path, Links links)
{
    std::error_code error;
    const bool isLink = fs::is_symlink(fs::symlink_status(path, error));
    const fs::path target = links == Links::followed && isLink ? fs::canonical(path, error) : path;
    return textOf(error ? path : target);
}

/// The names, with those of attributes that lie beside the file.
int listAll(const fs::path &path, Links links, std::vector<std::string> &names)
{
    if (const int error = listAttributes(path, links, names))
        return error;
    const QString target = targetOf(path, links);
    if (!isSidecar(sidecarOf(target)))
        return 0;
    const auto attributes = readAttributes(target);
    if (!attributes)
        return EIO;
    for (const QByteArray &name : attributes->keys()) {
        const std::string hostName = hostAttributeName(name.toStdString());
        if (std::find(names.begin(), names.end(), hostName) == names.end())
            names.push_back(hostName);
    }
    return 0;
}

int clearAttributes(const fs::path &path, Links links)
{
    std::vector<std::string> names;
    if (const int error = listAttributes(path, links, names))
        return error;
    const auto remove = links == Links::followed ? removexattr : lremovexattr;
    for (const std::string &name : names) {
        if (remove(path.c_str(), name.c_str()) != 0 && errno != ENODATA)
            return errno;
    }
    const QString sidecar = sidecarOf(targetOf(path, links));
    return isSidecar(sidecar) && !QFile::remove(sidecar) ? EACCES : 0;
}

class Actor {
public:
    Actor(const ParsedArguments &arguments, Order order)
        : m_order(std::move(order))
        , m_recursive(arguments.has("-r"))
        , m_namesFile(m_order.files.size() > 1 || m_recursive || arguments.has("-v"))
        , m_showsValues(arguments.has("-l"))
        , m_isHex(arguments.has("-x"))
        , m_links(arguments.has("-s") ? Links::takenAsTheyAre : Links::followed)
    {
    }

    [[nodiscard]] int run()
    {
        for (const std::string &file : m_order.files)
            actOnTree(file);
        return m_status;
    }

private:
    void actOnTree(const fs::path &path)
    {
        actOn(path, m_links);
        if (m_recursive)
            actOnContents(path);
    }

    void actOnContents(const fs::path &path)
    {
        std::error_code error;
        if (fs::symlink_status(path, error).type() != fs::file_type::directory)
            return;
        auto entry = fs::recursive_directory_iterator(path, error);
        for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
            if (!isSidecar(textOf(entry->path())) && !isGone(entry->path()))
                actOn(entry->path(), Links::takenAsTheyAre);
        }
        if (error)
            fail(path, error.value());
    }

    /// Whether it was the attributes of a file that has lost them meanwhile.
    static bool isGone(const fs::path &path)
    {
        std::error_code error;
        return path.filename().native().starts_with("._")
            && fs::symlink_status(path, error).type() == fs::file_type::not_found;
    }

    void actOn(const fs::path &path, Links links)
    {
        switch (m_order.verb) {
        case Verb::list:
            return list(path, links);
        case Verb::print:
            return printOne(path, links);
        case Verb::write:
            return note(writeAttribute(targetOf(path, links), attributeIn(m_order.name),
                                       QByteArray::fromStdString(m_order.value)));
        case Verb::remove:
            return removeOne(path, links);
        case Verb::clear:
            if (const int error = clearAttributes(path, links))
                fail(path, error);
        }
    }

    void list(const fs::path &path, Links links)
    {
        std::vector<std::string> names;
        if (const int error = listAll(path, links, names))
            return fail(path, error);
        const auto values = m_showsValues ? readAttributes(targetOf(path, links)) : FileAttributes();
        if (!values)
            return note(values.failure());
        for (const std::string &name : names)
            print(prefixFor(path) + name + (m_showsValues ? shown(values->value(attributeIn(name))) : "\n"));
    }

    void printOne(const fs::path &path, Links links)
    {
        const auto values = existing(path, links);
        if (!values)
            return;
        const std::string value = values->value(attributeIn(m_order.name)).toStdString();
        if (m_showsValues)
            print(prefixFor(path) + m_order.name + shown(QByteArray::fromStdString(value)));
        else if (m_isHex)
            print(prefixFor(path) + inHex(value));
        else
            print(prefixFor(path) + (isText(value) ? value + "\n" : dumpOf(value)));
    }

    void removeOne(const fs::path &path, Links links)
    {
        if (existing(path, links))
            note(removeAttribute(targetOf(path, links), attributeIn(m_order.name)));
    }

    /// The attributes of a file that has the one in question. Having it is not asked of everything in a tree.
    std::optional<FileAttributes> existing(const fs::path &path, Links links)
    {
        struct stat status = {};
        const QString target = targetOf(path, links);
        if (lstat(QFile::encodeName(target).constData(), &status) != 0) {
            fail(path, errno);
            return {};
        }
        const auto values = readAttributes(target);
        if (!values)
            note(values.failure());
        if (values && values->contains(attributeIn(m_order.name)))
            return *values;
        if (values && !m_recursive)
            note(platform::Error{textOf(path) + QStringLiteral(": No such xattr: ")
                                 + QString::fromStdString(m_order.name)});
        return {};
    }

    /// What follows the name in a line of names and values.
    [[nodiscard]] std::string shown(const QByteArray &bytes) const
    {
        const std::string value = bytes.toStdString();
        if (m_isHex)
            return ":\n" + inHex(value);
        return isText(value) ? ": " + value + "\n" : ":\n" + dumpOf(value);
    }

    [[nodiscard]] std::string prefixFor(const fs::path &path) const
    {
        return m_namesFile ? path.string() + ": " : std::string();
    }

    /// macOS's name of what is named here, as the other tools know it.
    static QByteArray attributeIn(const std::string &name)
    {
        return QByteArray::fromStdString(attributeName(name).value_or(name));
    }

    void fail(const fs::path &path, int error)
    {
        printError("xattr: [Errno " + std::to_string(error) + "] " + std::strerror(error) + ": '"
                   + path.string() + "'\n");
        m_status = 1;
    }

    void note(const platform::Outcome &outcome)
    {
        if (outcome)
            return;
        printError("xattr: " + outcome.error().toStdString() + "\n");
        m_status = 1;
    }

    const Order m_order;
    const bool m_recursive;
    const bool m_namesFile;
    const bool m_showsValues;
    const bool m_isHex;
    const Links m_links;
    int m_status = 0;
};

} // namespace

int carryOut(const Order &order, const ParsedArguments &options)
{
    return Actor(options, order).run();
}

} // namespace toolchain
