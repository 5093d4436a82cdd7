#include "formats/resourceseal/sealrules.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace toolchain::seal {

namespace {

constexpr qsizetype mostRules = 1'000;
constexpr qsizetype longestPattern = 4'096; // characters

constexpr QByteArrayView lproj = ".lproj/";

/// Whether a language folder lies behind the first `from` bytes.
bool hasLanguageFolder(QByteArrayView path, qsizetype from)
{
    return path.indexOf(lproj, from) >= 0;
}

/// Whether the path ends in `head`, any one character and "plist", with at least `before` bytes in front.
bool endsInPropertyList(QByteArrayView path, QByteArrayView head, qsizetype before)
{
    if (!path.endsWith("plist"))
        return false;
    QByteArrayView rest = path.chopped(5);
    while (!rest.isEmpty() && (uchar(rest.back()) & 0xc0) == 0x80)
        rest.chop(1);
    if (rest.isEmpty())
        return false;
    rest.chop(1);
    return rest.endsWith(head) && rest.size() >= head.size() + before;
}

bool isNestedFolder(QByteArrayView path)
{
    static constexpr std::array<QByteArrayView, 10> folders{
        "Frameworks/",        "SharedFrameworks/",  "PlugIns/", "Plug-ins/",
        "XPCServices/",       "Helpers/",           "MacOS/",   "Library/Automator/",
        "Library/Spotlight/", "Library/LoginItems/"};
    return std::any_of(folders.begin(), folders.end(),
                       [path](QByteArrayView folder) { return path.startsWith(folder); });
}

constexpr QStringView nestedFolders = u"^(Frameworks|SharedFrameworks|PlugIns|Plug-ins|XPCServices|Helpers|"
                                      u"MacOS|Library/(Automator|Spotlight|LoginItems))/";

struct BuiltIn {
    QStringView pattern;
    bool (*matcher)(QByteArrayView path);
};

constexpr QByteArrayView resources = "Resources/";

/// The patterns that every seal has, in a form that takes no regular expression: a bundle may have 100,000
/// files.
const std::array<BuiltIn, 17> builtIns{{
    {u"^.*", [](QByteArrayView) { return true; }},
    {u"^[^/]+$", [](QByteArrayView path) { return !path.isEmpty() && !path.contains('/'); }},
    {u"^Resources/", [](QByteArrayView path) { return path.startsWith(resources); }},
    {u"^Resources/.*\\.lproj/",
     [](QByteArrayView path) {
         return path.startsWith(resources) && hasLanguageFolder(path, resources.size());
     }},
    {u"^Resources/.*\\.lproj/locversion.plist$",
     [](QByteArrayView path) {
         return path.startsWith(resources) && endsInPropertyList(path, ".lproj/locversion", resources.size());
     }},
    {u"^Resources/Base\\.lproj/",
     [](QByteArrayView path) { return path.startsWith("Resources/Base.lproj/"); }},
    {u"^.*\\.lproj/", [](QByteArrayView path) { return hasLanguageFolder(path, 0); }},
    {u"^.*\\.lproj/locversion.plist$",
     [](QByteArrayView path) { return endsInPropertyList(path, ".lproj/locversion", 0); }},
    {u"^Base\\.lproj/", [](QByteArrayView path) { return path.startsWith("Base.lproj/"); }},
    {u"^version.plist$",
     [](QByteArrayView path) {
         const bool isLong = path.startsWith("version") && endsInPropertyList(path, "version", 0);
         return isLong && (path.size() == 13 || path.lastIndexOf("version") == 0);
     }},
    {nestedFolders, isNestedFolder},
    {u".*\\.dSYM($|/)",
     [](QByteArrayView path) { return path.endsWith(".dSYM") || path.contains(QByteArrayView(".dSYM/")); }},
    {u"^(.*/)?\\.DS_Store$",
     [](QByteArrayView path) { return path == ".DS_Store" || path.endsWith("/.DS_Store"); }},
    {u"^Info\\.plist$", [](QByteArrayView path) { return path == "Info.plist"; }},
    {u"^PkgInfo$", [](QByteArrayView path) { return path == "PkgInfo"; }},
    {u"^version\\.plist$", [](QByteArrayView path) { return path == "version.plist"; }},
    {u"^embedded\\.provisionprofile$",
     [](QByteArrayView path) { return path == "embedded.provisionprofile"; }},
}};

/// "$" of a POSIX expression is the end and nothing else; in Perl's it may stand before a last line end.
QString perlForm(const QString &pattern)
{
    QString result = u"(*LIMIT_MATCH=20000)(*LIMIT_DEPTH=2000)"_s;
    bool isEscaped = false;
    bool isInBrackets = false;
    for (const QChar character : pattern) {
        const bool isEnd = character == u'$' && !isEscaped && !isInBrackets;
        result += isEnd ? u"\\z"_s : QString(character);
        isInBrackets = !isEscaped && (isInBrackets ? character != u']' : character == u'[');
        isEscaped = !isEscaped && character == u'\\';
    }
    return result;
}

QList<Rule> languageRules(const QString &folder)
{
    return {{u'^' + folder + u".*\\.lproj/"_s, Coverage::optional, 1000},
            {u'^' + folder + u".*\\.lproj/locversion.plist$"_s, Coverage::omitted, 1100},
            {u'^' + folder + u"Base\\.lproj/"_s, Coverage::sealed, 1010}};
}

QList<Rule> firstRuleList(Layout layout)
{
    const bool isFlat = layout == Layout::flat;
    return QList<Rule>{{isFlat ? u"^.*"_s : u"^Resources/"_s}, {u"^version.plist$"_s}}
    + languageRules(isFlat ? QString() : u"Resources/"_s);
}

QList<Rule> secondRuleList(Layout layout)
{
    const bool isFlat = layout == Layout::flat;
    QList<Rule> rules{{u".*\\.dSYM($|/)"_s, Coverage::sealed, 11},
                      {u"^(.*/)?\\.DS_Store$"_s, Coverage::omitted, 2000},
                      {u"^.*"_s},
                      {u"^Info\\.plist$"_s, Coverage::omitted, 20},
                      {u"^PkgInfo$"_s, Coverage::omitted, 20},
                      {u"^embedded\\.provisionprofile$"_s, Coverage::sealed, 20},
                      {u"^version\\.plist$"_s, Coverage::sealed, 20}};
    if (!isFlat)
        rules += {{u"^Resources/"_s, Coverage::sealed, 20},
                  {u"^[^/]+$"_s, Coverage::nested, 10},
                  {nestedFolders.toString(), Coverage::nested, 10}};
    return rules + languageRules(isFlat ? QString() : u"Resources/"_s);
}

} // namespace

RuleSet::Matcher RuleSet::builtInMatcher(const QString &pattern)
{
    const auto found = std::find_if(builtIns.begin(), builtIns.end(),
                                    [&](const BuiltIn &builtIn) { return builtIn.pattern == pattern; });
    return found == builtIns.end() ? nullptr : found->matcher;
}

platform::Result<RuleSet> RuleSet::fromRules(const QList<Rule> &rules)
{
    if (rules.size() > mostRules)
        return platform::Error{u"more than %1 rules"_s.arg(mostRules)};
    RuleSet set;
    set.m_rules = rules;
    std::sort(set.m_rules.begin(), set.m_rules.end(),
              [](const Rule &left, const Rule &right) { return left.pattern < right.pattern; });
    for (const Rule &rule : set.m_rules) {
        const Matcher matcher = builtInMatcher(rule.pattern);
        Compiled compiled{rule.coverage, rule.weight, matcher, {}};
        if (matcher == nullptr) {
            compiled.expression = QRegularExpression(perlForm(rule.pattern.left(longestPattern)),
                                                     QRegularExpression::DotMatchesEverythingOption);
            if (rule.pattern.size() > longestPattern || !compiled.expression.isValid())
                return platform::Error{
                    u"the rule \"%1\" is no regular expression"_s.arg(rule.pattern.left(80))};
            compiled.expression.optimize();
        }
        set.m_compiled.append(compiled);
    }
    std::stable_sort(set.m_compiled.begin(), set.m_compiled.end(),
                     [](const Compiled &left, const Compiled &right) { return left.weight > right.weight; });
    return set;
}

std::optional<Coverage> RuleSet::coverageOf(const QByteArray &path) const
{
    QString text;
    for (const Compiled &rule : m_compiled) {
        if (rule.matcher != nullptr) {
            if (rule.matcher(path))
                return rule.coverage;
            continue;
        }
        if (text.isNull())
            text = QString::fromUtf8(path);
        const auto match = rule.expression.match(text);
        if (!match.isValid())
            return std::nullopt;
        if (match.hasMatch())
            return rule.coverage;
    }
    return Coverage::omitted;
}

const RuleSet &firstRules(Layout layout)
{
    static const RuleSet withResources = *RuleSet::fromRules(firstRuleList(Layout::withResources));
    static const RuleSet flat = *RuleSet::fromRules(firstRuleList(Layout::flat));
    return layout == Layout::flat ? flat : withResources;
}

const RuleSet &secondRules(Layout layout)
{
    static const RuleSet withResources = *RuleSet::fromRules(secondRuleList(Layout::withResources));
    static const RuleSet flat = *RuleSet::fromRules(secondRuleList(Layout::flat));
    return layout == Layout::flat ? flat : withResources;
}

bool omitsMoreThanUsual(const RuleSet &rules)
{
    const auto isUsual = [](const Rule &rule) {
        const auto isSame = [&rule](const Rule &usual) {
            return usual.pattern == rule.pattern && usual.coverage == Coverage::omitted;
        };
        const auto &withResources = secondRules(Layout::withResources).rules();
        const auto &flat = secondRules(Layout::flat).rules();
        return std::any_of(withResources.begin(), withResources.end(), isSame)
            || std::any_of(flat.begin(), flat.end(), isSame);
    };
    return std::any_of(rules.rules().begin(), rules.rules().end(), [&](const Rule &rule) {
        return rule.coverage == Coverage::omitted && !isUsual(rule);
    });
}

bool isOutsideOfSeals(QByteArrayView path)
{
    const auto isOrLiesIn = [path](QByteArrayView name) {
        return path.startsWith(name) && (path.size() == name.size() || path[name.size()] == '/');
    };
    return isOrLiesIn("_CodeSignature") || isOrLiesIn("CodeResources") || isOrLiesIn("_MASReceipt");
}

} // namespace toolchain::seal
