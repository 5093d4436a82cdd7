#pragma once

#include <QRubberBand>
#include <QStringList>

namespace sealwright {

class MainWinController;

/// What happens to the items if they are let go over the window of the document: the first stays there or
/// not. Main thread.
enum class FirstItem { staysHere, opensElsewhere };
[[nodiscard]] QString dropSentence(MainWinController &document, const QStringList &items, FirstItem first);

/// Lies over a whole page while what is dragged can be dropped there, and says what will happen.
class DropOverlay : public QRubberBand {
    Q_OBJECT

public:
    explicit DropOverlay(QWidget *page);

    void showFor(const QStringList &items, const QString &sentence);
    QString title() const { return m_title; }
    QString sentence() const { return m_sentence; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void paintVeil(QPainter &painter) const;
    void paintCard(QPainter &painter) const;

    QString m_title;
    QString m_sentence;
};

} // namespace sealwright
