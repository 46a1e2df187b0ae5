#include "platform/macos/mac_label.h"

#include "platform/macos/mac_appearance.h"

namespace brimwatch::platform {
namespace {

NativeWeight nativeWeight(model::FontWeight weight)
{
    return weight == model::FontWeight::Medium ? NativeWeight::Medium : NativeWeight::Semibold;
}

NativeSymbol nativeSymbol(const model::LabelSymbol &symbol)
{
    return {.name = symbol.name.toStdString(),
        .pointSize = symbol.pointSize,
        .weight = nativeWeight(symbol.weight)};
}

NativeLabelImage nativeImage(const model::LabelImage &image)
{
    return {.symbol = nativeSymbol(image.symbol),
        .accessibilityDescription = image.accessibleName.toStdString(),
        .paddingLeft = image.paddingLeft,
        .paddingRight = image.paddingRight,
        .paddingVertical = image.paddingVertical};
}

struct ToNativeRun {
    NativeRun operator()(const model::TextRun &run) const
    {
        NativeTextRun native{.text = run.text.toStdString(), .color = std::nullopt};
        if (run.color)
            native.color = nativeColor(*run.color);
        return native;
    }
    NativeRun operator()(const model::SymbolRun &run) const
    {
        return NativeSymbolRun{.symbol = nativeSymbol(run.symbol)};
    }
};

} // namespace

NativeLabel nativeLabel(const model::LabelComposition &label)
{
    NativeLabel native;
    if (label.image)
        native.image = nativeImage(*label.image);
    native.imagePosition = label.imagePosition == model::ImagePosition::Leading
        ? NativeImagePosition::Leading
        : NativeImagePosition::Only;
    native.fontSize = model::LabelComposition::fontSize;
    for (const auto &run : label.title)
        native.title.push_back(std::visit(ToNativeRun{}, run));
    return native;
}

} // namespace brimwatch::platform
