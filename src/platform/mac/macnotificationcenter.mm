#include "platform/mac/macnotificationcenter.h"

#include "platform/mainqueue.h"

#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>

/// Lets a message be seen while the application is active: whether it should be has been asked before.
@interface SLWNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
@end

@implementation SLWNotificationDelegate
- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))answer
{
    answer(UNNotificationPresentationOptionBanner);
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
