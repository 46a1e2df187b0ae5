#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

namespace brimwatch::test {

/// The property of an XSETTINGS manager that announces these numbers and texts, in little-endian
/// order.
inline QByteArray xSettingsProperty(const QVariantMap &settings)
{
    enum Type : quint32 { Number = 0, Text = 1 };
    QByteArray bytes;
    const auto append = [&bytes](quint32 number, int size) {
        for (int i = 0; i < size; ++i)
            bytes.append(static_cast<char>((number >> (8 * i)) & 0xff));
    };
    const auto appendPadded = [&bytes](const QByteArray &text) {
        bytes.append(text);
        bytes.append(QByteArray((4 - text.size() % 4) % 4, '\0'));
    };

    append(0, 4); // byte order
    append(1, 4); // serial
    append(static_cast<quint32>(settings.size()), 4);
    for (auto it = settings.begin(); it != settings.end(); ++it) {
        const bool isText = it->metaType() == QMetaType::fromType<QString>();
        append(isText ? Text : Number, 1);
        append(0, 1);
        const QByteArray name = it.key().toUtf8();
        append(static_cast<quint32>(name.size()), 2);
        appendPadded(name);
        append(1, 4); // serial of the last change
        if (isText) {
            const QByteArray text = it->toString().toUtf8();
            append(static_cast<quint32>(text.size()), 4);
            appendPadded(text);
        } else {
            append(it->toUInt(), 4);
        }
    }
    return bytes;
}

} // namespace brimwatch::test
