#pragma once

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <functional>

namespace brimwatch::views {

/// The rotation of the refresh icon: whole turns only, at least one, and another one whenever a
/// refresh still runs at the end of a turn.
class RefreshSpin final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Owned by the popover's model.")
    Q_PROPERTY(bool isSpinning READ isSpinning NOTIFY isSpinningChanged FINAL)
    Q_PROPERTY(double rotationDegrees READ rotationDegrees NOTIFY rotationDegreesChanged FINAL)
    Q_PROPERTY(bool easesInOut READ easesInOut NOTIFY easesInOutChanged FINAL)
    Q_PROPERTY(int turnDuration READ turnDuration CONSTANT FINAL)

public:
    static constexpr std::chrono::milliseconds turn{700};

    /// `shouldContinue` is called at the end of each turn: whether another one follows.
    explicit RefreshSpin(std::function<bool()> shouldContinue, QObject *parent = nullptr);

    /// Starts a spin, unless one is running.
    void trigger();

    bool isSpinning() const { return m_isSpinning; }
    /// The angle at which the present turn ends; it only grows, by 360 per turn.
    double rotationDegrees() const { return m_rotationDegrees; }
    /// How the present turn is animated: the first one eases in and out, the others are linear.
    bool easesInOut() const { return m_easesInOut; }
    /// In milliseconds, as QML counts.
    int turnDuration() const { return static_cast<int>(turn.count()); }

Q_SIGNALS:
    void isSpinningChanged();
    void rotationDegreesChanged();
    void easesInOutChanged();

private:
    void startTurn(bool easesInOut);
    void endTurn();

    std::function<bool()> m_shouldContinue;
    QTimer m_timer;
    bool m_isSpinning = false;
    double m_rotationDegrees = 0;
    bool m_easesInOut = true;
};

} // namespace brimwatch::views
