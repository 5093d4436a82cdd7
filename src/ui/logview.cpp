#include "ui/logview.h"

#include "ui/outcome.h"
#include "ui/spacing.h"
#include "ui/theme.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QtMath>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qreal sizeAsDelivered = 12; // of the setting
constexpr int marginOfHint = 24; // pixels, round what stands in an empty log
constexpr int linesOfPicture = 4; // that the picture there is as high as
constexpr qreal foldMargin = 8; // pixels, beside what says that there is more
constexpr int meaningProperty = QTextFormat::UserProperty;
constexpr int timeMeaning = 1;

bool isTime(const QTextCursor &part)
{
    return part.charFormat().intProperty(meaningProperty) == timeMeaning;
}

// What is shown of one entry: laying out megabytes, or lines by the ten thousand, would keep the window from
// being used.
struct Room {
    qsizetype characters;
    qsizetype lines;
};
constexpr Room roomOfAll{200'000, 4000};
constexpr Room roomOfBeginning{180'000, 3600};
constexpr Room roomOfEnd{20'000, 400};

/// How many characters there is room for, from the first on.
template <class Iterator>
qsizetype lengthIn(Room room, Iterator first, Iterator last)
{
    qsizetype lines = 0;
    const Iterator end = first + std::min<qsizetype>(room.characters, last - first);
    return std::find_if(first, end, [&](QChar sign) { return sign == u'\n' && ++lines == room.lines; })
        - first;
}

QString shown(QStringView text)
{
    if (lengthIn(roomOfAll, text.begin(), text.end()) == text.size())
        return text.toString();
    const qsizetype beginning = lengthIn(roomOfBeginning, text.begin(), text.end());
    const qsizetype ending = lengthIn(roomOfEnd, text.rbegin(), text.rend());
    return text.first(beginning).toString()
        + u"\n[%1 characters are in the log and not shown here]\n"_s.arg(text.size() - beginning - ending)
        + text.last(ending).toString();
}

} // namespace

LogView::LogView(const LogText &log, QWidget *parent)
    : QPlainTextEdit(parent)
    , m_fontFamily(QFontDatabase::systemFont(QFontDatabase::FixedFont).family())
{
    setReadOnly(true);
    document()->setDocumentMargin(spacing::inCell);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setUndoRedoEnabled(false); // what nobody can take back need not be kept twice
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    for (const LogText::Run &run : log.runs())
        append(run);
    connect(&log, &LogText::appended, this, &LogView::append);
    connect(&log, &LogText::cleared, this, &QPlainTextEdit::clear);
    connect(&m_folds, &LogFolds::changed, this, [this] {
        viewport()->setUpdatesEnabled(m_folds.isSettled() || !m_isResizing);
        m_isResizing = m_isResizing && !m_folds.isSettled();
        viewport()->update();
        if (m_folds.isSettled() && std::exchange(m_isRevealing, false))
            ensureCursorVisible();
    });
}

void LogView::append(const LogText::Run &run)
{
    QTextCursor end(document()); // one of its own: the reader keeps the selection
    end.movePosition(QTextCursor::End);
    const int firstBlock = document()->blockCount() - 1;
    const qsizetype time = lengthOfTime(run.text);
    if (time > 0)
        end.insertText(run.text.left(time), formatOfTime(run));
    end.insertText(shown(QStringView(run.text).mid(time)), formatFor(run));
    m_folds.addEntry(firstBlock, run.style);
    scrollToEndSoon();
}

void LogView::scrollToEndSoon()
{
    if (std::exchange(m_willScroll, true))
        return; // scrolling costs more than a line does, and lines come by the thousand
    const auto scroll = [this] {
        m_willScroll = false;
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    };
    QMetaObject::invokeMethod(this, scroll, Qt::QueuedConnection);
}

// Folded entries

QString LogView::textOfFold(const QTextBlock &head)
{
    const int lines = LogFolds::linesBehind(head);
    if (!LogFolds::isFolded(head))
        return tr("▾ Fold");
    return lines == 1 ? tr("▸ 1 more line") : tr("▸ %1 more lines").arg(lines);
}

/// Behind the first line, or at its end where that is as wide as the view.
QRectF LogView::placeOfFold(const QTextBlock &head) const
{
    const QRectF block = blockBoundingGeometry(head).translated(contentOffset());
    const QTextLine line = head.layout()->lineAt(head.layout()->lineCount() - 1);
    const QSizeF size(fontMetrics().horizontalAdvance(textOfFold(head)) + 2 * foldMargin,
                      fontMetrics().height());
    const qreal farthest = viewport()->width() - size.width() - foldMargin;
    const qreal left = qMin(block.left() + line.naturalTextRect().right() + 2 * foldMargin, farthest);
    return {QPointF(left, block.bottom() - (line.height() + size.height()) / 2), size};
}

/// A line that is as wide as the view ends before the fold, as one that is too long does.
void LogView::shortenBehind(QPainter &painter, const QTextBlock &head, const QRectF &place) const
{
    const QTextLine line = head.layout()->lineAt(head.layout()->lineCount() - 1);
    const QRectF block = blockBoundingGeometry(head).translated(contentOffset());
    if (block.left() + line.naturalTextRect().right() <= place.left())
        return;
    const QString more(u'…');
    const qreal width = fontMetrics().horizontalAdvance(more) + foldMargin;
    const QRectF rest(place.left() - width, block.bottom() - line.height(),
                      viewport()->width() - place.left() + width, line.height());
    painter.fillRect(rest, palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter, more);
}

void LogView::drawFold(QPainter &painter, const QTextBlock &head) const
{
    const QRectF place = placeOfFold(head);
    const QColor ground = theme::groundOf(theme::Meaning::underway, palette());
    shortenBehind(painter, head, place);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(place, place.height() / 2, place.height() / 2);
    painter.setPen(
        theme::readable(theme::colourOf(theme::Meaning::underway, palette()), ground, theme::leastOfText));
    painter.drawText(place, Qt::AlignCenter, textOfFold(head));
}

void LogView::setHint(const QString &text, const QIcon &picture)
{
    m_picture = picture;
    setPlaceholderText(text);
}

/// In the middle: at the edge it would look like a line of the log. The picture gives way to the words.
void LogView::drawHint(const QString &hint, const QIcon &picture)
{
    constexpr int words = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
    QPainter painter(viewport());
    painter.setFont(QApplication::font(this));
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const QRect room = viewport()->rect().adjusted(marginOfHint, 0, -marginOfHint, 0);
    QRect text = painter.boundingRect(room, words, hint);
    const int side = painter.fontMetrics().height() * linesOfPicture;
    const int both = side + spacing::apart + text.height();
    const bool hasPicture = !picture.isNull() && both + 2 * marginOfHint <= room.height();
    text = QRect(room.left(), room.center().y() - text.height() / 2, room.width(), text.height());
    if (hasPicture) {
        const QRect place(room.center().x() - side / 2, room.center().y() - both / 2, side, side);
        picture.paint(&painter, place, Qt::AlignCenter, QIcon::Disabled);
        text.moveTop(place.bottom() + spacing::apart);
    }
    painter.drawText(text, words, hint);
}

/// The last line, which is empty, is always in sight.
bool LogView::hidesAll() const
{
    return filter() != LogFilter::all && isSettled() && document()->lineCount() <= 1;
}

void LogView::paintEvent(QPaintEvent *event)
{
    if (document()->isEmpty())
        return drawHint(placeholderText(), m_picture);
    QPlainTextEdit::paintEvent(event);
    if (hidesAll())
        return drawHint(filter() == LogFilter::errors ? tr("No errors") : tr("No steps"), {});
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font());
    const qreal bottom = viewport()->height();
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        if (!block.isVisible())
            continue;
        if (blockBoundingGeometry(block).translated(contentOffset()).top() > bottom)
            break;
        if (LogFolds::linesBehind(block) > 0)
            drawFold(painter, block);
    }
}

QTextBlock LogView::foldAt(QPointF position) const
{
    const QTextBlock head = LogFolds::headOf(cursorForPosition(position.toPoint()).block());
    const bool isThere =
        LogFolds::linesBehind(head) > 0 && head.isVisible() && placeOfFold(head).contains(position);
    return isThere ? head : QTextBlock();
}

void LogView::mouseReleaseEvent(QMouseEvent *event)
{
    const QTextBlock head = foldAt(event->position());
    QPlainTextEdit::mouseReleaseEvent(event);
    if (head.isValid() && event->button() == Qt::LeftButton && !textCursor().hasSelection())
        m_folds.toggle(head);
}

void LogView::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QTextBlock head = LogFolds::headOf(textCursor().block());
    if (isReturn && !event->modifiers() && LogFolds::linesBehind(head) > 0)
        m_folds.toggle(head);
    else
        QPlainTextEdit::keyPressEvent(event);
}

void LogView::contextMenuEvent(QContextMenuEvent *event)
{
    const std::unique_ptr<QMenu> menu(createStandardContextMenu(event->pos()));
    const QTextBlock head = LogFolds::headOf(cursorForPosition(event->pos()).block());
    if (LogFolds::linesBehind(head) > 0) {
        menu->addSeparator();
        menu->addAction(LogFolds::isFolded(head) ? tr("Show All of This Entry") : tr("Fold This Entry"), this,
                        [this, head] { m_folds.toggle(head); });
    }
    menu->exec(event->globalPos());
}

void LogView::setSizeOfInterface(qreal pointSize)
{
    m_scale = pointSize / sizeAsDelivered;
}

int LogView::heightOfLines(int lines) const
{
    QFont usual(m_fontFamily);
    usual.setPointSizeF(sizeAsDelivered * m_scale);
    const QFontMetricsF metrics(usual);
    return qCeil(lines * metrics.lineSpacing() + 2 * document()->documentMargin()) + 2 * frameWidth();
}

void LogView::revealCursor()
{
    if (textCursor().block().isVisible())
        return;
    m_isRevealing = true;
    m_folds.reveal(textCursor().block());
}

/// Painting waits until what is hidden has been laid out for the new width.
void LogView::resizeEvent(QResizeEvent *event)
{
    const bool wasAtEnd = verticalScrollBar()->value() == verticalScrollBar()->maximum();
    QPlainTextEdit::resizeEvent(event);
    if (wasAtEnd) // what a banner takes of the room is not the latest line
        scrollToEndSoon();
    if (event->size().width() == event->oldSize().width())
        return;
    m_folds.layHiddenAnew();
    m_isResizing = !m_folds.isSettled();
    viewport()->setUpdatesEnabled(!m_isResizing);
}

void LogView::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        recolour();
}

/// The parts of the document that have a colour of their own.
QList<QTextCursor> LogView::colouredParts(QTextDocument &document)
{
    QList<QTextCursor> coloured;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            const QTextFragment fragment = part.fragment();
            if (!fragment.charFormat().hasProperty(QTextFormat::ForegroundBrush))
                continue;
            coloured.emplaceBack(&document);
            coloured.last().setPosition(fragment.position());
            coloured.last().setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
        }
    }
    return coloured;
}

void LogView::recolour()
{
    for (QTextCursor &part : colouredParts(*document())) {
        QTextCharFormat format;
        format.setForeground(isTime(part) ? grey() : red());
        part.mergeCharFormat(format);
    }
}

void LogView::printOn(QPagedPaintDevice &paper) const
{
    const std::unique_ptr<QTextDocument> copy(document()->clone());
    for (QTextCursor &part : colouredParts(*copy)) {
        if (!isTime(part))
            continue;
        QTextCharFormat format = part.charFormat();
        format.clearForeground();
        part.setCharFormat(format);
    }
    copy->print(&paper);
}

QTextCharFormat LogView::formatOfTime(const LogText::Run &run) const
{
    QTextCharFormat format = formatFor(run);
    format.setFontWeight(QFont::Normal);
    format.setProperty(meaningProperty, timeMeaning);
    format.setForeground(grey());
    return format;
}

QTextCharFormat LogView::formatFor(const LogText::Run &run) const
{
    QTextCharFormat format;
    format.setFontFamilies({m_fontFamily});
    format.setFontFixedPitch(true);
    if (run.attributes.pointSize > 0)
        format.setFontPointSize(run.attributes.pointSize * m_scale);
    if (run.style == LogStyle::bold)
        format.setFontWeight(QFont::Bold);
    format.setFontItalic(run.style == LogStyle::italic);
    if (run.attributes.colour == TextAttributes::Colour::systemRed)
        format.setForeground(red());
    return format;
}

QColor LogView::grey() const
{
    return theme::colourOf(theme::Meaning::quiet, palette());
}

QColor LogView::red() const
{
    return theme::colourOf(theme::Meaning::bad, palette());
}

} // namespace sealwright
