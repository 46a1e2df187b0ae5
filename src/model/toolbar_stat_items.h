#pragma once

#include "model/color_token.h"
#include "model/quota_records.h"
#include "model/toolbar_models.h"

#include <QList>
#include <QString>

#include <optional>

namespace brimwatch::model {

/// One item of the label.
struct ToolbarStatItem {
    ToolbarModel model = ToolbarModel::gemini;
    QuotaBucket bucket;
    QString text; ///< With the model's prefix: "G 5h: 80%".
    /// Without it: "5h: 80%"; for the style that draws the model as a symbol.
    QString formattedValue;
    ColorToken color = ColorToken::SystemRed; ///< Health, for views.
    ColorToken nsColor = ColorToken::SystemRed; ///< Health, for the label in the panel.

    /// "gemini_" and the bucket's id. Two items of one list may share it.
    QString id() const;

    bool operator==(const ToolbarStatItem &) const = default;
};

/// The settings that determine the items of the label.
struct ToolbarSettings {
    bool showGeminiInToolbar = true;
    bool showArgonInToolbar = false;
    bool showClaudeInToolbar = false;
    bool showFiveHourInMenuBar = true;
    bool showWeeklyInMenuBar = true;
    QString toolbarLabelStyle; ///< A raw value; an unknown one counts as `letter`.
};

/// The items of the label in the order Gemini, Argon, Claude, of each the five-hour one before the
/// weekly one. Empty without a summary.
QList<ToolbarStatItem> toolbarStatItems(
    const std::optional<QuotaSummary> &summary, const ToolbarSettings &settings);

/// The bucket with least left among the items, the first of equals; without items Gemini's lowest
/// one.
std::optional<QuotaBucket> lowestSelectedBucket(
    const std::optional<QuotaSummary> &summary, const QList<ToolbarStatItem> &items);

enum class StarAtStart { No, Yes };
enum class ConnectionPhase { Connecting, Settled };

/// The title of the item, a line of text. It is not what the panel draws: without a summary it is
/// "✦ ...", or "✦ Gemini" once that is settled.
QString menuBarTitle(const std::optional<QuotaSummary> &summary,
    const QList<ToolbarStatItem> &items, StarAtStart star, ConnectionPhase phase);

/// The color of the whole label, for views: SecondaryLabel without a bucket, else its health, with
/// the system's green.
ColorToken menuBarTint(const std::optional<QuotaBucket> &lowest);
/// The same for native items, with our adaptive green, which also stands for no bucket.
ColorToken menuBarNSTint(const std::optional<QuotaBucket> &lowest);

} // namespace brimwatch::model
