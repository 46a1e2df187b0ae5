#pragma once

#include <QObject>
#include <QRect>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <memory>

namespace brimwatch::platform {

class Appearance;

/// A tooltip for an item whose panel shows none for it: lines of plain text in a small window
/// beside it. Works where the toolkit is on X11, and does nothing elsewhere.
class ToolTipWindow : public QObject {
    Q_OBJECT

public:
    /// How long the pointer rests before the text shows.
    static constexpr int restMilliseconds = 600;

    /// `itemPlace` says where the item stands, in native pixels of the virtual screen.
    ToolTipWindow(
        Appearance &appearance, std::function<QRect()> itemPlace, QObject *parent = nullptr);
    ~ToolTipWindow() override;

    /// Shown texts change in place. Without lines nothing shows. All of them are laid out, so they
    /// are few and none is endless; what is wider than the window is cut there.
    void setLines(const QStringList &lines);
    bool isShown() const;

    void pointerMoved();
    void pointerLeft();
    /// Takes the text away until the pointer has left.
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
