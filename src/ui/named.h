#pragma once

#include <QString>
#include <QWidget>

namespace sealwright {

/// Gives a widget the name that tests know it by and the one that screen readers read, its visible label.
template <class Widget>
Widget *named(Widget *widget, const QString &name, const QString &label)
{
    widget->setObjectName(name);
    widget->setAccessibleName(label);
    return widget;
}

} // namespace sealwright
