#pragma once

#include "document/controls.h"

#include "ui/logfolds.h"

#include <QIcon>
#include <QPlainTextEdit>

class QPainter;

namespace sealwright {

/// Shows the window log: each run in its style and at the point size that it was written with, its time in
/// grey. An entry with many lines, as a tool prints them, is folded until somebody opens it. The end comes
/// into sight once the event loop has handed over the lines that wait there.
class LogView : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit LogView(const LogText &log, QWidget *parent = nullptr);

    LogFilter filter() const { return m_folds.filter(); }
    void setFilter(LogFilter filter) { m_folds.setFilter(filter); }
    /// Whether the filter leaves nothing to see.
    bool hidesAll() const;
    /// Whether every line is as the filter and the folds have it.
    bool isSettled() const { return m_folds.isSettled(); }
    /// Lines at the size that the setting has as delivered are shown as large as the interface, others in
    /// proportion. Counts from the next line on.
    void setSizeOfInterface(qreal pointSize);
    /// What stands in the middle while there is nothing else, below a picture where there is room for one.
    void setHint(const QString &text, const QIcon &picture);
    /// In pixels, of lines at the size that they have as delivered, with the frame.
    int heightOfLines(int lines) const;
    /// Opens what hides the place where the cursor is.
    void revealCursor();

    /// Puts the text on paper, all of it in black but the errors.
    void printOn(QPagedPaintDevice &paper) const;

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    static QList<QTextCursor> colouredParts(QTextDocument &document);
    void recolour();
    void append(const LogText::Run &run);
    void scrollToEndSoon();
    QRectF placeOfFold(const QTextBlock &head) const;
    static QString textOfFold(const QTextBlock &head);
    void drawHint(const QString &hint, const QIcon &picture);
    void drawFold(QPainter &painter, const QTextBlock &head) const;
    void shortenBehind(QPainter &painter, const QTextBlock &head, const QRectF &place) const;
    QTextBlock foldAt(QPointF position) const;
    QTextCharFormat formatFor(const LogText::Run &run) const;
    QTextCharFormat formatOfTime(const LogText::Run &run) const;
    QColor red() const;
    QColor grey() const;

    LogFolds m_folds{*document()};
    QIcon m_picture;
    qreal m_scale = 1; ///< of the sizes that lines are written with
    bool m_willScroll = false;
    bool m_isRevealing = false;
    bool m_isResizing = false; ///< and what is hidden has not been laid out for the new width
    const QString m_fontFamily; ///< of the desktop's fixed-width font
};

} // namespace sealwright
