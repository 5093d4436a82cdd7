#include "platform/mac/macappearance.h"

#import <AppKit/AppKit.h>

#include <functional>

/// Hears of each change of the application's appearance.
@interface SLWAppearanceObserver : NSObject {
    std::function<void()> _changed;
}
- (instancetype)initWithHandler:(std::function<void()>)changed;
@end

@implementation SLWAppearanceObserver
- (instancetype)initWithHandler:(std::function<void()>)changed
{
    self = [super init];
    if (self)
        _changed = changed;
    return self;
}

- (void)observeValueForKeyPath:(NSString *)path
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context
{
    _changed();
}
@end

namespace platform {

namespace {

NSString *const observedKey = @"effectiveAppearance";

SystemAppearance::Scheme schemeOfApplication()
{
    NSAppearanceName name = [NSApp.effectiveAppearance
        bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    return [name isEqualToString:NSAppearanceNameDarkAqua] ? SystemAppearance::Scheme::dark
                                                           : SystemAppearance::Scheme::light;
}

} // namespace

class MacAppearance::Observation {
public:
    explicit Observation(std::function<void()> changed)
        : m_observer([[SLWAppearanceObserver alloc] initWithHandler:std::move(changed)])
    {
        [NSApp addObserver:m_observer forKeyPath:observedKey options:0 context:nil];
    }
    ~Observation() { [NSApp removeObserver:m_observer forKeyPath:observedKey]; }

private:
    SLWAppearanceObserver *const m_observer;
};

MacAppearance::MacAppearance()
    : m_observation(std::make_unique<Observation>([this] { setScheme(schemeOfApplication()); }))
{
    setScheme(schemeOfApplication());
}

MacAppearance::~MacAppearance() = default;

} // namespace platform
