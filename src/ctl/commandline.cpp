#include "ctl/commandline.h"

#include <QCommandLineParser>

#include <algorithm>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype anyNumber = std::numeric_limits<qsizetype>::max();
constexpr qsizetype mostWordsOfSet = 5; // a key and the four numbers of bounds

struct Grammar {
    QString command;
    qsizetype fewestOperands;
    qsizetype mostOperands;
    QStringList options; ///< beside --help and --version
};

const QStringList allOptions{u"document"_s, u"window"_s,     u"show-dialogs"_s, u"skip-stapling"_s,
                             u"follow"_s,   u"timeout"_s,    u"identity"_s,     u"page"_s,
                             u"xml"_s,      u"unset"_s,      u"json"_s,         u"close"_s,
                             u"all"_s,      u"tool-pause"_s, u"junit"_s,        u"sarif"_s};
const QStringList workOptions{u"document"_s, u"show-dialogs"_s, u"follow"_s,    u"timeout"_s,
                              u"json"_s,     u"close"_s,        u"tool-pause"_s};

const QList<Grammar> &grammars()
{
    static const QList<Grammar> all{
        {u"submit"_s, 1, 1, workOptions + QStringList{u"skip-stapling"_s}},
        {u"staple"_s, 1, 1, workOptions},
        {u"sign"_s, 1, 1, workOptions},
        {u"resume"_s, 0, 1, {u"all"_s, u"show-dialogs"_s, u"follow"_s, u"timeout"_s, u"json"_s, u"close"_s}},
        {u"waiting"_s, 0, 0, {u"json"_s}},
        {u"prepare"_s, 1, 1, {u"document"_s, u"identity"_s}},
        {u"history"_s,
         0,
         0,
         {u"document"_s, u"page"_s, u"xml"_s, u"timeout"_s, u"json"_s, u"close"_s, u"tool-pause"_s}},
        {u"examine"_s, 1, 1, {u"document"_s, u"json"_s, u"junit"_s, u"sarif"_s}},
        {u"issues"_s, 1, 1, {u"json"_s, u"junit"_s, u"sarif"_s}},
        {u"compare"_s, 2, 2, {u"json"_s}},
        {u"log"_s, 1, 1, {}},
        {u"clear-log"_s, 1, 1, {}},
        {u"documents"_s, 0, 0, {u"json"_s}},
        {u"windows"_s, 0, 0, {u"json"_s}},
        {u"new"_s, 0, anyNumber, {}},
        {u"get"_s, 1, 1, {u"document"_s, u"window"_s}},
        {u"set"_s, 1, mostWordsOfSet, {u"document"_s, u"window"_s, u"unset"_s}},
        {u"cancel"_s, 1, 1, {}},
        {u"close"_s, 1, 1, {}},
        {u"open"_s, 1, anyNumber, {}},
        {u"quit"_s, 0, 0, {}},
    };
    return all;
}

enum class Options { anywhere, beforeOperands };

QCommandLineOption option(const QString &name)
{
    const QStringList optionsWithValue{u"document"_s, u"window"_s, u"timeout"_s,
                                       u"identity"_s, u"page"_s,   u"tool-pause"_s};
    return {name, {}, optionsWithValue.contains(name) ? u"value"_s : QString()};
}

Request wrongUse(const QString &problem)
{
    Request request;
    request.kind = Request::Kind::wrongUse;
    request.problem = problem;
    return request;
}

Request ofKind(Request::Kind kind)
{
    Request request;
    request.kind = kind;
    return request;
}

/// Milliseconds, or 0 for a text that is no number of seconds above 0.
int milliseconds(const QString &seconds)
{
    bool isNumber = false;
    const double value = seconds.toDouble(&isNumber) * 1000;
    if (!isNumber || !(value > 0))
        return 0;
    return static_cast<int>(
        std::clamp<double>(value, 1, static_cast<double>(std::numeric_limits<int>::max())));
}

/// Below 0 for a text that is no pause.
double pause(const QString &seconds)
{
    bool isNumber = false;
    const double value = seconds.toDouble(&isNumber);
    return isNumber && value >= 0 ? value : -1;
}

/// Below 0 for a text that is no page.
qint64 page(const QString &text)
{
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    return isNumber ? number : -1;
}

QString problemOfSet(const Request &request)
{
    const qsizetype values = request.operands.size() - 1;
    if (request.operands.first().isEmpty())
        return u"the key is empty"_s;
    if (request.unset && values > 0)
        return u"--unset stands in place of a value"_s;
    if (!request.unset && values == 0)
        return u"set needs a value, or --unset"_s;
    return {};
}

QString problemOfNew(const Request &request)
{
    for (const QString &word : request.operands) {
        if (word.indexOf(u'=') < 1)
            return u"%1 is not of the form KEY=VALUE"_s.arg(word);
    }
    return {};
}

QString problemOfResume(const Request &request)
{
    if (request.all && !request.operands.isEmpty())
        return u"--all stands in place of a path"_s;
    return {};
}

/// What is wrong with the values of the options or the operands; null if nothing is.
QString problemOf(const Request &request, const QCommandLineParser &parser)
{
    for (const QString &name : {u"document"_s, u"window"_s, u"identity"_s}) {
        if (parser.isSet(name) && parser.value(name).isEmpty())
            return u"--%1 takes a value that is not empty"_s.arg(name);
    }
    if (!request.document.isEmpty() && !request.window.isEmpty())
        return u"--document and --window exclude each other"_s;
    if (int(request.json) + int(request.junit) + int(request.sarif) > 1)
        return u"--json, --junit and --sarif exclude each other"_s;
    if (request.timeout == 0)
        return u"--timeout takes a number of seconds above 0"_s;
    if (parser.isSet(u"tool-pause"_s) && request.toolPause < 0)
        return u"--tool-pause takes a number of seconds from 0 up"_s;
    if (request.page < 0)
        return u"--page takes a whole number from 0 up"_s;
    if (request.command == "set"_L1)
        return problemOfSet(request);
    if (request.operands.contains(QString()))
        return u"an argument of %1 is empty"_s.arg(request.command);
    if (request.command == "new"_L1)
        return problemOfNew(request);
    if (request.command == "resume"_L1)
        return problemOfResume(request);
    return {};
}

Request readOptions(const Grammar &grammar, const QCommandLineParser &parser)
{
    Request request;
    request.command = grammar.command;
    request.operands = parser.positionalArguments();
    request.document = parser.value(u"document"_s);
    request.window = parser.value(u"window"_s);
    request.showDialogs = parser.isSet(u"show-dialogs"_s);
    request.skipStapling = parser.isSet(u"skip-stapling"_s);
    request.follow = parser.isSet(u"follow"_s);
    request.unset = parser.isSet(u"unset"_s);
    request.json = parser.isSet(u"json"_s);
    request.all = parser.isSet(u"all"_s);
    request.junit = parser.isSet(u"junit"_s);
    request.sarif = parser.isSet(u"sarif"_s);
    request.close = parser.isSet(u"close"_s);
    request.identity = parser.value(u"identity"_s);
    if (parser.isSet(u"page"_s))
        request.page = page(parser.value(u"page"_s));
    request.xml = parser.isSet(u"xml"_s);
    if (parser.isSet(u"tool-pause"_s))
        request.toolPause = pause(parser.value(u"tool-pause"_s));
    if (parser.isSet(u"timeout"_s))
        request.timeout = milliseconds(parser.value(u"timeout"_s));
    return request;
}

/// How many letters must be put in, left out or replaced to make one text of the other.
qsizetype editDistance(const QString &one, const QString &other)
{
    QList<qsizetype> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (qsizetype i = 0; i < one.size(); ++i) {
        qsizetype diagonal = std::exchange(row[0], i + 1);
        for (qsizetype j = 0; j < other.size(); ++j) {
            const qsizetype replaced = diagonal + (one.at(i) == other.at(j) ? 0 : 1);
            diagonal = row.at(j + 1);
            row[j + 1] = std::min({replaced, row.at(j + 1) + 1, row.at(j) + 1});
        }
    }
    return row.last();
}

/// Whether the one may be the other with a slip of the finger or two.
bool isSlipOf(const QString &word, const QString &known)
{
    constexpr qsizetype mostSlips = 2;
    constexpr qsizetype longest = 20; // and what is longer is none that is known
    return word.size() <= longest && editDistance(word, known) <= mostSlips;
}

/// What a person may have meant by a word that is no command.
QString unknownCommand(const QString &word)
{
    constexpr qsizetype shortest = 4; // of shorter ones two letters are nearly all
    const QString problem = u"there is no command %1"_s.arg(word);
    const QStringList names = commandNames();
    const auto meant = std::find_if(names.cbegin(), names.cend(),
                                    [&word](const QString &name) { return isSlipOf(word, name); });
    return word.size() < shortest || meant == names.cend() ? problem
                                                           : u"%1; did you mean %2?"_s.arg(problem, *meant);
}

/// Whether a value is rather an option of `set`, with a slip of the finger.
bool looksMistyped(const QString &value)
{
    static const QStringList options{u"--unset"_s, u"--document"_s, u"--window"_s};
    return value.startsWith("--"_L1)
        && std::any_of(options.cbegin(), options.cend(),
                       [&value](const QString &known) { return isSlipOf(value, known); });
}

Request parseWith(const Grammar &grammar, const QStringList &words, Options options)
{
    QCommandLineParser parser;
    if (options == Options::beforeOperands)
        parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    for (const QString &name : allOptions + QStringList{u"help"_s, u"version"_s})
        parser.addOption(option(name));
    if (!parser.parse(words))
        return wrongUse(parser.errorText());
    if (parser.isSet(u"help"_s))
        return ofKind(Request::Kind::help);
    if (parser.isSet(u"version"_s))
        return ofKind(Request::Kind::version);
    for (const QString &name : parser.optionNames()) {
        if (!grammar.options.contains(name))
            return wrongUse(u"%1 takes no option --%2"_s.arg(grammar.command, name));
    }
    const Request request = readOptions(grammar, parser);
    if (request.operands.size() < grammar.fewestOperands)
        return wrongUse(u"%1 needs an argument"_s.arg(grammar.command));
    if (request.operands.size() > grammar.mostOperands)
        return wrongUse(u"too many arguments for %1"_s.arg(grammar.command));
    const QString problem = problemOf(request, parser);
    return problem.isNull() ? request : wrongUse(problem);
}

Request parseWith(const Grammar &grammar, const QStringList &words)
{
    Request request = parseWith(grammar, words, Options::anywhere);
    if (grammar.command != "set"_L1 || request.kind != Request::Kind::wrongUse)
        return request;
    // A value may be a negative number, or a text that begins like an option.
    const Request literal = parseWith(grammar, words, Options::beforeOperands);
    const QString value = literal.operands.value(1);
    if (literal.kind == Request::Kind::run && looksMistyped(value) && !words.contains(u"--"_s))
        return wrongUse(u"there is no option %1; if it is the value, put -- before it"_s.arg(value));
    return literal.kind == Request::Kind::run ? literal : request;
}

} // namespace

Request parseCommandLine(const QStringList &words)
{
    if (words.isEmpty())
        return wrongUse(u"no command"_s);
    if (words.first() == "--help"_L1 || words.first() == "-h"_L1)
        return ofKind(Request::Kind::help);
    if (words.first() == "--version"_L1)
        return ofKind(Request::Kind::version);
    for (const Grammar &grammar : grammars()) {
        if (grammar.command == words.first())
            return parseWith(grammar, words);
    }
    return wrongUse(unknownCommand(words.first()));
}

QStringList commandNames()
{
    QStringList names;
    for (const Grammar &grammar : grammars())
        names.append(grammar.command);
    return names;
}

QString helpText()
{
    return uR"(usage: sealwrightctl COMMAND [ARGUMENT ...]

Tells a Sealwright that runs on this session bus what to do. To open items, or to work in a new document, it
is started if it does not run.

  submit PATH      Notarizes the item and waits for the end. Prints the path of the finished item.
    --document ID      in that document, with its settings; otherwise in a new one
    --show-dialogs     lets the document show its sheets
    --skip-stapling    ends when the upload is done, without waiting for the verdict
    --follow           prints the log to standard error as it comes; an interrupt cancels
    --timeout SECONDS  how long to wait; without it, there is no limit
    --tool-pause SECONDS   has the document wait so long after each tool, in place of what is set; 0 is quickest
    --json             prints the document, its status, its log and the result or the error as JSON
    --close            closes the document when the answer is there. Without it a document of its own stays
                       open; whoever submits often wants it
  staple PATH      Staples an item that has been submitted before. Prints the path of the item.
  sign PATH        Signs a copy of an app or a folder. Prints the path of the signed copy.
    --document ID, --show-dialogs, --follow, --timeout SECONDS, --tool-pause SECONDS, --json, --close   as above
  resume [PATH]    Goes on with the wait for a verdict that was left when the application ended, or that was cancelled
                   or given up. PATH is the folder "Foo - Submitted", something in it, or the item that was submitted;
                   without it, the one submission that waits is meant. Prints the path of the finished item.
    --all              with all that wait, side by side
    --show-dialogs, --follow, --timeout SECONDS, --json, --close   as above
  waiting          Lists what waits for a verdict: folder, identifier, since when (UTC), separated by tabs.
    --json             as JSON
  prepare PATH     Makes the item ready to be submitted by a person.
    --document ID      in that document; otherwise in a new one
    --identity NAME    with that signing identity, if there is one of that name
  history          Prints a page of the account's submissions.
    --document ID, --timeout SECONDS, --tool-pause SECONDS, --json, --close   as above
    --page N           that page; otherwise page 0
    --xml              as a property list
  examine PATH     Tells what a run would do with the item and what would be refused. Changes nothing.
    --document ID      with the settings of that document; otherwise with those of a new one
    --json             as JSON
    --junit, --sarif   in the form that build servers read: JUnit's results, or SARIF 2.1.0
  issues ID        Lists what the notary service said of a document's item: severity, path, architecture, message.
    --json, --junit, --sarif   as above
  compare OLD NEW  Tells in what two items differ. A folder that a run has left stands for the item in it.
    --json             as JSON
  log ID           Prints the log of a document. A command that the document works for loses its answer.
  clear-log ID     Empties it, at the same price.
  documents        Lists the documents: ID, status, title, separated by tabs.
    --json             as JSON
  windows          Lists the windows in the same way, with their numbers.
    --json             as JSON
  new [KEY=VALUE ...]
                   Opens a document with these properties and prints its ID.
  get KEY          Prints a property of the application, or of
    --document ID      a document
    --window N         a window
  set KEY VALUE    Gives a property of the application a value, or of
    --document ID, --window N   as above
    --unset            in place of the value: no value
  cancel ID        Cancels what the document does.
  close ID         Closes the document.
  open PATH ...    Opens the items, ready to be submitted by a person.
  quit             Ends the application.

  --help, --version

Exit status: 0 done; 1 the application gave an error; 2 wrong use; 3 the application is not running or did not
answer in time. Of examine: 0 nothing would be refused; 1 something would; 4 the item could not be examined. Of
compare: 0 no difference; 1 differences; 4 the items could not be compared.
)"_s;
}

} // namespace sealwright
