#include "core/redactor.h"

#include "core/plain_text.h"

#include <utility>

namespace brimwatch {

using namespace Qt::Literals::StringLiterals;

Redactor::Redactor(std::optional<QString> token, QString home)
{
    constexpr qsizetype shortestToken = 4;
    if (token && token->size() >= shortestToken)
        m_token = std::move(token);
    if (home.size() > 1)
        m_home = std::move(home);
}

QString Redactor::redacted(QString text) const
{
    if (m_token)
        text.replace(*m_token, u"…"_s);
    if (!m_home.isEmpty())
        text.replace(m_home, u"~"_s);
    return text;
}

QString Redactor::line(const QString &text, qsizetype longest) const
{
    // Redacted again: the text may have had a line break where the token has a blank.
    return redacted(asOneLine(redacted(text), longest));
}

} // namespace brimwatch
