#pragma once

#include <QObject>

#include <initializer_list>

namespace brimwatch::sample {

/// Passes Unix signals on to the event loop. At most one object at a time.
class UnixSignals final : public QObject {
    Q_OBJECT

public:
    explicit UnixSignals(std::initializer_list<int> signalNumbers, QObject *parent = nullptr);

Q_SIGNALS:
    void received(int signalNumber);

private:
    void readNext(int descriptor);
};

} // namespace brimwatch::sample
