#pragma once

#include "platform/itempath.h"

#include <QDir>
#include <QUrl>

namespace sealwright {

/// The folder in which open panels begin: that of the item which was chosen last, in whichever window; the
/// home folder until then, and when that folder has gone. Lasts as long as the application runs. Main thread.
class PanelFolder {
public:
    QString path() const { return QFileInfo(m_last).isDir() ? m_last : QDir::homePath(); }
    /// An empty URL is no choice.
    void remember(const QUrl &chosenItem)
    {
        if (!chosenItem.isEmpty())
            m_last = itempath::folder(itempath::fromUrl(chosenItem));
    }

private:
    QString m_last;
};

} // namespace sealwright
