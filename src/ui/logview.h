#pragma once

#include "document/controls.h"

#include <QPlainTextEdit>

/// Shows the window log: each run in its style and at the point size that it was written with, its time in
/// grey. The end comes into sight once the event loop has handed over the lines that wait there.
class LogView : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit LogView(const LogText &log, QWidget *parent = nullptr);

    /// Puts the text on paper, all of it in black but the errors.
    void printOn(QPagedPaintDevice &paper) const;

protected:
    void changeEvent(QEvent *event) override;

private:
    static QList<QTextCursor> colouredParts(QTextDocument &document);
    void recolour();
    void append(const LogText::Run &run);
    void scrollToEndSoon();
    QTextCharFormat formatFor(const LogText::Run &run) const;
    QTextCharFormat formatOfTime(const LogText::Run &run) const;
    QColor red() const;
    QColor grey() const;

    bool m_willScroll = false;
    const QString m_fontFamily; ///< of the desktop's fixed-width font
};
