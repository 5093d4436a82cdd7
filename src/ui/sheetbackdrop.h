#pragma once

#include <QScrollArea>

namespace sealwright {

/// What dims a page and holds one dialog in the middle of it. The keyboard stays inside. Main thread.
class SheetBackdrop : public QScrollArea {
    Q_OBJECT

public:
    explicit SheetBackdrop(QWidget &page);

    /// Takes the dialog in and shows it. The one before has to have gone.
    void hold(QDialog &dialog);
    /// Hides the dialog and makes it a window of its own, which its owner deletes.
    static void letGo(QDialog &dialog);
    /// Gives the keyboard to the dialog: to the part that had it last, else to its default button or its
    /// first part.
    static void giveKeys(QDialog &dialog);

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    QWidget *m_room;
};

} // namespace sealwright
