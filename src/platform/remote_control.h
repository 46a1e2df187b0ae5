#pragma once

#include "platform/published_state.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace brimwatch::platform {

/// The other programs of the user's session: what they see of us, and what they ask for. The
/// signals are emitted from the event loop, never during a call of these functions.
class RemoteControl : public QObject {
    Q_OBJECT

public:
    using Report = std::function<QString()>;

    using QObject::QObject;

    /// Announces the state to them if it differs from the one published before.
    virtual void publish(const PublishedState &state) = 0;
    /// Answers all callers that wait for a refresh. `error` is absent when it succeeded.
    virtual void finishRefresh(const std::optional<QString> &error) = 0;
    /// Sets what makes the report on our state that they may ask for. Until then there is none.
    virtual void setReport(Report report) = 0;

Q_SIGNALS:
    /// A caller waits for a refresh. Emitted once for all that wait, until finishRefresh().
    void refreshRequested();
    void showRequested();
    void toggleRequested();
    void showSettingsRequested();
    void quitRequested();
};

} // namespace brimwatch::platform
