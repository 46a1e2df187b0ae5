#pragma once

#include <QString>

namespace brimwatch::model {

/// Whether `name` contains `part`, ignoring case. Accents, width and invisible characters count,
/// and a letter with its accent is one character: neither "Gémini" nor a "Geminí" written with a
/// combining accent contains "gemini". The result is the same in all locales: the daemon's names
/// are English, and with a Turkish locale "GEMINI" is Gemini too.
bool containsIgnoringCase(const QString &name, const QString &part);

/// Whether the lower-cased `name` contains `part`. Differs from containsIgnoringCase() for names
/// whose length changes when they are lower-cased ("GEMİNİ").
bool lowerCasedContains(const QString &name, const QString &part);

} // namespace brimwatch::model
