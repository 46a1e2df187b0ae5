#pragma once

#include <QColor>
#include <QImage>
#include <QSizeF>
#include <QString>

namespace brimwatch::platform {

enum class SymbolWeight { Regular, Medium, Semibold, Bold };

struct SymbolRequest {
    QString name; ///< "arrow.clockwise"
    double pointSize = 0; ///< That of the text beside it, in device-independent pixels.
    SymbolWeight weight = SymbolWeight::Regular;
    QColor color;
    double devicePixelRatio = 1;
};

/// Symbols by name, in the weight and size of the text that they stand beside.
class SymbolSource {
public:
    SymbolSource() = default;
    virtual ~SymbolSource() = default;
    Q_DISABLE_COPY_MOVE(SymbolSource)

    virtual bool has(const QString &name) const = 0;
    /// In device-independent pixels; empty for an unknown name.
    virtual QSizeF size(const QString &name, double pointSize) const = 0;
    /// Null for an unknown name.
    virtual QImage image(const SymbolRequest &request) const = 0;
};

} // namespace brimwatch::platform
