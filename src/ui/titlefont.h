#pragma once

#include <QFont>

namespace sealwright {

/// The font of a title: that of the text, bold, and so many times as large. Pure.
[[nodiscard]] inline QFont titleFont(QFont text, qreal scale)
{
    text.setPointSizeF(text.pointSizeF() * scale);
    text.setBold(true);
    return text;
}

} // namespace sealwright
