#pragma once
// clang-format off

// The part of Apple's AppKit that src/platform/mac uses; see Foundation.h beside it.
#import <Foundation/Foundation.h>

typedef NSString *NSAppearanceName;
extern "C" NSAppearanceName const NSAppearanceNameAqua;
extern "C" NSAppearanceName const NSAppearanceNameDarkAqua;

@interface NSAppearance : NSObject
- (NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray *)names;
@end

@interface NSApplication : NSObject
@property(readonly, getter=isActive) BOOL active;
@property(readonly, strong) NSAppearance *effectiveAppearance;
@end
extern "C" __kindof NSApplication *NSApp;

@interface NSRunningApplication : NSObject
+ (NSArray *)runningApplicationsWithBundleIdentifier:(NSString *)identifier;
@end

@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@property BOOL activates;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace *sharedWorkspace;
- (NSURL *)URLForApplicationWithBundleIdentifier:(NSString *)identifier;
- (void)openApplicationAtURL:(NSURL *)url
               configuration:(NSWorkspaceOpenConfiguration *)configuration
           completionHandler:(void (^)(NSRunningApplication *application, NSError *error))handler;
- (void)activateFileViewerSelectingURLs:(NSArray *)urls;
- (BOOL)openURL:(NSURL *)url;
@end
