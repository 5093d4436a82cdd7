#pragma once

#include "platform/window.h"

#include <QFileDialog>

namespace sealwright {

/// An open panel for one item. A bundle folder is an item like a file if its extension is among the allowed
/// ones; other folders are for walking through, unless folders may be chosen. Items that only the panel's
/// owner refuses are on show, but off.
class ItemPanel : public QFileDialog {
    Q_OBJECT

public:
    /// Begins in the folder, which is a path.
    ItemPanel(const platform::OpenPanel &panel, const QString &folder, QWidget *parent = nullptr);

    /// The item that was chosen; empty if the panel was cancelled.
    QUrl chosenItem() const { return m_chosen; }

    void accept() override;

private:
    bool mayChoose(const QString &path) const;
    bool isEnabled(const QString &path) const;
    bool isChoosableFile(const QString &path) const;
    bool isWayToFolder(const QString &path) const;
    void choose(const QString &path);
    void showName(const QString &path);

    const platform::OpenPanel m_panel;
    QUrl m_chosen;
};

} // namespace sealwright
