#include "formats/identities.h"
#include "formats/statefolder.h"
#include "support/arguments.h"
#include "support/console.h"

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: security find-identity [-v] [-p codesigning | -p basic]
       security --help

Lists the identities of the keychain folder: the certificates whose private key lies there too. See
sealwright-keychain, which makes such identities and tells where the folder is.

  -v               only those that are valid today
  -p codesigning   only those that may sign code
  -p basic         all kinds, as without -p
  -h, --help       print this text

No other command of the real program is built in. No certificate chain is checked: whatever lies in the
folder is listed under the name that it bears.
)";

constexpr int unknownCommandStatus = 2;

enum class Purpose { Any, CodeSigning };

QList<Identity> matching(const QList<Identity> &identities, Purpose purpose, bool onlyValid)
{
    QList<Identity> matches;
    for (const Identity &identity : identities) {
        const bool fitsPurpose = purpose == Purpose::Any || identity.canSignCode;
        if (fitsPurpose && (identity.isValidNow || !onlyValid))
            matches.append(identity);
    }
    return matches;
}

QString listing(const QList<Identity> &identities, bool onlyValid)
{
    QString text;
    for (qsizetype index = 0; index < identities.size(); ++index) {
        const Identity &identity = identities[index];
        text += u"%1) %2 \"%3\"\n"_s.arg(index + 1, 3).arg(identity.sha1, identity.commonName);
    }
    return text
        + u"     %1 %2identities found\n"_s.arg(identities.size()).arg(onlyValid ? u"valid "_s : QString());
}

int findIdentity(const ParsedArguments &arguments)
{
    const std::string policy = arguments.value("-p");
    if (arguments.has("-p") && policy != "codesigning" && policy != "basic")
        return refuseArguments("security", "no policy '" + policy + "' is built in", usage);
    const IdentityList list = readIdentities(keychainFolder());
    for (const QString &warning : list.warnings)
        printError("security: warning: " + warning.toStdString() + "\n");
    const bool onlyValid = arguments.has("-v");
    const Purpose purpose = policy == "codesigning" ? Purpose::CodeSigning : Purpose::Any;
    print(listing(matching(list.identities, purpose, onlyValid), onlyValid).toStdString());
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments =
        parseArguments(wordsOf(argc, argv), {{{"-v"}}, {{"-p"}, OptionValue::Required}, {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("security", arguments.error, usage);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (arguments.operands != std::vector<std::string>{"find-identity"}) {
        const std::string command = arguments.operands.empty() ? "" : arguments.operands.back();
        static_cast<void>(refuseArguments("security", "unknown command \"" + command + "\"", usage));
        return unknownCommandStatus;
    }
    return findIdentity(arguments);
}
