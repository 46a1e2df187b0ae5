#pragma once

#include "platform/symbols.h"

#include <QCache>
#include <QStringList>

namespace brimwatch::platform {

/// The symbols as our own drawings, one SVG file per name, compiled into the program.
///
/// All drawings share a grid that is 20 units high and as wide as the symbol needs. The grid is
/// drawn 1.15 times as high as the point size: the ink of a symbol that is centred on the capitals
/// of text of that size reaches a little beyond them on both sides.
///
/// A drawing is read and parsed when an image of it is first requested; `has` and `size` only look
/// into a table. Belongs to one thread, as the cache is not guarded.
class SvgSymbols final : public SymbolSource {
public:
    /// How many images are kept; the least recently used one makes room for a new one.
    static constexpr int cacheCapacity = 64;

    /// Longer sides than this many pixels are not drawn. No view asks for a tenth of it: it only
    /// keeps a nonsensical scale factor from asking for gigabytes.
    static constexpr int maximumPixels = 1024;

    /// All names that there are drawings for, in alphabetical order.
    static QStringList names();

    bool has(const QString &name) const override;

    /// In device-independent pixels; empty for an unknown name, and for a point size that is not a
    /// positive number.
    QSizeF size(const QString &name, double pointSize) const override;

    /// Premultiplied ARGB with its device pixel ratio set, `size` times that ratio rounded up to
    /// whole pixels, the drawing in the middle of it. The colour's alpha counts too. Null for an
    /// unknown name, for a size or ratio that is not a positive number, and beyond `maximumPixels`.
    QImage image(const SymbolRequest &request) const override;

    /// Between 0 and `cacheCapacity`.
    int cachedImages() const;

private:
    struct Key {
        QString name;
        double pointSize;
        SymbolWeight weight;
        QRgb color;
        double devicePixelRatio;

        bool operator==(const Key &) const = default;
        friend size_t qHash(const Key &key, size_t seed = 0) noexcept
        {
            return qHashMulti(seed, key.name, key.pointSize, static_cast<int>(key.weight),
                key.color, key.devicePixelRatio);
        }
    };

    mutable QCache<Key, QImage> m_images{cacheCapacity};
};

} // namespace brimwatch::platform
