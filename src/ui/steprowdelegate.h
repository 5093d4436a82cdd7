#pragma once

#include <QStyledItemDelegate>

namespace sealwright {

/// Draws a row of the list of steps: a sign for the state, the name, which takes more lines where one is too
/// narrow, and at the other end how long the step has taken. The step that runs is bold.
class StepRowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    /// The width in pixels at which the text stands in one line.
    [[nodiscard]] static int widthFor(const QString &text, const QFont &font);
    /// The height in pixels of a row with one line.
    [[nodiscard]] static int heightOfOneLine(const QFont &font);
};

} // namespace sealwright
