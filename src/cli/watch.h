#pragma once

#include "cli/command_line.h"
#include "cli/terminal.h"
#include "platform/linux/bus/running_program.h"

#include <QObject>
#include <QString>
#include <QTimer>

namespace brimwatch::cli {

/// Prints a line now and at each change, until it is interrupted or nobody reads any more. Changes
/// in quick succession share a line: polybar 3.6 leaves the second of two lines that come at once
/// unread until there is a third.
class Watch final : public QObject {
    Q_OBJECT

public:
    Watch(QDBusConnection bus, Options options);

    /// Whether it ended because a line could not be written.
    bool hasFailed() const { return m_written == Written::Failed; }

Q_SIGNALS:
    void ended();

private:
    void change();
    void print();

    Options m_options;
    platform::ProgramFollower m_follower;
    QString m_printed;
    Written m_written = Written::All;
    QTimer m_pause; ///< Runs while no further line may be printed.
    bool m_changed = false; ///< During the pause.
};

/// Blocks the signals that end a watch, so that Watch reads them. Call it before there is a second
/// thread.
void blockEndSignals();

} // namespace brimwatch::cli
