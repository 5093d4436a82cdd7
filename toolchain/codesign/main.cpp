#include "codesign/signing.h"
#include "formats/identities.h"
#include "formats/statefolder.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QDir>
#include <QFile>
#include <QVariantMap>

#include <optional>

#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage =
    R"(Usage: codesign -s IDENTITY [-f] [--deep] [-o FLAGS] [--timestamp[=URL]] [--entitlements FILE]
                [--digest-algorithm=sha1,sha256] [-v | --verbose=LEVEL] PATH...
       codesign --help

Seals each PATH, which is a bundle, a framework or a framework's version folder: writes the digests of its
files to _CodeSignature/CodeResources. A PATH that is a disk image is signed: a signature of its SHA-256 by the
identity's key goes between the image and its trailer, where programs that read the image pass over it.

  -s, --sign IDENTITY   a certificate's name, a part of it, or its SHA-1; it must be in the keychain folder
  -f, --force           replace a seal that is there
  --deep                seal the bundles inside first
  -o, --options FLAGS   such as runtime; the words are checked and not recorded
  --entitlements FILE   a property list; it is checked and not recorded
  --timestamp           accepted; no time stamp is made
  --digest-algorithm=   sha256, or sha1,sha256 (the default)
  -v, --verbose=LEVEL   print what was done to each PATH
  -h, --help            print this text

This edition makes the seal of the bundle's files and no signature: nothing is written into Mach-O files and
nothing of a bundle is signed with the identity's key. A disk image's signature is a note in JSON that macOS
does not read as a signature. A Mach-O file given as PATH is checked to be one and left as it
is, with success. Bundles inside a bundle are sealed as plain files. Nothing accepts the result but the
tools of this toolchain.
)";

int fail(const QString &subject, const QString &message)
{
    printError((subject + u": "_s + message + u'\n').toStdString());
    return 1;
}

QString entitlementsProblem(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return u"cannot read entitlement data: "_s + file.errorString();
    const auto list = platform::propertyListFromData(file.readAll());
    if (!list)
        return u"unrecognized entitlement data: "_s + list.error;
    const bool isDictionary = list.value.metaType() == QMetaType::fromType<QVariantMap>();
    return isDictionary ? QString() : u"unrecognized entitlement data: not a dictionary"_s;
}

QString flagsProblem(const QString &flags)
{
    const QStringList known{u"runtime"_s, u"kill"_s,     u"hard"_s,    u"host"_s,
                            u"expires"_s, u"restrict"_s, u"library"_s, u"linker-signed"_s};
    for (const QString &flag : flags.split(u',')) {
        if (!known.contains(flag))
            return u"unknown option flag \"%1\""_s.arg(flag);
    }
    return {};
}

std::optional<SealDigests> digestsFrom(const ParsedArguments &arguments)
{
    const std::string algorithms = arguments.value("--digest-algorithm");
    if (algorithms.empty() || algorithms == "sha1,sha256")
        return SealDigests::Sha1AndSha256;
    return algorithms == "sha256" ? std::optional(SealDigests::Sha256Only) : std::nullopt;
}

/// Complains about the first thing that is wrong beside the items themselves; 0 if nothing is.
int checkArguments(const ParsedArguments &arguments)
{
    if (!arguments.has("-s") || arguments.operands.empty())
        return refuseArguments("codesign", "only signing is built in: -s and a path are needed", usage);
    const QString flags =
        arguments.has("-o") ? flagsProblem(QString::fromStdString(arguments.value("-o"))) : QString();
    if (!flags.isEmpty())
        return refuseArguments("codesign", flags.toStdString(), usage);
    if (!digestsFrom(arguments))
        return refuseArguments("codesign", "digest algorithms are sha256 or sha1,sha256", usage);

    if (!arguments.has("--entitlements"))
        return 0;
    const QString entitlements = QString::fromStdString(arguments.value("--entitlements"));
    const QString complaint = entitlementsProblem(entitlements);
    return complaint.isEmpty() ? 0 : fail(entitlements, complaint);
}

int signOperand(const std::string &operand, const ParsedArguments &arguments, const Identity &identity)
{
    const QString path = QDir::cleanPath(QString::fromStdString(operand));
    const SigningOptions options{arguments.has("-f"), arguments.has("--deep"), *digestsFrom(arguments),
                                 identity.sha1};
    const SigningResult result = signItem(path, options);
    if (!result.error.isEmpty())
        return fail(path, result.error);
    if (arguments.has("-v"))
        printError((path + u": "_s + result.report + u'\n').toStdString());
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(wordsOf(argc, argv),
                                          {{{"-s", "--sign"}, OptionValue::Required},
                                           {{"-f", "--force"}},
                                           {{"--deep"}},
                                           {{"-o", "--options"}, OptionValue::Required},
                                           {{"--timestamp"}, OptionValue::Optional},
                                           {{"--entitlements"}, OptionValue::Required},
                                           {{"--digest-algorithm"}, OptionValue::Required},
                                           {{"-v", "--verbose"}, OptionValue::Optional},
                                           {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("codesign", arguments.error, usage);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    int status = checkArguments(arguments);
    if (status != 0)
        return status;
    const QString wanted = QString::fromStdString(arguments.value("-s"));
    const IdentityChoice choice = chooseIdentity(keychainFolder(), wanted, IdentityKind::Application);
    if (!choice.identity)
        return fail(wanted, choice.problem);
    for (auto operand = arguments.operands.begin(); status == 0 && operand != arguments.operands.end();
         ++operand)
        status = signOperand(*operand, arguments, *choice.identity);
    return status;
}
