#pragma once

#include "cli/command_line.h"
#include "platform/linux/bus/running_program.h"

#include <QObject>
#include <QString>
#include <QTimer>

namespace brimwatch::cli {

/// Prints a line now and at each change, until it is interrupted or nobody reads any more. Changes
/// that follow each other closely share a line: polybar 3.6 leaves the second of two lines that
/// come at once unread until there is a third.
class Watch final : public QObject {
    Q_OBJECT

public:
    Watch(QDBusConnection bus, Options options);

Q_SIGNALS:
    void ended(int exitStatus);

private:
    void change();
    void print();

    Options m_options;
    platform::ProgramFollower m_follower;
    QString m_printed;
    QTimer m_pause; ///< Runs while readers are to be left in peace.
    bool m_changed = false; ///< In the pause.
};

/// Keeps the signals that end a watch from ending the process, for Watch to read. Before there is
/// a second thread.
void blockEndSignals();

} // namespace brimwatch::cli
