#include "formats/notarizeditem.h"
#include "formats/notarystate.h"
#include "formats/statefolder.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: stapler staple [-q] [-v] ITEM
       stapler validate [-q] [-v] ITEM
       stapler --help

Attaches to a bundle, a disk image or a package the ticket of its approval, or says whether a ticket is attached that
fits its seal.

  -q           print nothing but errors
  -v           print what is looked for
  -h, --help   print this text

The approval is asked of this machine's stand-in for the notary service. The ticket is a plain note that
macOS does not read as a ticket. It lies where the real program leaves one too: in a bundle it is the file
Contents/CodeResources; in a disk image it is a part of the signature between the image and its trailer; in a
package it stands behind the archive.
Exit status: 0 done, 64 wrong arguments, 65 not approved or no ticket, 66 no such file,
72 a file that cannot be stapled, 73 the ticket cannot be written.
)";

constexpr int noTicketStatus = 65;
constexpr int noFileStatus = 66;
constexpr int unsuitableStatus = 72;
constexpr int cannotWriteStatus = 73;

class Stapler {
public:
    Stapler(QString path, const ParsedArguments &arguments)
        : m_path(std::move(path))
        , m_isQuiet(arguments.has("-q"))
        , m_isVerbose(arguments.has("-v"))
    {
    }

    int run(const std::string &action)
    {
        if (!QFileInfo::exists(m_path)) {
            printError("stapler: " + m_path.toStdString() + ": No such file or directory\n");
            return noFileStatus;
        }
        say(u"Processing: "_s + m_path);
        const auto item = openNotarizedItem(m_path);
        if (!item) {
            printError("stapler: " + m_path.toStdString()
                       + ": not a bundle, a disk image or a package that a ticket can be attached to\n");
            return unsuitableStatus;
        }
        const QByteArray digest = item->digest();
        if (m_isVerbose)
            say(u"Seal: "_s + (digest.isEmpty() ? u"none"_s : QString::fromLatin1(digest)));
        return action == "staple" ? staple(*item, digest) : validate(*item, digest);
    }

private:
    int staple(NotarizedItem &item, const QByteArray &digest) const
    {
        const auto approval = NotaryState(notaryFolder()).approvalOf(digest);
        if (!approval)
            return refuse(digest);
        const QString problem = item.attach({approval->uuid, digest});
        if (!problem.isEmpty()) {
            printError("stapler: " + problem.toStdString() + "\n");
            return cannotWriteStatus;
        }
        if (m_isVerbose)
            say(u"Ticket of request %1 attached"_s.arg(approval->uuid));
        say(u"The staple and validate action worked!"_s);
        return 0;
    }

    [[nodiscard]] int refuse(const QByteArray &digest) const
    {
        const QString record = u"2/"_s + QString::fromLatin1(digest);
        say(u"CloudKit query for %1 (%2) failed due to \"Record not found\"."_s.arg(
            QFileInfo(m_path).fileName(), record));
        say(u"Could not find base64 encoded ticket in response for "_s + record);
        say(u"The staple and validate action failed! Error 65."_s);
        return noTicketStatus;
    }

    [[nodiscard]] int validate(const NotarizedItem &item, const QByteArray &digest) const
    {
        const auto ticket = item.ticket();
        if (ticket && ticket->sealDigest == digest) {
            say(u"The validate action worked!"_s);
            return 0;
        }
        say(QFileInfo(m_path).fileName()
            + (ticket ? u" has a ticket of another seal stapled to it."_s
                      : u" does not have a ticket stapled to it."_s));
        return noTicketStatus;
    }

    void say(const QString &line) const
    {
        if (!m_isQuiet)
            print(line.toStdString() + "\n");
    }

    const QString m_path;
    const bool m_isQuiet;
    const bool m_isVerbose;
};

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(wordsOf(argc, argv), {{{"-q"}}, {{"-v"}}, {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("stapler", arguments.error, usage);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    const auto &words = arguments.operands;
    if (words.size() != 2 || (words[0] != "staple" && words[0] != "validate"))
        return refuseArguments("stapler", "an action and a file are needed", usage);
    return Stapler(QDir::cleanPath(QString::fromStdString(words[1])), arguments).run(words[0]);
}
