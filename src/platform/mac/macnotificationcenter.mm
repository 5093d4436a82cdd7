#include "platform/mac/macnotificationcenter.h"

#include "platform/mainqueue.h"

#include <QHash>

#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>

namespace {

using Click = std::function<void(const QString &token)>;

/// What a click on a message does, by the message's identifier. Main thread.
QHash<QString, Click> &clicks()
{
    static QHash<QString, Click> all;
    return all;
}

} // namespace

/// Lets a message be seen while the application is active: whether it should be has been asked before. A click
/// leads to what the message is about.
@interface SLWNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
@end

@implementation SLWNotificationDelegate
- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))answer
{
    answer(UNNotificationPresentationOptionBanner);
}

- (void)userNotificationCenter:(UNUserNotificationCenter *)center
    didReceiveNotificationResponse:(UNNotificationResponse *)response
             withCompletionHandler:(void (^)(void))done
{
    const QString message = QString::fromNSString(response.notification.request.identifier);
    const bool isClick = [response.actionIdentifier isEqualToString:UNNotificationDefaultActionIdentifier];
    [NSOperationQueue.mainQueue addOperationWithBlock:^{
        const Click click = clicks().take(message);
        if (isClick && click)
            click(QString());
    }];
    done();
}
@end

namespace platform {

namespace {

UNUserNotificationCenter *notificationCenter()
{
    if (!NSBundle.mainBundle.bundleIdentifier)
        return nil; // to ask for the centre would end the program
    static SLWNotificationDelegate *const delegate = [[SLWNotificationDelegate alloc] init];
    UNUserNotificationCenter *center = UNUserNotificationCenter.currentNotificationCenter;
    center.delegate = delegate;
    return center;
}

UNNotificationRequest *requestFor(const UserNotification &notification)
{
    UNMutableNotificationContent *content = [[UNMutableNotificationContent alloc] init];
    content.title = notification.title.toNSString();
    content.body = notification.informativeText.toNSString();
    return [UNNotificationRequest requestWithIdentifier:NSUUID.UUID.UUIDString content:content trigger:nil];
}

void present(const UserNotification &notification)
{
    UNUserNotificationCenter *center = notificationCenter();
    UNNotificationRequest *request = requestFor(notification);
    if (center && notification.wasClicked)
        clicks().insert(QString::fromNSString(request.identifier), notification.wasClicked);
    [center requestAuthorizationWithOptions:UNAuthorizationOptionAlert
                          completionHandler:^(BOOL isGranted, NSError *) {
                              if (isGranted)
                                  [center addNotificationRequest:request withCompletionHandler:nil];
                          }];
}

} // namespace

MacNotificationCenter::MacNotificationCenter(MainQueue &mainQueue)
    : m_mainQueue(mainQueue)
{
}

void MacNotificationCenter::setShouldPresent(Presenter shouldPresent)
{
    m_shouldPresent = std::move(shouldPresent);
}

void MacNotificationCenter::deliver(const UserNotification &notification)
{
    m_mainQueue.post([this, notification] {
        const bool isWanted = !NSApp.isActive || (m_shouldPresent && m_shouldPresent(notification));
        if (isWanted)
            present(notification);
    });
}

} // namespace platform
