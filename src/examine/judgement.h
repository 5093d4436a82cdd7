#pragma once

#include "examine/collector.h"
#include "examine/prediction.h"

#include <QHash>
#include <QSet>

namespace examine {

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
    [[nodiscard]] QString reasonFor(const CodeEntry &entry) const;
    [[nodiscard]] QString reasonByPath(const QString &path) const;
    [[nodiscard]] bool isSkipped(const CodeEntry &entry) const;

    // Code by code
    void judgeCode();
    void judgeSigned(const CodeEntry &entry);
    void judgeKept(const CodeEntry &entry);
    void judgeKeptSlice(const CodeEntry &entry, const toolchain::review::SliceFacts &slice,
                        const QString &unsignedRule);
    [[nodiscard]] QString ruleForUnsigned(const CodeEntry &entry) const;

    // Bundle by bundle, as codesign takes them
    void judgeBundles();
    void judgeBundle(const QString &path);
    void judgeContents(const QString &path, const QString &base, const QString &executable, bool isFlat);
    void judgeNested(const QString &nested);
    void judgeRoot(const QString &path);
    [[nodiscard]] bool isSignedByRun(const QString &absolutePath) const;
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
    void find(const QString &rule, Severity severity, const QString &path, const QString &message,
              const QString &architecture = {});

    Examination &m_examination;
    const Prediction &m_prediction;
    const Choices &m_choices;
    const Collector &m_collected;
    QHash<QString, int> m_order; ///< by paths from the item
    QSet<QString> m_errors; ///< paths with an error
};

} // namespace examine
