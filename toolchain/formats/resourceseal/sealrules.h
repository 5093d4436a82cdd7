#pragma once

#include <QByteArray>
#include <QList>
#include <QRegularExpression>
#include <QString>

#include "platform/result.h"

#include <optional>

/// The seal over a bundle's files, `_CodeSignature/CodeResources`.
/// Public document: Apple's Technical Note TN2206, macOS Code Signing In Depth.
namespace toolchain::seal {

/// How a bundle's folders lie below the one that the seal's paths start from.
enum class Layout {
    withResources, ///< a Contents folder or a framework's version, whether or not it has a folder Resources
    flat ///< everything lies at the top, as on iOS and in driver extensions
};

/// What a set of rules says of one path.
enum class Coverage {
    omitted, ///< the seal says nothing about it
    sealed,
    optional, ///< sealed, but may be missing afterwards
    nested ///< a file or a folder with a dot in its name is code that bears a signature of its own
};

/// One resource rule. The pattern is a POSIX extended regular expression, searched for in the path.
struct Rule {
    QString pattern;
    Coverage coverage = Coverage::sealed;
    double weight = 1;
};

/// Rules that can be asked. Any number of threads may ask the same set.
class RuleSet {
public:
    /// Fails for more rules than a seal can need, and for a pattern that is none, naming it.
    [[nodiscard]] static platform::Result<RuleSet> fromRules(const QList<Rule> &rules);

    /// What the matching rule with the greatest weight says; Omitted where none matches. Nothing if a pattern
    /// asks for too much work on this path. `path` is UTF-8, relative to the folder that the seal starts
    /// from.
    [[nodiscard]] std::optional<Coverage> coverageOf(const QByteArray &path) const;

    /// In the order of their patterns' code units, as a property list has them.
    [[nodiscard]] const QList<Rule> &rules() const { return m_rules; }

private:
    using Matcher = bool (*)(QByteArrayView path);
    struct Compiled {
        Coverage coverage;
        double weight;
        Matcher matcher; ///< null where the expression must be asked
        QRegularExpression expression;
    };

    static Matcher builtInMatcher(const QString &pattern);

    QList<Rule> m_rules;
    QList<Compiled> m_compiled; ///< the greatest weight first
};

/// The rules under the key "rules", for the digests under "files": resources alone.
[[nodiscard]] const RuleSet &firstRules(Layout layout);

/// The rules under the key "rules2", for the digests under "files2": the whole bundle.
[[nodiscard]] const RuleSet &secondRules(Layout layout);

/// Whether a rule of "rules2" leaves out what the rules that belong to the layout would seal.
[[nodiscard]] bool omitsMoreThanUsual(const RuleSet &rules);

/// True for what no seal ever covers: the seal's own folder, a stapled ticket and a store receipt.
[[nodiscard]] bool isOutsideOfSeals(QByteArrayView path);

} // namespace toolchain::seal
