#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>

class QLockFile;

namespace brimwatch::platform {

/// Whether this process is the user's one Brimwatch. It is when it gets the program's name on the
/// session bus; one that finds it taken asks its owner to open the popover. Without a bus, or on
/// one that gives us no name, a lock file decides; it is held with the name too, as a bus may go
/// before the session does.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    enum class Outcome {
        First, ///< This process is the first, or neither bus nor lock file can decide.
        OtherShown, ///< Another is, and has been asked to open its popover.
        OtherSilent, ///< Another is, and does not answer.
        OtherLocked, ///< Another is, and there is no bus over which to ask it.
    };

    /// How long the other one has to answer.
    static constexpr std::chrono::milliseconds timeout{2000};

    /// `runtimeFolder` is the user's own folder for what lives as long as the session; empty when
    /// there is none.
    SingleInstance(QDBusConnection bus, const QString &runtimeFolder, QObject *parent = nullptr);
    ~SingleInstance() override;

    /// Finds out without blocking; decided() follows, once. The object that answers to the name
    /// should be on the bus by now.
    void claim();

    /// Of OtherShown: the display on which the other one opens its popover; empty when it does not
    /// say.
    const QString &otherDisplay() const { return m_otherDisplay; }

Q_SIGNALS:
    void decided(brimwatch::platform::SingleInstance::Outcome outcome);

private:
    enum class Attempt { First, AfterSilence };

    void requestName(Attempt attempt);
    void askOther();
    void askForDisplay();
    void decideByName();
    void decideByLock();

    QDBusConnection m_bus;
    QString m_otherDisplay;
    std::unique_ptr<QLockFile> m_lock; ///< Null where no folder can hold it.
};

} // namespace brimwatch::platform
