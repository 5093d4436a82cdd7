#pragma once

#include <QString>

namespace platform {

class AppleScript;
class ApplicationHost;
class Clock;
class DistributedNotifications;
class FileService;
class MainQueue;
class Pasteboard;
class Preferences;
class ProcessLauncher;
class TimerService;
class Updater;
class UrlReader;
class UserNotificationCenter;
class WorkerQueue;
class Workspace;

/// All that the application needs of the machine that it runs on. Whoever starts the application fills it
/// once; a test fills it with fakes. What it refers to outlives every user of it.
struct Host {
    MainQueue &mainQueue;
    WorkerQueue &workers;
    TimerService &timers;
    Clock &clock;
    ProcessLauncher &launcher;
    FileService &files;
    UrlReader &urls;
    Preferences &preferences;
    Workspace &workspace;
    AppleScript &appleScript;
    DistributedNotifications &distributedNotifications;
    UserNotificationCenter &userNotifications;
    ApplicationHost &application;
    Pasteboard &pasteboard;
    Updater *updater = nullptr; ///< null on a host that has none
    /// Path of the folder for what lasts from one launch to the next and is no setting; empty where nothing
    /// of that kind is to last.
    const QString &stateFolder;
};

} // namespace platform
