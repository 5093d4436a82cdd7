#pragma once

#include <QIcon>

namespace sealwright {

/// The pictures of commands: those of the desktop's theme, by the icon names of freedesktop.org; ours where
/// the theme lacks one, drawn in the colour of the text around them. Main thread.
namespace icons {

enum class Command {
    about,
    cancel,
    clear,
    close,
    copy,
    cut,
    drop,
    find,
    findNext,
    findPrevious,
    forum,
    goOnWaiting,
    help,
    history,
    info,
    keychain,
    mail,
    newDocument,
    newTab,
    newWindow,
    pageSetup,
    paste,
    print,
    profile,
    quit,
    repeat,
    save,
    selectAll,
    setUp,
    settings,
    showInFolder,
    sign,
    staple,
    submit,
    website,
};

[[nodiscard]] QIcon of(Command command);

} // namespace icons

} // namespace sealwright
