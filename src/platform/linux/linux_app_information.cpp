#include "platform/linux/linux_app_information.h"

#include "core/read_file.h"

#include <QList>
#include <QSysInfo>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qint64 largestFile = 64LL * 1024;

QByteArray osRelease()
{
    for (const QString &path : {u"/etc/os-release"_s, u"/usr/lib/os-release"_s}) {
        if (auto content = readFile(path, largestFile))
            return *std::move(content);
    }
    return {};
}

std::optional<QString> known(const char *text)
{
    const QString value = QString::fromUtf8(text);
    return value.isEmpty() ? std::nullopt : std::optional(value);
}

} // namespace

QString prettyNameOf(const QByteArray &osRelease)
{
    QByteArray value;
    const auto lines = osRelease.split('\n');
    for (const QByteArray &line : lines) {
        constexpr QByteArrayView key = "PRETTY_NAME=";
        const QByteArray trimmed = line.trimmed();
        // The last assignment counts, as in a shell.
        if (trimmed.startsWith(key))
            value = trimmed.mid(key.size());
    }
    QByteArray name;
    char quote = 0;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char c = value[i];
        if (c == '\\' && quote != '\'' && i + 1 < value.size())
            name += value[++i];
        else if (quote == 0 && (c == '"' || c == '\''))
            quote = c;
        else if (quote != 0 && c == quote)
            quote = 0;
        else
            name += c;
    }
    const QString text = QString::fromUtf8(name).simplified();
    return text.isEmpty() ? u"Linux"_s : text;
}

AppInformation linuxAppInformation()
{
    return {.version = known(BRIMWATCH_VERSION),
        .build = known(BRIMWATCH_BUILD_NUMBER),
        .systemVersion = prettyNameOf(osRelease()) + ", kernel "_L1 + QSysInfo::kernelVersion()};
}

} // namespace brimwatch::platform
