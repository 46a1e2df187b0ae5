#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QLatin1StringView>

#include <optional>

namespace brimwatch::forecast {

// Numbers in what a forecast keeps between two runs. A file may hold anything, so each is read with
// the range that it may have.

/// No number that is kept is larger: times in seconds, and weeks.
inline constexpr double longestKept = 1e12;

/// Absent when it is missing, no number or out of its range.
inline std::optional<double> keptNumber(
    const QJsonObject &json, QLatin1StringView key, double least, double most)
{
    const auto value = json.value(key);
    if (!value.isDouble() || !(value.toDouble() >= least) || !(value.toDouble() <= most))
        return std::nullopt;
    return value.toDouble();
}

template <typename Numbers> QJsonArray keptNumbers(const Numbers &numbers)
{
    QJsonArray array;
    for (const double number : numbers)
        array.append(number);
    return array;
}

/// Fills `numbers`, whose size the array must have. False when one is missing or out of its range.
template <typename Numbers>
bool readNumbers(
    const QJsonObject &json, QLatin1StringView key, double least, double most, Numbers &numbers)
{
    const auto array = json.value(key).toArray();
    if (array.size() != static_cast<qsizetype>(numbers.size()))
        return false;
    qsizetype i = 0;
    for (double &number : numbers) {
        const auto value = array.at(i++);
        if (!value.isDouble() || !(value.toDouble() >= least) || !(value.toDouble() <= most))
            return false;
        number = value.toDouble();
    }
    return true;
}

} // namespace brimwatch::forecast
