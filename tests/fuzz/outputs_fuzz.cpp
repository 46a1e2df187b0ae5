// What brimwatchctl prints of any state: valid JSON, well-formed Pango markup, templates that say
// what is wrong.
#include "cli/output/forms.h"
#include "cli/output/template.h"
#include "fuzz.h"
#include "platform/linux/bus/bus_state.h"
#include "random_properties.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

bool isColor(QStringView text)
{
    return text.size() == 7 && text.front() == u'#'
        && std::all_of(text.begin() + 1, text.end(),
            [](QChar c) { return c.isDigit() || (c >= u'a' && c <= u'f'); });
}

/// Elements that we write, closed in the order in which they were opened, and nothing that begins
/// an element or an entity and is none.
bool isPango(QStringView text)
{
    constexpr auto span = R"(<span color=")"_L1;
    QList<QLatin1StringView> open;
    while (!text.isEmpty()) {
        if (text.startsWith(span)) {
            if (text.size() < span.size() + 9 || !isColor(text.sliced(span.size(), 7))
                || text.sliced(span.size() + 7, 2) != R"(">)"_L1)
                return false;
            open.append("</span>"_L1);
            text = text.sliced(span.size() + 9);
        } else if (text.startsWith("<b>"_L1)) {
            open.append("</b>"_L1);
            text = text.sliced(3);
        } else if (!open.isEmpty() && text.startsWith(open.constLast())) {
            text = text.sliced(open.takeLast().size());
        } else if (text.front() == u'&') {
            const auto end = text.indexOf(u';');
            const auto name = end < 0 ? QStringView() : text.first(end + 1);
            if (name != "&lt;"_L1 && name != "&gt;"_L1 && name != "&amp;"_L1 && name != "&quot;"_L1)
                return false;
            text = text.sliced(end + 1);
        } else if (text.front() == u'<' || text.front() == u'>') {
            return false;
        } else {
            text = text.sliced(1);
        }
    }
    return open.isEmpty();
}

QJsonObject objectOf(const QString &text)
{
    fuzz::require(!text.contains(u'\n'), "a program that follows reads a line for each");
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(text.toUtf8(), &error);
    fuzz::require(error.error == QJsonParseError::NoError && document.isObject(), "JSON is valid");
    return document.object();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const QString text = input.text();
    const auto source = static_cast<cli::Status::Source>(input.below(3));
    const auto width = input.number<std::uint8_t>();
    const cli::TextLook look{.colors = (width & 1U) != 0,
        .bars = static_cast<cli::TextLook::Bars>(input.below(3)),
        .width = 20 + width};
    const auto now = QDateTime::fromSecsSinceEpoch(input.number<std::uint32_t>());
    const cli::Status status{
        .state = platform::fromBusProperties(fuzz::randomProperties(input, 3)), .source = source};

    if (const auto parsed = cli::Template::parse(text))
        parsed->render(status, now);
    else
        fuzz::require(!parsed.error().isEmpty(), "a template that is refused says why");

    const auto waybar = objectOf(cli::renderWaybar(status, now));
    fuzz::require(isPango(waybar["text"_L1].toString()) && isPango(waybar["tooltip"_L1].toString()),
        "waybar gets well-formed markup");
    fuzz::require(waybar["class"_L1].isArray(), "waybar gets classes");
    const auto percentage = waybar["percentage"_L1].toInt(0);
    fuzz::require(percentage >= 0 && percentage <= 100, "a percentage is between 0 and 100");

    const auto lines = cli::renderI3blocks(status, cli::Layout::Block).split(u'\n');
    fuzz::require(lines.size() == 3 && isPango(lines[0]) && isPango(lines[1]) && isColor(lines[2]),
        "i3blocks gets two lines of markup and a colour");
    fuzz::require(lines[0] == cli::renderI3blocks(status, cli::Layout::OneLine),
        "one line is the first of them");

    const auto object = objectOf(cli::renderJson(status, cli::Layout::OneLine));
    fuzz::require(
        QJsonDocument::fromJson(cli::renderJson(status, cli::Layout::Block).toUtf8()).object()
            == object,
        "JSON says the same in either layout");

    fuzz::require(!cli::renderLine(status).contains(u'\n'), "a line is one");
    const QString block = cli::renderText(status, now, look);
    fuzz::require(block.isEmpty() || block.endsWith(u'\n'), "a block of lines ends with one");
    return 0;
}
