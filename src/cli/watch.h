#pragma once

#include "cli/command_line.h"
#include "platform/linux/running_program.h"

#include <QObject>
#include <QString>

namespace brimwatch::cli {

/// Prints a line now and at each change, until it is interrupted or nobody reads any more.
class Watch final : public QObject {
    Q_OBJECT

public:
    Watch(QDBusConnection bus, Options options);

Q_SIGNALS:
    void ended(int exitStatus);

private:
    void print();

    Options m_options;
    platform::ProgramFollower m_follower;
    QString m_printed;
};

/// Keeps the signals that end a watch from ending the process, for Watch to read. Before there is
/// a second thread.
void blockEndSignals();

} // namespace brimwatch::cli
