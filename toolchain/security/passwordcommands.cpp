#include "security/commands.h"

#include <iostream>
#include <iterator>

#include "formats/passwords.h"
#include "formats/statefolder.h"
#include "support/console.h"

using namespace Qt::StringLiterals;

namespace toolchain::security {

namespace {

constexpr std::size_t mostBytes = 1 << 20;

/// Null if the option is absent.
QString optionOf(const ParsedArguments &arguments, const std::string &name)
{
    return arguments.has(name) ? QString::fromStdString(arguments.value(name)) : QString();
}

/// All of standard input but a last line's end.
QByteArray passwordFromInput()
{
    std::string bytes;
    char byte = 0;
    while (bytes.size() <= mostBytes && std::cin.get(byte))
        bytes.push_back(byte);
    if (bytes.ends_with('\n'))
        bytes.pop_back();
    return QByteArray::fromStdString(bytes);
}

int failed(const QString &problem)
{
    return fail(problem, problem.contains(u"is locked"_s) ? lockedStatus : 1);
}

int notFound()
{
    return fail(u"SecKeychainSearchCopyNext: The specified item could not be found in the keychain."_s,
                notFoundStatus);
}

int noItemNamed()
{
    return refuse("-s names the item and is needed", usageStatus);
}

QString described(const PasswordItem &item)
{
    return u"keychain: \"%1\"\nversion: 512\nclass: \"genp\"\nattributes:\n    0x00000007 <blob>=\"%2\"\n"
           "    \"acct\"<blob>=\"%3\"\n    \"svce\"<blob>=\"%2\"\n"_s.arg(keychainFolder(), item.item,
                                                                          item.account);
}

} // namespace

int addGenericPassword(const ParsedArguments &arguments)
{
    const QString item = optionOf(arguments, "-s");
    if (item.isEmpty())
        return noItemNamed();
    const QByteArray password = passwordFromInput();
    if (password.isEmpty() || password.size() > qsizetype(mostBytes))
        return fail(password.isEmpty() ? u"no password on standard input"_s
                                       : u"the password on standard input is too long"_s);
    const auto added = addPassword({item, optionOf(arguments, "-a"), password},
                                   arguments.has("-U") ? ExistingPassword::updated : ExistingPassword::kept);
    if (!added)
        return failed(added.error());
    if (*added != PasswordAddition::refused)
        return 0;
    return fail(
        u"SecKeychainItemCreateFromContent (%1): The specified item already exists in the keychain."_s.arg(
            keychainFolder()),
        duplicateStatus);
}

int findGenericPassword(const ParsedArguments &arguments)
{
    const QString item = optionOf(arguments, "-s");
    if (item.isEmpty())
        return noItemNamed();
    const auto found = findPassword(item, optionOf(arguments, "-a"));
    if (!found)
        return failed(found.error());
    if (!*found)
        return notFound();
    print(arguments.has("-w") ? (**found).password.toStdString() + "\n" : described(**found).toStdString());
    return 0;
}

int deleteGenericPassword(const ParsedArguments &arguments)
{
    const QString item = optionOf(arguments, "-s");
    if (item.isEmpty())
        return noItemNamed();
    const auto wasThere = removePassword(item, optionOf(arguments, "-a"));
    if (!wasThere)
        return failed(wasThere.error());
    if (!*wasThere)
        return notFound();
    print("password has been deleted.\n");
    return 0;
}

} // namespace toolchain::security
