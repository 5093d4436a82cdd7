#include "platform/mac/macworkspace.h"

#import <AppKit/AppKit.h>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// Null if there is no such application.
NSURL *applicationWith(const QString &bundleIdentifier)
{
    return [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:bundleIdentifier.toNSString()];
}

/// Answers why the application could not be started; null if it was.
NSError *startInBackground(NSURL *application)
{
    __block NSError *failure = nil;
    dispatch_semaphore_t ended = dispatch_semaphore_create(0);
    NSWorkspaceOpenConfiguration *configuration = [NSWorkspaceOpenConfiguration configuration];
    configuration.activates = NO;
    [NSWorkspace.sharedWorkspace openApplicationAtURL:application
                                        configuration:configuration
                                    completionHandler:^(NSRunningApplication *, NSError *error) {
                                        failure = error;
                                        dispatch_semaphore_signal(ended);
                                    }];
    dispatch_semaphore_wait(ended, DISPATCH_TIME_FOREVER);
    return failure;
}

} // namespace

bool MacWorkspace::isRunning(const QString &bundleIdentifier) const
{
    NSArray *running =
        [NSRunningApplication runningApplicationsWithBundleIdentifier:bundleIdentifier.toNSString()];
    return running.count > 0;
}

Outcome MacWorkspace::launchInBackground(const QString &bundleIdentifier)
{
    NSURL *application = applicationWith(bundleIdentifier);
    if (!application)
        return Outcome::failure(u"Cannot launch '%1': it is not installed"_s.arg(bundleIdentifier));
    NSError *failure = startInBackground(application);
    return failure ? Outcome::failure(QString::fromNSString(failure.localizedDescription)) : Outcome();
}

QString MacWorkspace::pathForApplication(const QString &bundleIdentifier) const
{
    NSURL *application = applicationWith(bundleIdentifier);
    return application ? QString::fromNSString(application.path) : QString();
}

void MacWorkspace::revealItem(const QString &path)
{
    NSURL *item = [NSURL fileURLWithPath:path.toNSString()];
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ item ]];
}

void MacWorkspace::openUrl(const QUrl &url)
{
    [NSWorkspace.sharedWorkspace openURL:url.toNSURL()];
}

} // namespace platform
