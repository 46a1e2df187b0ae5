#include "model/label_composition.h"

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

bool hasText(const LabelInput &input)
{
    return input.showPercentage && !input.items.isEmpty();
}

/// The icon is shown when there is nothing else, even when it is switched off.
bool showsIcon(const LabelInput &input)
{
    return input.showIcon || !hasText(input);
}

/// The stored text itself, not the style that it names.
bool drawsModelsAsSymbols(const LabelInput &input)
{
    return input.labelStyle == "icon"_L1;
}

LabelImage paddedSparkle()
{
    return {
        .symbol = {.name = u"sparkles"_s, .pointSize = 12, .weight = FontWeight::Semibold},
        .accessibleName = u"Gemini"_s,
        .paddingLeft = 4,
        .paddingRight = 2,
        .paddingVertical = 2,
    };
}

void appendItem(QList<LabelRun> &title, const ToolbarStatItem &item, const LabelInput &input,
    const SymbolExists &exists)
{
    const auto color = input.colored ? item.nsColor : ColorToken::Label;
    const QString symbol = sfSymbolName(item.model);
    if (drawsModelsAsSymbols(input) && exists(symbol)) {
        title.append(
            SymbolRun{.symbol = {.name = symbol, .pointSize = 10, .weight = FontWeight::Semibold},
                .text = iconSymbol(item.model)});
        title.append(TextRun{.text = u' ' + item.formattedValue, .color = color});
    } else {
        title.append(TextRun{.text = item.text, .color = color});
    }
}

} // namespace

QString LabelComposition::plainTitle() const
{
    QString text;
    for (const auto &run : title) {
        if (const auto *textRun = std::get_if<TextRun>(&run))
            text += textRun->text;
        else
            text += QChar(QChar::ObjectReplacementCharacter);
    }
    return text;
}

QString LabelComposition::titleInTexts() const
{
    QString text;
    for (const auto &run : title)
        text += std::visit([](const auto &part) { return part.text; }, run);
    return text;
}

LabelComposition composeLabel(
    const LabelInput &input, const LabelComposition &previous, const SymbolExists &exists)
{
    LabelComposition label;
    if (showsIcon(input)) {
        auto sparkle = paddedSparkle();
        if (exists(sparkle.symbol.name)) {
            label.image = std::move(sparkle);
            label.imagePosition = hasText(input) ? ImagePosition::Leading : ImagePosition::Only;
        } else {
            label.image = previous.image;
            label.imagePosition = previous.imagePosition;
        }
    }
    if (!hasText(input))
        return label;

    if (showsIcon(input))
        label.title.append(TextRun{.text = u" "_s, .color = std::nullopt});
    bool isFirst = true;
    for (const auto &item : input.items) {
        if (!isFirst)
            label.title.append(TextRun{.text = u" · "_s, .color = ColorToken::SecondaryLabel});
        isFirst = false;
        appendItem(label.title, item, input, exists);
    }
    label.badge
        = composeBadge(input.items, input.colored ? BadgeColors::Health : BadgeColors::Plain);
    return label;
}

LabelViewComposition composeLabelView(const LabelInput &input)
{
    LabelViewComposition view{
        .showIcon = showsIcon(input),
        .iconColor = input.colored ? input.tint : ColorToken::Label,
    };
    if (!hasText(input))
        return view;
    for (const auto &item : input.items) {
        const bool asSymbol = drawsModelsAsSymbols(input);
        view.items.append({
            .symbolName = asSymbol ? sfSymbolName(item.model) : QString(),
            .text = asSymbol ? item.formattedValue : item.text,
            .color = input.colored ? item.color : ColorToken::Label,
        });
    }
    return view;
}

} // namespace brimwatch::model
