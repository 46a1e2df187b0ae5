#pragma once

#include "platform/notifier.h"

#include <QList>
#include <QStringList>

namespace brimwatch::test {

/// A desktop that keeps what is posted.
class FakeNotifier final : public platform::Notifier {
public:
    void requestAuthorization() override
    {
        ++authorizationsAsked;
        note(QStringLiteral("permission"));
    }
    void post(const platform::Notification &notification) override
    {
        posted.append(notification);
        note(QStringLiteral("notification"));
    }

    int authorizationsAsked = 0;
    QList<platform::Notification> posted;
    QStringList *log = nullptr; ///< Where calls are written down, if anywhere.

private:
    void note(const QString &name) const
    {
        if (log != nullptr)
            log->append(name);
    }
};

} // namespace brimwatch::test
