#include "ui/preferencebindings.h"

#include "platform/preferences.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>

namespace sealwright {

namespace {

/// Runs `show` now and after each change of a preference, for as long as the widget lives, without taking
/// what the widget then shows for a person's choice.
template <class Widget, class Show>
void follow(Widget &widget, platform::Preferences &preferences, Show show)
{
    const auto showSilently = [&widget, show] {
        const QSignalBlocker silence(widget);
        show();
    };
    QObject::connect(&preferences.changes, &Observable::changed, &widget, showSilently);
    showSilently();
}

} // namespace

void bindings::bind(QCheckBox &box, platform::Preferences &preferences, const QString &key)
{
    follow(box, preferences, [&box, &preferences, key] { box.setChecked(preferences.boolean(key)); });
    QObject::connect(&box, &QCheckBox::toggled, &box,
                     [&preferences, key](bool isOn) { preferences.setValue(key, isOn); });
}

void bindings::bind(QSpinBox &box, platform::Preferences &preferences, const QString &key)
{
    box.setKeyboardTracking(false);
    follow(box, preferences, [&box, &preferences, key] {
        box.setValue(
            static_cast<int>(qBound(qint64(box.minimum()), preferences.integer(key), qint64(box.maximum()))));
    });
    QObject::connect(&box, &QSpinBox::valueChanged, &box,
                     [&preferences, key](int value) { preferences.setValue(key, value); });
}

void bindings::bind(QDoubleSpinBox &box, platform::Preferences &preferences, const QString &key)
{
    box.setKeyboardTracking(false);
    follow(box, preferences, [&box, &preferences, key] { box.setValue(preferences.number(key)); });
    QObject::connect(&box, &QDoubleSpinBox::valueChanged, &box,
                     [&preferences, key](double value) { preferences.setValue(key, value); });
}

void bindings::bind(QLineEdit &edit, platform::Preferences &preferences, const QString &key)
{
    follow(edit, preferences, [&edit, &preferences, key] {
        if (!edit.isModified()) // or a change of another key would take away what is being typed
            edit.setText(preferences.string(key));
    });
    QObject::connect(&edit, &QLineEdit::editingFinished, &edit, [&edit, &preferences, key] {
        if (!edit.isModified())
            return;
        edit.setModified(false);
        if (edit.text().isEmpty())
            preferences.remove(key);
        else
            preferences.setValue(key, edit.text());
    });
}

} // namespace sealwright
