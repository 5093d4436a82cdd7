#pragma once

#include "examine/collector.h"
#include "examine/prediction.h"
#include "examine/reasons.h"
#include "formats/review/judge.h"

#include <QHash>
#include <QSet>

namespace sealwright::examine {

/// Finds out what would be refused once everything is known: what the item holds, and what a run does with
/// it.
class Judgement {
public:
    Judgement(Examination &examination, const Prediction &prediction, const Choices &choices,
              const Collector &collected);

    /// Gives each entry its place in the run, or the reason why it has none, and adds the findings.
    void run();

private:
    void number();
    void addEntriesOfTheRun();
    [[nodiscard]] Unsigned reasonFor(const CodeEntry &entry) const;
    [[nodiscard]] std::optional<Unsigned> reasonByPath(const QString &path) const;
    [[nodiscard]] static Unsigned reasonByKind(const CodeEntry &entry);
    [[nodiscard]] bool isSignedWithParent(const QString &path) const;
    [[nodiscard]] bool isSkipped(const CodeEntry &entry) const;

    // Code by code
    void judgeCode();
    void judgeSigned(const CodeEntry &entry);
    void judgeOldSignature(const CodeEntry &entry);
    void judgeKept(const CodeEntry &entry);
    void judgeTeam(const CodeEntry &entry);
    void objectToUnsigned(const CodeEntry &entry, const toolchain::review::SliceFacts &slice,
                          toolchain::review::Objection objection, const QString &ruleName);
    void judgeKeptSlice(const CodeEntry &entry, const toolchain::review::SliceFacts &slice,
                        const QString &unsignedRule);
    [[nodiscard]] QString ruleForUnsigned(const CodeEntry &entry) const;

    // Bundle by bundle, as codesign takes them
    void judgeBundles();
    void judgeBundle(const QString &item, const ReadBundle &read);
    void judgeUnreadBundle(const QString &item, const QString &problem);
    void judgeContents(const QString &item, const ReadBundle &read);
    void judgeUnreadContents(const QString &item, const QString &problem);
    void judgeNested(const QString &nested);
    void judgeRoot(const QString &path);
    [[nodiscard]] bool isSignedByRun(const QString &absolutePath) const;
    [[nodiscard]] bool hasErrorBelow(const QString &path) const;
    [[nodiscard]] bool hasErrorAt(const QString &path) const;

    // The item as a whole
    void judgeItem();
    void judgeEntitlements();
    void judgeAge();
    void judgeCollisions();
    void judgeMissingItem();
    void keepScriptsThatCount();

    [[nodiscard]] QString relative(const QString &absolutePath) const;
    [[nodiscard]] QString absolute(const QString &path) const;
    /// Answers the finding, as long as no other is added, so that it can be told better what to do about it.
    Finding &find(const QString &ruleName, Severity severity, const QString &path, const QString &message,
                  const QString &architecture = {});

    Examination &m_examination;
    const Prediction &m_prediction;
    const Choices &m_choices;
    const Collector &m_collected;
    QHash<QString, int> m_order; ///< by paths from the item
    QSet<QString> m_errors; ///< paths with an error
};

} // namespace sealwright::examine
