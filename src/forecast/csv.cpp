#include "forecast/csv.h"

#include <algorithm>
#include <cmath>

namespace brimwatch::forecast {

std::optional<QList<QByteArray>> csvFields(QByteArrayView line)
{
    QList<QByteArray> fields;
    qsizetype at = 0;
    while (true) {
        QByteArray field;
        if (at < line.size() && line[at] == '"') {
            for (++at;; ++at) {
                if (at >= line.size())
                    return std::nullopt;
                if (line[at] == '"') {
                    // Two quotes in a quoted field are one.
                    if (at + 1 >= line.size() || line[at + 1] != '"')
                        break;
                    ++at;
                }
                field += line[at];
            }
            ++at;
        } else {
            const auto *end = std::find(line.begin() + at, line.end(), ',');
            field = line.sliced(at, end - line.begin() - at).toByteArray();
            at = end - line.begin();
        }
        fields.append(field);
        if (at >= line.size())
            return fields;
        if (line[at] != ',')
            return std::nullopt;
        ++at;
    }
}

QByteArray csvField(const QByteArray &text)
{
    const bool isPlain = std::none_of(text.begin(), text.end(),
        [](char c) { return c == ',' || c == '"' || c == '\n' || c == '\r'; });
    if (isPlain)
        return text;
    QByteArray quoted = text;
    return '"' + quoted.replace('"', "\"\"") + '"';
}

std::optional<std::chrono::sys_seconds> csvTime(QByteArrayView field)
{
    constexpr qlonglong lastSecond = 253402300799;
    bool ok = false;
    const auto number = field.toLongLong(&ok);
    if (!ok || number < 0 || number > lastSecond)
        return std::nullopt;
    return std::chrono::sys_seconds(std::chrono::seconds(number));
}

std::optional<double> csvNumber(QByteArrayView field)
{
    bool ok = false;
    const double number = field.toDouble(&ok);
    return ok && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

} // namespace brimwatch::forecast
