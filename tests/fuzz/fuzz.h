#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

/// What libFuzzer calls with each input, and replay.cpp with each file of a corpus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace brimwatch::fuzz {

/// Ends the program, as libFuzzer has it, when a rule does not hold.
inline void require(bool holds, const char *rule)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken rule: %s\n", rule);
    std::abort();
}

/// Values from the bytes of an input, taken from its front. Behind the end all bytes are zero.
class Input {
public:
    Input(const std::uint8_t *data, std::size_t size)
        : m_rest(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size))
    {
    }

    bool isEmpty() const { return m_rest.isEmpty(); }

    template <typename T> T number()
    {
        T value{};
        const auto size = qMin<qsizetype>(qsizetype(sizeof(T)), m_rest.size());
        std::memcpy(&value, m_rest.data(), static_cast<std::size_t>(size));
        m_rest = m_rest.sliced(size);
        return value;
    }
    /// From 0 to `count` - 1, of one byte.
    int below(int count) { return number<std::uint8_t>() % count; }
    bool flag() { return below(2) == 1; }

    /// Up to a zero byte, or the end.
    QByteArray bytes()
    {
        const auto end = m_rest.indexOf('\0');
        const auto result = m_rest.first(end < 0 ? m_rest.size() : end).toByteArray();
        m_rest = m_rest.sliced(end < 0 ? m_rest.size() : end + 1);
        return result;
    }
    QString text() { return QString::fromUtf8(bytes()); }
    /// All that is left, as UTF-16 units of which any number may be wrong.
    QString units()
    {
        QString result(m_rest.size() / 2, Qt::Uninitialized);
        std::memcpy(result.data(), m_rest.data(), static_cast<std::size_t>(result.size()) * 2);
        m_rest = {};
        return result;
    }
    QByteArray rest()
    {
        const auto result = m_rest.toByteArray();
        m_rest = {};
        return result;
    }

private:
    QByteArrayView m_rest;
};

/// No control character, no line end.
inline bool isOneLine(const QString &text)
{
    return std::ranges::none_of(text, [](QChar c) {
        return c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line
            || c.category() == QChar::Separator_Paragraph;
    });
}

} // namespace brimwatch::fuzz
