#pragma once

#include "run/logstyle.h"

#include <QObject>
#include <QTextBlock>
#include <QTimer>

class QTextDocument;

namespace sealwright {

/// What of a log is shown.
enum class LogFilter { all, steps, errors };

/// Which lines of a log's text are in sight: those of the entries that are wanted, and of an entry with many
/// lines, which is what a tool has printed, the first alone until a person opens it. The text itself stays as
/// it is. A long log is gone through in pieces, so that nothing waits for it. Main thread.
class LogFolds : public QObject {
    Q_OBJECT

public:
    explicit LogFolds(QTextDocument &document);

    LogFilter filter() const { return m_filter; }
    void setFilter(LogFilter filter);

    /// The blocks from that one on, up to the last but one, are an entry that has just been appended.
    void addEntry(int firstBlock, LogStyle style);
    /// How many lines stand behind the entry's first; 0 for a block that begins none with more than so many
    /// as are shown in any case.
    [[nodiscard]] static int linesBehind(const QTextBlock &block);
    [[nodiscard]] static bool isFolded(const QTextBlock &block);
    /// The block with which the entry of this block begins.
    [[nodiscard]] static QTextBlock headOf(QTextBlock block);
    /// Opens the entry, or folds it.
    void toggle(const QTextBlock &block);
    /// Brings a line into sight, whatever hides it; soon, as all that changes.
    void reveal(const QTextBlock &block);
    /// To be called when the width of the view has changed: what is hidden is laid out for it, soon. Settled
    /// at once where no filter hides anything.
    void layHiddenAnew();
    /// Whether all lines are as they should be.
    bool isSettled() const { return m_next < 0; }

Q_SIGNALS:
    /// Lines have come or gone.
    void changed();

private:
    bool isWanted(const QTextBlock &block) const;
    void setFolded(const QTextBlock &head, bool isFolded);
    void apply(int firstBlock, int lastBlock);
    void applySome();
    void applyPiece();
    void layHidden(int firstBlock, int lastBlock);
    void relayout(int firstBlock, int lastBlock);

    QTextDocument &m_document;
    LogFilter m_filter = LogFilter::all;
    QTimer m_soon;
    int m_next = -1; ///< the block to go on with; less than 0 where all are done
    int m_last = -1; ///< the last one that may have to change
};

} // namespace sealwright
