#pragma once

#include "platform/user_defaults.h"

namespace brimwatch::platform {

/// The standard user defaults: `defaults read app.brimwatch.Brimwatch` shows them.
class MacUserDefaults final : public UserDefaults {
public:
    QVariant value(const char *key) const override;
    void setValue(const char *key, const QVariant &value) override;
};

} // namespace brimwatch::platform
