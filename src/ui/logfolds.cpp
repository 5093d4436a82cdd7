#include "ui/logfolds.h"

#include <QAbstractTextDocumentLayout>
#include <QElapsedTimer>
#include <QTextDocument>

namespace sealwright {

namespace {

constexpr int mostShown = 12; // lines of an entry that are never folded
constexpr int piece = 250; // blocks that are gone through before the next look at the clock
constexpr int turn = 8; // milliseconds that one turn of the event loop may take, about

// The state of a block: the style of its entry, and whether an earlier block begins it.
constexpr int continuation = 0x100;
constexpr int styleMask = 0xff;

/// What the first block of an entry with many lines has.
struct Entry : QTextBlockUserData {
    int linesBehind = 0;
    bool isFolded = true;
};

Entry *entryOf(const QTextBlock &block)
{
    return static_cast<Entry *>(block.userData());
}

bool isContinuation(const QTextBlock &block)
{
    return block.userState() >= 0 && block.userState() & continuation;
}

LogStyle styleOf(const QTextBlock &block)
{
    return block.userState() < 0 ? LogStyle::plain : static_cast<LogStyle>(block.userState() & styleMask);
}

} // namespace

LogFolds::LogFolds(QTextDocument &document)
    : m_document(document)
{
    m_soon.setInterval(0);
    connect(&m_soon, &QTimer::timeout, this, &LogFolds::applySome);
}

void LogFolds::addEntry(int firstBlock, LogStyle style)
{
    const int end = m_document.blockCount() - 1; // the block in which the next entry begins
    QTextBlock block = m_document.findBlockByNumber(firstBlock);
    if (end - firstBlock > mostShown) {
        auto *const entry = new Entry;
        entry->linesBehind = end - firstBlock - 1;
        block.setUserData(entry);
    }
    for (int number = firstBlock; number < end; ++number, block = block.next())
        block.setUserState(int(style) | (number == firstBlock ? 0 : continuation));
    if (m_filter != LogFilter::all || end - firstBlock > mostShown)
        apply(firstBlock, end);
}

int LogFolds::linesBehind(const QTextBlock &block)
{
    const Entry *const entry = entryOf(block);
    return entry ? entry->linesBehind : 0;
}

bool LogFolds::isFolded(const QTextBlock &block)
{
    const Entry *const entry = entryOf(block);
    return entry && entry->isFolded;
}

QTextBlock LogFolds::headOf(QTextBlock block)
{
    while (isContinuation(block) && block.previous().isValid())
        block = block.previous();
    return block;
}

void LogFolds::setFilter(LogFilter filter)
{
    if (filter == m_filter)
        return;
    m_filter = filter;
    apply(0, m_document.blockCount() - 1);
}

void LogFolds::toggle(const QTextBlock &block)
{
    const QTextBlock head = headOf(block);
    if (linesBehind(head) > 0)
        setFolded(head, !isFolded(head));
}

void LogFolds::reveal(const QTextBlock &block)
{
    const QTextBlock head = headOf(block);
    if (!isWanted(head))
        setFilter(LogFilter::all);
    if (isFolded(head) && head != block)
        setFolded(head, false);
}

void LogFolds::setFolded(const QTextBlock &head, bool isFolded)
{
    entryOf(head)->isFolded = isFolded;
    apply(head.blockNumber(), head.blockNumber() + linesBehind(head));
}

bool LogFolds::isWanted(const QTextBlock &block) const
{
    switch (m_filter) {
    case LogFilter::steps:
        return styleOf(block) == LogStyle::bold || styleOf(block) == LogStyle::error;
    case LogFilter::errors:
        return styleOf(block) == LogStyle::error;
    case LogFilter::all:
        break;
    }
    return true;
}

void LogFolds::apply(int firstBlock, int lastBlock)
{
    m_last = isSettled() ? lastBlock : qMax(m_last, lastBlock);
    m_next = isSettled() ? firstBlock : qMin(m_next, firstBlock);
    m_soon.start();
}

void LogFolds::applySome()
{
    QElapsedTimer time;
    time.start();
    while (!isSettled() && time.elapsed() < turn)
        applyPiece();
    if (isSettled())
        m_soon.stop();
    Q_EMIT changed();
}

void LogFolds::applyPiece()
{
    const int first = m_next;
    QTextBlock block = m_document.findBlockByNumber(first);
    bool isInFold = isContinuation(block) && isFolded(headOf(block));
    int number = first;
    for (; block.isValid() && number <= m_last && number < first + piece; ++number, block = block.next()) {
        if (!isContinuation(block))
            isInFold = isFolded(block);
        const bool isLast = !block.next().isValid(); // which is empty and begins the next entry
        block.setVisible(isLast || (isWanted(block) && !(isInFold && isContinuation(block))));
    }
    m_next = block.isValid() && number <= m_last ? number : -1;
    relayout(first, number - 1);
    layHidden(first, number - 1);
}

/// A view that is painted lays out each hidden line on its way to the next one that is seen, all of them at
/// once, unless that has been done.
void LogFolds::layHidden(int firstBlock, int lastBlock)
{
    QTextBlock block = m_document.findBlockByNumber(firstBlock);
    for (int number = firstBlock; block.isValid() && number <= lastBlock; ++number, block = block.next()) {
        if (!block.isVisible())
            m_document.documentLayout()->blockBoundingRect(block);
    }
}

void LogFolds::layHiddenAnew()
{
    if (m_filter != LogFilter::all)
        apply(0, m_document.blockCount() - 1);
}

void LogFolds::relayout(int firstBlock, int lastBlock)
{
    const QTextBlock first = m_document.findBlockByNumber(firstBlock);
    const QTextBlock last = m_document.findBlockByNumber(lastBlock);
    if (first.isValid() && last.isValid())
        m_document.markContentsDirty(first.position(), last.position() + last.length() - first.position());
}

} // namespace sealwright
