#include "support/console.h"
#include "xattr/order.h"
#include "xattr/values.h"

#include <array>
#include <optional>

using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: xattr [-lrsvx] FILE...
       xattr -p [-lrsvx] NAME FILE...
       xattr -w [-rsx] NAME VALUE FILE...
       xattr -d [-rsv] NAME FILE...
       xattr -c [-rsv] FILE...
       xattr --help

Lists the extended attributes of each FILE, or prints, writes or removes them.

  -p NAME        print the value of an attribute
  -w NAME VALUE  set an attribute
  -d NAME        remove an attribute
  -c             remove all extended attributes
  -l             print names and values
  -x             print or read values as hexadecimal digits
  -v             print the file's name also where there is only one
  -r             go into folders; links met on the way are never followed
  -s             act on a FILE that is a symbolic link itself, not on what it leads to
  -h, --help     print this text

Works on the extended attributes of this host's file systems, which keep those of users under names that begin with
"user."; a NAME may be given without it. Where a file system has no room for one, it lies in an AppleDouble file
"._NAME" beside NAME, and is listed, printed and removed alike. The names that begin with "system." and "security."
carry access lists and labels of the host, which do not travel with a file: they are left alone.
Exit status: 0 done, 1 failed, 2 an option that is not built here, 64 wrong arguments.
)";

/// The verb, as far as the options tell just one.
std::optional<Verb> verbFrom(const ParsedArguments &arguments)
{
    const std::array verbs{std::pair("-p", Verb::print), std::pair("-w", Verb::write),
                           std::pair("-d", Verb::remove), std::pair("-c", Verb::clear)};
    std::optional<Verb> verb;
    for (const auto &[option, meant] : verbs) {
        if (!arguments.has(option))
            continue;
        if (verb)
            return {};
        verb = meant;
    }
    return verb.value_or(Verb::list);
}

/// Nothing if words are missing, or a value is no hexadecimal one where it should be.
std::optional<Order> orderFrom(const ParsedArguments &arguments)
{
    const auto verb = verbFrom(arguments);
    if (!verb)
        return {};
    Order order;
    order.verb = *verb;
    order.files = arguments.operands;
    const bool hasName = order.verb != Verb::list && order.verb != Verb::clear;
    const std::size_t words = order.verb == Verb::write ? 2 : hasName ? 1 : 0;
    if (order.files.size() <= words)
        return {};
    if (hasName)
        order.name = order.files[0];
    if (order.verb == Verb::write) {
        const auto value = arguments.has("-x") ? fromHex(order.files[1]) : std::optional(order.files[1]);
        if (!value)
            return {};
        order.value = *value;
    }
    order.files.erase(order.files.begin(), order.files.begin() + std::ptrdiff_t(words));
    return order;
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(wordsOf(argc, argv),
                                          {{{"-c"}},
                                           {{"-d"}},
                                           {{"-l"}},
                                           {{"-p"}},
                                           {{"-r"}},
                                           {{"-s"}},
                                           {{"-v"}},
                                           {{"-w"}},
                                           {{"-x"}},
                                           {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("xattr", arguments.error, usage, notBuiltStatus);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (arguments.operands.empty())
        return refuseArguments("xattr", "no file named", usage);
    const auto order = orderFrom(arguments);
    if (!order)
        return refuseArguments("xattr", "these arguments do not go together", usage);
    return carryOut(*order, arguments);
}
