#include "ui/menuitems.h"

#include <QAction>
#include <QMenu>

namespace sealwright {

void offerWhileOpen(QMenu &menu, QAction &item, const std::function<bool()> &isOffered)
{
    QObject::connect(&menu, &QMenu::aboutToShow, &item, [&item, isOffered] { item.setEnabled(isOffered()); });
    QObject::connect(
        &menu, &QMenu::aboutToHide, &item, [&item] { item.setEnabled(true); }, Qt::QueuedConnection);
}

} // namespace sealwright
