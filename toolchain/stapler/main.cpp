#include "formats/notary/localservice.h"
#include "formats/ticket/stapling.h"
#include "formats/ticket/ticketjudgement.h"
#include "stapler/lookup.h"
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

Attaches to a bundle, a disk image or a package the ticket that a notary service has for it, or says whether a good
ticket is attached to it.

  -q           print nothing but errors
  -v           print what is looked for and what is found
  -h, --help   print this text

The service is the one of the settings that `sealwright-keychain use-notary` writes. A ticket that is not there yet is
asked for again for up to two and a half minutes. It is attached as it comes: in a bundle it is the file
Contents/CodeResources; in a disk image a part of the signature; in a package it stands behind the archive.
Exit status: 0 done, 2 an option that is not built, 64 wrong arguments, 65 no ticket or not a good one,
66 an item that is not there or cannot be stapled, 68 the service cannot be reached, 73 the ticket cannot be written.
)";

constexpr int noTicketStatus = 65; // EX_DATAERR of sysexits.h
constexpr int noItemStatus = 66; // EX_NOINPUT
constexpr int noServiceStatus = 68; // EX_NOHOST
constexpr int cannotWriteStatus = 73; // EX_CANTCREAT

enum class Voice { quiet, usual, verbose };

class Stapler {
public:
    Stapler(const QString &path, Voice voice)
        : m_path(QDir::cleanPath(QDir::current().absoluteFilePath(path)))
        , m_name(QFileInfo(m_path).fileName())
        , m_voice(voice)
    {
    }

    int run(const std::string &action)
    {
        if (!QFileInfo::exists(m_path)) {
            complain(u"No such file or directory"_s);
            return noItemStatus;
        }
        say(u"Processing: "_s + m_path);
        const auto target = ticket::StapleTarget::open(m_path);
        if (!target) {
            complain(target.error());
            return noItemStatus;
        }
        return action == "staple" ? staple(**target) : validate(**target);
    }

private:
    int staple(const ticket::StapleTarget &target)
    {
        const QList<ticket::TicketEntry> entries = target.entries();
        if (entries.isEmpty()) {
            complain(u"code object is not signed at all"_s);
            return failed(noTicketStatus);
        }
        const auto service = notary::ensureService();
        if (!service) {
            complain(service.error());
            return failed(noServiceStatus);
        }
        tell(u"Asking %1 for %2"_s.arg(notary::hostAndPort(service->tickets), entries.first().recordName()));
        const TicketQuestion question = askForTicket(*service, entries.first());
        switch (question.outcome) {
        case TicketQuestion::Outcome::found:
            return attach(target, question.ticket);
        case TicketQuestion::Outcome::notFound:
            return refuse(entries.first(), question.reason);
        case TicketQuestion::Outcome::noService:
            break;
        }
        say(u"CloudKit's response is inconsistent with expections: "_s
            + (question.reason.isEmpty() ? u"(null)"_s : question.reason));
        return failed(noServiceStatus);
    }

    int attach(const ticket::StapleTarget &target, const QByteArray &bytes)
    {
        tell(u"The ticket has %1 bytes"_s.arg(bytes.size()));
        const auto judgement = ticket::judgeTicket(bytes, target.entries());
        if (!isAttachable(target, bytes)) {
            say(u"The ticket cannot be attached: "_s + judgement.problem);
            return failed(noTicketStatus);
        }
        const auto outcome = target.attach(bytes);
        if (!outcome) {
            complain(outcome.error());
            return failed(cannotWriteStatus);
        }
        tellJudgement(judgement);
        if (!judgement.isGood()) {
            say(m_name + u" has a ticket stapled to it that is not good: "_s + judgement.problem);
            return failed(noTicketStatus);
        }
        say(u"The staple and validate action worked!"_s);
        return 0;
    }

    /// That it is about this item is what stapling has to know; whose ticket it is every reader decides.
    static bool isAttachable(const ticket::StapleTarget &target, const QByteArray &bytes)
    {
        const auto read = ticket::readTicket(bytes);
        return read && read->isSignatureGood() && target.isNamedBy(*read);
    }

    int refuse(const ticket::TicketEntry &entry, const QString &reason)
    {
        const QString record = u"2/"_s + QString::fromLatin1(entry.hash.toHex());
        say(u"CloudKit query for %1 (%2) failed due to \"%3\"."_s.arg(
            m_name, record, reason.isNull() ? u"(null)"_s : reason));
        say(u"Could not find base64 encoded ticket in response for "_s + record);
        return failed(noTicketStatus);
    }

    int failed(int status)
    {
        say(u"The staple and validate action failed! Error %1."_s.arg(status));
        return status;
    }

    int validate(const ticket::StapleTarget &target)
    {
        const QByteArray bytes = target.ticket();
        const auto judgement = ticket::judgeTicket(bytes, target.entries());
        tellJudgement(judgement);
        if (judgement.isGood()) {
            say(u"The validate action worked!"_s);
            return 0;
        }
        if (bytes.isEmpty())
            say(m_name + u" does not have a ticket stapled to it."_s);
        else
            say(m_name + u" has a ticket stapled to it that is not good: "_s + judgement.problem);
        return noTicketStatus;
    }

    void tellJudgement(const ticket::TicketJudgement &judgement) const
    {
        if (judgement.anchor == Anchor::apple)
            tell(u"The ticket is signed by Apple"_s);
        if (judgement.anchor == Anchor::thisMachine)
            tell(u"The ticket is signed by the authority of this machine"_s);
        if (!judgement.problem.isEmpty())
            tell(judgement.problem);
    }

    void say(const QString &line) const
    {
        if (m_voice != Voice::quiet)
            print(line.toStdString() + "\n");
    }
    void tell(const QString &line) const
    {
        if (m_voice == Voice::verbose)
            print(line.toStdString() + "\n");
    }
    void complain(const QString &problem) const
    {
        printError("stapler: " + m_path.toStdString() + ": " + problem.toStdString() + "\n");
    }

    const QString m_path;
    const QString m_name;
    const Voice m_voice;
};

Voice voiceOf(const ParsedArguments &arguments)
{
    if (arguments.has("-q"))
        return Voice::quiet;
    return arguments.has("-v") ? Voice::verbose : Voice::usual;
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(wordsOf(argc, argv), {{{"-q"}}, {{"-v"}}, {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("stapler", arguments.error, usage, notBuiltStatus);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    const auto &words = arguments.operands;
    if (words.size() != 2 || (words[0] != "staple" && words[0] != "validate"))
        return refuseArguments("stapler", "an action and a file are needed", usage);
    return Stapler(QString::fromStdString(words[1]), voiceOf(arguments)).run(words[0]);
}
