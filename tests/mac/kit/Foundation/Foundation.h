#pragma once
// clang-format off

// The part of Apple's Foundation that src/platform/mac uses, by its public documentation, so that its syntax and types
// can be checked where Apple's kits are missing. Nothing of it is linked.
#include <cstdint>

typedef signed char BOOL;
#define YES ((BOOL)1)
#define NO ((BOOL)0)
#define nil nullptr
typedef long NSInteger;
typedef unsigned long NSUInteger;

@class NSArray, NSDictionary, NSError, NSNotification, NSOperationQueue, NSString, NSURL;

@protocol NSObject
@end

__attribute__((objc_root_class))
@interface NSObject <NSObject>
+ (instancetype)alloc;
- (instancetype)init;
- (void)addObserver:(NSObject *)observer
         forKeyPath:(NSString *)path
            options:(NSUInteger)options
            context:(void *)context;
- (void)removeObserver:(NSObject *)observer forKeyPath:(NSString *)path;
- (void)observeValueForKeyPath:(NSString *)path
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context;
@end

@interface NSString : NSObject
- (BOOL)isEqualToString:(NSString *)other;
@end
@interface NSConstantString : NSString
@end

@interface NSArray : NSObject
+ (instancetype)arrayWithObjects:(const id __unsafe_unretained[])objects count:(NSUInteger)count;
@property(readonly) NSUInteger count;
@end

@interface NSDictionary : NSObject
@end

@interface NSError : NSObject
@property(readonly, copy) NSString *localizedDescription;
@end

@interface NSURL : NSObject
+ (NSURL *)fileURLWithPath:(NSString *)path;
@property(readonly, copy) NSString *path;
@end

@interface NSUUID : NSObject
+ (instancetype)UUID;
@property(readonly, copy) NSString *UUIDString;
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle *mainBundle;
@property(readonly, copy) NSString *bundleIdentifier;
@end

@interface NSNotification : NSObject
@end

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue *mainQueue;
- (void)addOperationWithBlock:(void (^)(void))block;
@end

@interface NSNotificationCenter : NSObject
- (id<NSObject>)addObserverForName:(NSString *)name
                            object:(id)object
                             queue:(NSOperationQueue *)queue
                        usingBlock:(void (^)(NSNotification *notification))block;
- (void)removeObserver:(id)observer;
@end

@interface NSDistributedNotificationCenter : NSNotificationCenter
+ (NSDistributedNotificationCenter *)defaultCenter;
- (void)postNotificationName:(NSString *)name
                      object:(NSString *)object
                    userInfo:(NSDictionary *)userInfo
          deliverImmediately:(BOOL)deliverImmediately;
@end

// <dispatch/dispatch.h>
typedef NSObject *dispatch_semaphore_t;
constexpr std::uint64_t DISPATCH_TIME_FOREVER = ~0ULL;
extern "C" dispatch_semaphore_t dispatch_semaphore_create(long value);
extern "C" long dispatch_semaphore_signal(dispatch_semaphore_t semaphore);
extern "C" long dispatch_semaphore_wait(dispatch_semaphore_t semaphore, std::uint64_t timeout);
