#pragma once

#include "platform/scriptcommand.h"
#include "support/testhost.h"

#include <ostream>

/// What is submitted and in which way.
struct RoadKind {
    const char *name;
    const char16_t *item; ///< file name of the item
    bool asDiskImage = false; ///< a bundle is uploaded as a disk image
    bool onSharedRunners = false; ///< with a notary tool of major version 3
    const char16_t *linkTo = nullptr; ///< the item is a link with that text to one that lies there
};

inline void PrintTo(const RoadKind &kind, std::ostream *stream)
{
    *stream << kind.name;
}

/// How a submission ended.
struct RoadEnd {
    const char16_t *folder; ///< the suffix of the folder that is left; empty for none
    qint64 errorNumber; ///< towards the script; 0 for success
    const char16_t *title; ///< of the report; empty for success
};

/// One submission by a script, on fake tools that answer well unless the test says otherwise.
class Road {
public:
    explicit Road(const RoadKind &kind);

    /// Submits and fires the polls until nothing goes on any more.
    void walk();
    void begin();
    void goOnToTheEnd();
    /// The runs of a walk without any trouble, in their order.
    static QList<ToolCall> undisturbedRuns(const RoadKind &kind);
    /// What such a walk does to the disk by itself, in its order.
    static QStringList undisturbedChanges(const RoadKind &kind);

    /// Cancels as a person would, from another thread than the main one; returns when that is done.
    void cancelFromWorker();

    /// The suffix of the one working folder; empty if there is none.
    QString folder() const;
    /// The answer is the expected one and the only one, the folder is there, the item of the user is
    /// somewhere byte for byte, and the document can be used again.
    void expectEnd(const RoadEnd &end);
    void expectItemIsSafe();
    void expectIdleDocument();
    /// Brings the item back to its place where an earlier walk has put it away, as a person would.
    void putItemBack();
    /// Submits the item once more in the same document, to success.
    void expectSecondWalkSucceeds();

    TestHost host;
    std::optional<ScriptReply> reply;

    /// How many cases have been held so far in this process.
    static inline int casesHeld = 0;

    QString itemPath() const { return host.item(m_itemName); }

private:
    void makeItem(const QString &path) const;
    QString originalInside(const QString &suffix) const;

    const RoadKind m_kind;
    const QString m_itemName;
    const QString m_baseName;
    QByteArray m_fingerprint;
    std::shared_ptr<MainWinController> m_document;
};

/// The number of a run among those of its tool, counted from 1.
[[nodiscard]] int runNumber(const QList<ToolCall> &runs, int index);
