#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <functional>

namespace sealwright {

/// Which values the write of a property takes. Whatever else comes is of the wrong type: the script is told
/// so, and the write is not called.
enum class Takes {
    value, ///< one of the property's type
    valueOrNothing, ///< the same, or an invalid one for no value
    anything, ///< whatever came; the write has an error of its own for what it does not like
};

/// Whether the answer with all properties has this one.
enum class WhenAllAreRead { isRead, isLeftOut };

/// One property of a scripting object, under its key in the scripting definition, which has its type. Main
/// thread. What read and write set on the executing command is the script's error.
///
/// Values are a QString, a bool, a whole number as qint64, a number as double, a QStringList, a file as QUrl,
/// a platform::Window *, a MainWinController *, lists of the last two, or a platform::QDRect. An invalid
/// value and an empty URL are no value.
template <class Object>
struct ScriptProperty {
    using Write = std::function<void(Object &, const QVariant &)>;

    QString key;
    std::function<QVariant(Object &)> read;
    Write write = nullptr; ///< null if there is none
    Takes takes = Takes::value;
    WhenAllAreRead whenAllAreRead = WhenAllAreRead::isRead;
};

/// The write, but only while the object is ready: at other times the script is told that it is not.
template <class Object>
typename ScriptProperty<Object>::Write whenReady(typename ScriptProperty<Object>::Write write)
{
    return [write = std::move(write)](Object &object, const QVariant &value) {
        if (object.checkStatusIsReady())
            write(object, value);
    };
}

} // namespace sealwright
