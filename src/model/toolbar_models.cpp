#include "model/toolbar_models.h"

#include <algorithm>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

struct ModelRow {
    ToolbarModel model;
    QString rawValue;
    QString displayName;
    QString shortAbbreviation;
    QString mediumAbbreviation;
    QString iconSymbol;
    QString sfSymbolName;
};

const ModelRow &row(ToolbarModel model)
{
    static const std::array rows{
        ModelRow{.model = ToolbarModel::gemini,
            .rawValue = u"gemini"_s,
            .displayName = u"Gemini"_s,
            .shortAbbreviation = u"G"_s,
            .mediumAbbreviation = u"Gem"_s,
            .iconSymbol = u"✦"_s,
            .sfSymbolName = u"sparkles"_s},
        ModelRow{.model = ToolbarModel::argon,
            .rawValue = u"argon"_s,
            .displayName = u"Argon"_s,
            .shortAbbreviation = u"A"_s,
            .mediumAbbreviation = u"Arg"_s,
            .iconSymbol = u"⚡"_s,
            .sfSymbolName = u"cpu"_s},
        ModelRow{.model = ToolbarModel::claude,
            .rawValue = u"claude"_s,
            .displayName = u"Claude"_s,
            .shortAbbreviation = u"C"_s,
            .mediumAbbreviation = u"Cla"_s,
            .iconSymbol = u"🧠"_s,
            .sfSymbolName = u"brain"_s},
    };
    return *std::find_if(
        rows.cbegin(), rows.cend(), [model](const ModelRow &r) { return r.model == model; });
}

} // namespace

QString rawValue(ToolbarModel model)
{
    return row(model).rawValue;
}

QString displayName(ToolbarModel model)
{
    return row(model).displayName;
}

QString shortAbbreviation(ToolbarModel model)
{
    return row(model).shortAbbreviation;
}

QString mediumAbbreviation(ToolbarModel model)
{
    return row(model).mediumAbbreviation;
}

QString iconSymbol(ToolbarModel model)
{
    return row(model).iconSymbol;
}

QString sfSymbolName(ToolbarModel model)
{
    return row(model).sfSymbolName;
}

QString rawValue(ToolbarLabelStyle style)
{
    switch (style) {
    case ToolbarLabelStyle::letter:
        break;
    case ToolbarLabelStyle::icon:
        return u"icon"_s;
    case ToolbarLabelStyle::shortName:
        return u"shortName"_s;
    }
    return u"letter"_s;
}

QString displayName(ToolbarLabelStyle style)
{
    switch (style) {
    case ToolbarLabelStyle::letter:
        break;
    case ToolbarLabelStyle::icon:
        return u"Icons (Sparkle, CPU, Brain)"_s;
    case ToolbarLabelStyle::shortName:
        return u"Short Names (Gem, Arg, Cla)"_s;
    }
    return u"Letters (G, A, C)"_s;
}

ToolbarLabelStyle toolbarLabelStyle(const QString &rawValue)
{
    const auto *const found
        = std::find_if(allToolbarLabelStyles.begin(), allToolbarLabelStyles.end(),
            [&rawValue](ToolbarLabelStyle style) { return model::rawValue(style) == rawValue; });
    return found == allToolbarLabelStyles.end() ? ToolbarLabelStyle::letter : *found;
}

} // namespace brimwatch::model
