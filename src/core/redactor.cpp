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
    while (home.size() > 1 && home.endsWith(u'/'))
        home.chop(1);
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
    // Redacted again before it is truncated: the text may have a line end where the token has a
    // blank.
    const QString once = redacted(text);
    return asOneLine(redacted(asOneLine(once, once.size())), longest);
}

} // namespace brimwatch
