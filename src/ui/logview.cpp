#include "ui/logview.h"

#include "ui/outcome.h"
#include "ui/theme.h"

#include <QEvent>
#include <QFontDatabase>
#include <QScrollBar>
#include <QTextBlock>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int darkest = 128; // of the lightness of a dark background
constexpr int meaningProperty = QTextFormat::UserProperty;
constexpr int timeMeaning = 1;

bool isTime(const QTextCursor &part)
{
    return part.charFormat().intProperty(meaningProperty) == timeMeaning;
}

// What is shown of one entry: laying out megabytes would keep the window from being used.
constexpr qsizetype mostShown = 200'000; // characters
constexpr qsizetype shownOfTheEnd = 20'000;

QString shown(const QString &text)
{
    const qsizetype leftOut = text.size() - mostShown;
    if (leftOut <= 0)
        return text;
    return text.first(mostShown - shownOfTheEnd)
        + u"\n[%1 characters are in the log and not shown here]\n"_s.arg(leftOut) + text.last(shownOfTheEnd);
}

} // namespace

LogView::LogView(const LogText &log, QWidget *parent)
    : QPlainTextEdit(parent)
    , m_fontFamily(QFontDatabase::systemFont(QFontDatabase::FixedFont).family())
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setUndoRedoEnabled(false); // what nobody can take back need not be kept twice
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    for (const LogText::Run &run : log.runs())
        append(run);
    connect(&log, &LogText::appended, this, &LogView::append);
    connect(&log, &LogText::cleared, this, &QPlainTextEdit::clear);
}

void LogView::append(const LogText::Run &run)
{
    QTextCursor end(document()); // one of its own: the reader keeps the selection
    end.movePosition(QTextCursor::End);
    const qsizetype time = lengthOfTime(run.text);
    if (time > 0)
        end.insertText(run.text.left(time), formatOfTime(run));
    end.insertText(shown(run.text.mid(time)), formatFor(run));
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
        format.setFontPointSize(run.attributes.pointSize);
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
    const bool isDark = palette().color(QPalette::Base).lightness() < darkest;
    return isDark ? QColor(0xff, 0x6b, 0x61) : QColor(0xc0, 0x1c, 0x28);
}
