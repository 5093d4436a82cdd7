#include "platform/qt/desktoppasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

QString platform::DesktopPasteboard::firstString() const
{
    const QMimeData *const content = QGuiApplication::clipboard()->mimeData();
    return content && content->hasText() ? content->text() : QString();
}
