#include "cli/output/render.h"

namespace brimwatch::cli {

QString render(
    const Options &options, const Status &status, const QDateTime &now, const TextLook &look)
{
    const auto layout = options.watch ? Layout::OneLine : Layout::Block;
    switch (options.format) {
    case Format::Json:
        return renderJson(status, layout) + u'\n';
    case Format::Waybar:
        return renderWaybar(status, now) + u'\n';
    case Format::I3blocks:
        return renderI3blocks(status, layout) + u'\n';
    case Format::Template:
        return options.formatTemplate.render(status, now) + u'\n';
    case Format::Csv: // These three are the history's alone.
    case Format::Svg:
    case Format::Html:
    case Format::Text:
        break;
    }
    if (layout == Layout::Block)
        return renderText(status, now, look);
    const QString line = renderLine(status);
    return line.isEmpty() ? line : QString(line + u'\n');
}

} // namespace brimwatch::cli
