#pragma once
// clang-format off

// The part of Apple's UserNotifications that src/platform/mac uses; see Foundation.h beside it.
#import <Foundation/Foundation.h>

@class UNNotificationTrigger, UNUserNotificationCenter;

typedef NSUInteger UNAuthorizationOptions;
constexpr UNAuthorizationOptions UNAuthorizationOptionAlert = 1 << 2;
typedef NSUInteger UNNotificationPresentationOptions;
constexpr UNNotificationPresentationOptions UNNotificationPresentationOptionBanner = 1 << 4;

@interface UNNotificationContent : NSObject
@end

@interface UNMutableNotificationContent : UNNotificationContent
@property(copy) NSString *title;
@property(copy) NSString *body;
@end

@interface UNNotificationRequest : NSObject
+ (instancetype)requestWithIdentifier:(NSString *)identifier
                              content:(UNNotificationContent *)content
                              trigger:(UNNotificationTrigger *)trigger;
@property(readonly, copy) NSString *identifier;
@end

@interface UNNotification : NSObject
@property(readonly, copy) UNNotificationRequest *request;
@end

extern NSString *const UNNotificationDefaultActionIdentifier;

@interface UNNotificationResponse : NSObject
@property(readonly, copy) UNNotification *notification;
@property(readonly, copy) NSString *actionIdentifier;
@end

@protocol UNUserNotificationCenterDelegate <NSObject>
@optional
- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler;
- (void)userNotificationCenter:(UNUserNotificationCenter *)center
    didReceiveNotificationResponse:(UNNotificationResponse *)response
             withCompletionHandler:(void (^)(void))completionHandler;
@end

@interface UNUserNotificationCenter : NSObject
+ (UNUserNotificationCenter *)currentNotificationCenter;
@property(weak) id<UNUserNotificationCenterDelegate> delegate;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError *error))handler;
- (void)addNotificationRequest:(UNNotificationRequest *)request
         withCompletionHandler:(void (^)(NSError *error))handler;
@end
