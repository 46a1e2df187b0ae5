#pragma once

#include "platform/symbols.h"

namespace brimwatch::platform {

/// The system's own symbols.
class MacSymbols final : public SymbolSource {
public:
    bool has(const QString &name) const override;
    QSizeF size(const QString &name, double pointSize) const override;
    /// As large as size() says, times the ratio: weights differ a little in width, and the symbol
    /// is centered.
    QImage image(const SymbolRequest &request) const override;
};

} // namespace brimwatch::platform
