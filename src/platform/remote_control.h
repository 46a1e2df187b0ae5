#pragma once

#include "platform/published_state.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace brimwatch::platform {

/// The other programs of the user's session: what they see of us, and what they ask. The signals
/// come from the event loop, never from within a call of ours.
class RemoteControl : public QObject {
    Q_OBJECT

public:
    using Report = std::function<QString()>;

    using QObject::QObject;
    ~RemoteControl() override;

    /// They hear of it only when it differs from what was published before.
    virtual void publish(const PublishedState &state) = 0;
    /// Answers all who wait for a refresh: absent that it went well, else why it did not.
    virtual void finishRefresh(const std::optional<QString> &error) = 0;
    /// Makes the report on our state that they may ask for. Before this is called there is none.
    virtual void setReport(Report report) = 0;

Q_SIGNALS:
    /// Somebody waits for a refresh. Sent once, however many wait, until finishRefresh().
    void refreshRequested();
    void showRequested();
    void toggleRequested();
    void showSettingsRequested();
    void quitRequested();
};

} // namespace brimwatch::platform
