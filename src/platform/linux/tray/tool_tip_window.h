#pragma once

#include <QObject>
#include <QRect>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

namespace brimwatch::platform {

class Appearance;

/// A tooltip for an item whose panel shows none for it: lines of plain text in a small window
/// beside it. Works where Qt is on X11, and does nothing elsewhere.
class ToolTipWindow final : public QObject {
    Q_OBJECT

public:
    /// How long the pointer rests before the tooltip shows.
    static constexpr std::chrono::milliseconds restTime{600};

    /// `itemPlace` returns the item's place, in native pixels of the virtual screen.
    ToolTipWindow(
        Appearance &appearance, std::function<QRect()> itemPlace, QObject *parent = nullptr);
    ~ToolTipWindow() override;

    /// A tooltip that is shown changes in place. Without lines nothing shows. All of them are laid
    /// out, so the caller bounds their number and length; wider ones are elided.
    void setLines(const QStringList &lines);
    bool isShown() const;

    void pointerMoved();
    void pointerLeft();
    /// Hides the tooltip until the pointer has left.
    void pressed();

private:
    class Window;

    void show();
    void hide();
    void place();

    Appearance &m_appearance;
    std::function<QRect()> m_itemPlace;
    QStringList m_lines;
    QTimer m_rest;
    bool m_pressed = false;
    std::unique_ptr<Window> m_window;
};

} // namespace brimwatch::platform
