#pragma once

#include "core/result.h"
#include "model/quota_json.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <cstdint>
#include <optional>

namespace brimwatch::discovery {

/// One discovery file: how a language-server daemon announces itself.
struct DaemonInfo {
    std::optional<std::int64_t> pid = {};
    std::optional<std::int64_t> httpsPort = {};
    std::optional<std::int64_t> httpPort = {};
    std::optional<QString> lsVersion = {};
    /// A secret: part of the request and the report, never of a log.
    std::optional<QString> csrfToken = {};
    std::optional<QString> filePath = {}; ///< Of the discovery file.

    bool operator==(const DaemonInfo &) const = default;

    /// Where the daemon is asked: on its plain port, else on its secure one. Deliberate: the plain
    /// port comes first.
    const std::optional<std::int64_t> &askedPort() const { return httpPort ? httpPort : httpsPort; }
};

/// All keys are optional, but one of a wrong type (a port as text, a pid with a fraction) rejects
/// the whole file.
Result<DaemonInfo, DecodingError> decodeDaemonInfo(const QByteArray &json);
QJsonObject encode(const DaemonInfo &info);

} // namespace brimwatch::discovery
