#pragma once

#include <QMap>
#include <QString>

namespace brimwatch::test {

class OtherProgram;

/// What a running program holds, by its name: memory in KiB, and numbers of all else.
using Measures = QMap<QString, qint64>;

/// What the process alone has in memory, in KiB.
qint64 privateMemory(qint64 pid);

/// Of the program with that process and that connection to the bus.
Measures measure(qint64 pid, const QString &busName, OtherProgram &asking);

} // namespace brimwatch::test
