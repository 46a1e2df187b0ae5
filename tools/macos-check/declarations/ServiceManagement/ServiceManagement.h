// Declared for checks on Linux: written by us from public documentation, not the system's header.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSInteger, SMAppServiceStatus) {
    SMAppServiceStatusNotRegistered = 0,
    SMAppServiceStatusEnabled = 1,
    SMAppServiceStatusRequiresApproval = 2,
    SMAppServiceStatusNotFound = 3,
};

MACDECL_AVAIL(13.0)
@interface SMAppService : NSObject
// Swift calls it mainApp.
@property (class, readonly) SMAppService *mainAppService;
@property (readonly) SMAppServiceStatus status;
- (BOOL)registerAndReturnError:(NSError *_Nullable __autoreleasing *_Nullable)error;
- (BOOL)unregisterAndReturnError:(NSError *_Nullable __autoreleasing *_Nullable)error;
+ (void)openSystemSettingsLoginItems;
@end

NS_ASSUME_NONNULL_END
