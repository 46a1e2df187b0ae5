#pragma once

#include <QString>

namespace brimwatch::model {

/// Whether `name` holds `part`, whatever the case of either. Accents, width and invisible
/// characters count, and a letter with its accent is one character: neither "Gémini" nor a "Geminí"
/// written with a combining accent holds "gemini". It is the same in all locales: the daemon's
/// names are English, and a Turkish reader's "GEMINI" is Gemini too.
bool containsIgnoringCase(const QString &name, const QString &part);

/// Whether the lower-cased `name` holds `part`. It differs from the above where lower-casing
/// changes the length of a name
/// ("GEMİNİ").
bool lowerCasedContains(const QString &name, const QString &part);

} // namespace brimwatch::model
