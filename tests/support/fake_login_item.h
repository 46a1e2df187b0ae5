#pragma once

#include "platform/login_item.h"

#include <QStringList>

#include <optional>

namespace brimwatch::test {

/// A system that starts us at login as it is told, or does not.
class FakeLoginItem final : public platform::LoginItem {
public:
    Status status() const override
    {
        ++asked;
        return held;
    }
    Result<void, QString> registerItem() override
    {
        return attempt(QStringLiteral("register"), Status::enabled);
    }
    Result<void, QString> unregisterItem() override
    {
        return attempt(QStringLiteral("unregister"), Status::notRegistered);
    }
    void openSystemSettings() override
    {
        ++settingsOpened;
        note(QStringLiteral("settings"));
    }

    Status held = Status::notRegistered;
    std::optional<Status> afterwards; ///< What holds after an attempt; absent: what was asked for.
    QString failure; ///< Empty: attempts succeed.
    mutable int asked = 0; ///< How often the status was read.
    int settingsOpened = 0;
    QStringList *log = nullptr; ///< Where calls are written down, if anywhere.

private:
    Result<void, QString> attempt(const QString &name, Status wanted)
    {
        note(name);
        held = afterwards.value_or(wanted);
        if (!failure.isEmpty())
            return fail(failure);
        return {};
    }

    void note(const QString &name) const
    {
        if (log != nullptr)
            log->append(name);
    }
};

} // namespace brimwatch::test
