#pragma once

#include "fuzz.h"

#include <QDBusVariant>
#include <QVariantMap>

namespace brimwatch::fuzz {

/// A value of any type that a program may send as a property, nested up to `depth`; with keys that
/// we know more often than with others.
inline QVariant randomVariant(Input &input, int depth);

inline QVariantMap randomProperties(Input &input, int depth)
{
    static const QStringList known{QStringLiteral("State"), QStringLiteral("Port"),
        QStringLiteral("LastUpdate"), QStringLiteral("Error"), QStringLiteral("Title"),
        QStringLiteral("Items"), QStringLiteral("Lowest"), QStringLiteral("Groups"),
        QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("window"),
        QStringLiteral("fraction"), QStringLiteral("percentage"), QStringLiteral("tier"),
        QStringLiteral("reset-time"), QStringLiteral("text"), QStringLiteral("family"),
        QStringLiteral("buckets")};
    QVariantMap map;
    for (int i = input.below(12); i > 0 && !input.isEmpty(); --i) {
        const auto key = input.below(static_cast<int>(known.size()) + 1);
        map.insert(key < known.size() ? known[key] : input.text(), randomVariant(input, depth));
    }
    return map;
}

inline QVariant randomVariant(Input &input, int depth)
{
    switch (input.below(depth > 0 ? 13 : 9)) {
    case 0:
        return input.text();
    case 1:
        return input.number<double>();
    case 2:
        return input.number<qlonglong>();
    case 3:
        return input.number<uint>();
    case 4:
        return input.flag();
    case 5:
        return input.number<int>();
    case 6:
        return input.bytes();
    case 7: {
        static const QStringList known{QStringLiteral("connected"), QStringLiteral("offline"),
            QStringLiteral("connecting"), QStringLiteral("healthy"), QStringLiteral("warning"),
            QStringLiteral("critical"), QStringLiteral("gemini"), QStringLiteral("argon"),
            QStringLiteral("5h"), QStringLiteral("weekly")};
        return known[input.below(static_cast<int>(known.size()))];
    }
    case 8: {
        QStringList list;
        for (int i = input.below(4); i > 0; --i)
            list.append(input.text());
        return list;
    }
    case 9:
        return QVariant::fromValue(QDBusVariant(randomVariant(input, depth - 1)));
    case 10:
        return randomProperties(input, depth - 1);
    case 11: {
        QVariantList list;
        for (int i = input.below(4); i > 0; --i)
            list.append(randomVariant(input, depth - 1));
        return list;
    }
    default: {
        QList<QVariantMap> list;
        for (int i = input.below(5); i > 0; --i)
            list.append(randomProperties(input, depth - 1));
        return QVariant::fromValue(list);
    }
    }
}

} // namespace brimwatch::fuzz
