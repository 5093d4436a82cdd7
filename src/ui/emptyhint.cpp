#include "ui/emptyhint.h"

#include <QAbstractItemView>
#include <QEvent>

namespace sealwright {

namespace {

constexpr int room = 12; // pixels round the text

} // namespace

EmptyHint::EmptyHint(QAbstractItemView &view, const QString &text)
    : QLabel(text, view.viewport())
    , m_view(view)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setForegroundRole(QPalette::PlaceholderText);
    setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    setWordWrap(true);
    setMargin(room);
    view.viewport()->installEventFilter(this);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(view.model(), signal, this, &EmptyHint::follow);
    connect(view.model(), &QAbstractItemModel::modelReset, this, &EmptyHint::follow);
    follow();
}

void EmptyHint::follow()
{
    setVisible(m_view.model()->rowCount() == 0);
}

bool EmptyHint::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        resize(m_view.viewport()->size());
    return QLabel::eventFilter(watched, event);
}

} // namespace sealwright
