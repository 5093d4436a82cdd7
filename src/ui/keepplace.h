#pragma once

#include <QWidget>

namespace sealwright {

/// Keeps the widget's place free while it is hidden, so that nothing around it moves.
inline void keepPlace(QWidget &widget)
{
    QSizePolicy policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget.setSizePolicy(policy);
}

} // namespace sealwright
