#pragma once

#include "platform/remote_control.h"

#include <QList>

#include <functional>
#include <optional>

namespace brimwatch::test {

/// Another program that sees the state, and asks when the test emits its signals.
class FakeRemoteControl final : public platform::RemoteControl {
public:
    void publish(const platform::PublishedState &state) override
    {
        published.append(state);
        if (onPublished)
            onPublished();
    }
    void finishRefresh(const std::optional<QString> &error) override { finished.append(error); }
    void setReport(Report value) override { report = std::move(value); }

    QList<platform::PublishedState> published;
    QList<std::optional<QString>> finished; ///< Refreshes that were asked for, with their errors.
    Report report;
    std::function<void()> onPublished;
};

} // namespace brimwatch::test
