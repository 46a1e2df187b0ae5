#pragma once

#include "model/color_token.h"

#include <QColor>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace brimwatch::platform {
class Appearance;
class SymbolSource;
} // namespace brimwatch::platform

namespace brimwatch::views {

/// How everything looks: the desktop's colours, font and symbols, as properties that follow the
/// desktop's settings.
///
/// One per QML engine, owned by the owner of the engine.
class Theme final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QColor label READ label NOTIFY changed FINAL)
    Q_PROPERTY(QColor secondaryLabel READ secondaryLabel NOTIFY changed FINAL)
    Q_PROPERTY(QColor accent READ accent NOTIFY changed FINAL)
    Q_PROPERTY(QColor accentFill READ accentFill NOTIFY changed FINAL)
    Q_PROPERTY(QColor onAccent READ onAccent NOTIFY changed FINAL)
    Q_PROPERTY(QColor orange READ orange NOTIFY changed FINAL)
    Q_PROPERTY(QColor orangeFill READ orangeFill NOTIFY changed FINAL)
    Q_PROPERTY(QColor red READ red NOTIFY changed FINAL)
    Q_PROPERTY(QColor controlBackground READ controlBackground NOTIFY changed FINAL)
    Q_PROPERTY(QColor controlOutline READ controlOutline NOTIFY changed FINAL)
    Q_PROPERTY(QColor background READ background NOTIFY changed FINAL)
    Q_PROPERTY(QColor frame READ frame NOTIFY changed FINAL)
    Q_PROPERTY(QColor divider READ divider NOTIFY changed FINAL)
    Q_PROPERTY(QColor cardBackground READ cardBackground NOTIFY changed FINAL)
    Q_PROPERTY(QColor cardOutline READ cardOutline NOTIFY changed FINAL)
    Q_PROPERTY(QColor rowBackground READ rowBackground NOTIFY changed FINAL)
    Q_PROPERTY(QColor rowOutline READ rowOutline NOTIFY changed FINAL)
    Q_PROPERTY(QColor track READ track NOTIFY changed FINAL)
    Q_PROPERTY(QColor countBackground READ countBackground NOTIFY changed FINAL)
    Q_PROPERTY(QColor footerBackground READ footerBackground NOTIFY changed FINAL)
    Q_PROPERTY(QColor badgeStart READ badgeStart NOTIFY changed FINAL)
    Q_PROPERTY(QColor badgeEnd READ badgeEnd NOTIFY changed FINAL)
    Q_PROPERTY(QColor hovered READ hovered NOTIFY changed FINAL)
    Q_PROPERTY(QColor pressed READ pressed NOTIFY changed FINAL)
    Q_PROPERTY(QString fontFamily READ fontFamily NOTIFY changed FINAL)
    Q_PROPERTY(QString fixedFontFamily READ fixedFontFamily CONSTANT FINAL)
    Q_PROPERTY(bool reducesMotion READ reducesMotion NOTIFY changed FINAL)
    Q_PROPERTY(double textScale READ textScale NOTIFY changed FINAL)
    Q_PROPERTY(int cornerRadius READ cornerRadius NOTIFY changed FINAL)
    Q_PROPERTY(double shadowStrength READ shadowStrength NOTIFY changed FINAL)

public:
    /// Both outlive the theme.
    Theme(platform::Appearance &appearance, const platform::SymbolSource &symbols,
        QObject *parent = nullptr);

    /// Makes this the theme of an engine, which it outlives.
    void attachTo(QQmlEngine &engine);
    /// The theme of the engine that `object` belongs to; null without an engine or a theme.
    static Theme *of(const QObject *object);
    /// For the QML engine.
    static Theme *create(QQmlEngine *engine, QJSEngine *scriptEngine);

    QColor color(model::ColorToken token) const;
    /// The same with its opacity multiplied by `opacity`.
    QColor color(model::ColorToken token, double opacity) const;

    /// The colour for shapes. Only text has to be as dark as a dark orange is.
    QColor fill(model::ColorToken token) const;

    QColor label() const { return color(model::ColorToken::Label); }
    QColor secondaryLabel() const { return color(model::ColorToken::SecondaryLabel); }
    QColor accent() const { return color(model::ColorToken::Accent); }
    /// The background of text: the accent colour, or a slightly deeper one on which white is easier
    /// to read.
    QColor accentFill() const;
    /// Text on it: white, or black where white would be hard to read.
    QColor onAccent() const;
    QColor orange() const { return color(model::ColorToken::SystemOrange); }
    QColor orangeFill() const { return fill(model::ColorToken::SystemOrange); }
    QColor red() const { return color(model::ColorToken::SystemRed); }
    QColor controlBackground() const { return color(model::ColorToken::ControlBackground); }
    QColor controlOutline() const { return color(model::ColorToken::Separator); }
    /// The popover's background: halfway between the desktop's window and control backgrounds, so
    /// that cards and rows differ from it in either direction. Opaque.
    QColor background() const;
    /// The line around the popover.
    QColor frame() const { return color(model::ColorToken::Separator, 0.5); }
    QColor divider() const { return color(model::ColorToken::Separator, 0.5); }
    QColor cardBackground() const { return color(model::ColorToken::WindowBackground); }
    QColor cardOutline() const { return color(model::ColorToken::Separator, 0.2); }
    QColor rowBackground() const { return color(model::ColorToken::ControlBackground, 0.5); }
    QColor rowOutline() const { return color(model::ColorToken::Separator, 0.3); }
    QColor track() const { return color(model::ColorToken::Separator, 0.4); }
    QColor countBackground() const { return color(model::ColorToken::SecondaryLabel, 0.1); }
    QColor footerBackground() const { return color(model::ColorToken::ControlBackground, 0.3); }
    QColor badgeStart() const { return color(model::ColorToken::Blue, 0.8); }
    QColor badgeEnd() const { return color(model::ColorToken::Purple, 0.8); }
    QColor hovered() const { return color(model::ColorToken::SecondaryLabel, 0.12); }
    QColor pressed() const { return color(model::ColorToken::SecondaryLabel, 0.24); }

    /// The interface font's family; Qt's own if the desktop names none.
    QString fontFamily() const;
    /// Qt's fixed-width family.
    QString fixedFontFamily() const;
    /// Whether there are no animations.
    bool reducesMotion() const;
    /// The factor by which all sizes are multiplied, at least 1.
    double textScale() const;

    /// Whether the popover has round corners and a shadow. False at first.
    void setFloating(bool floating);
    /// The popover's; 0 for square corners.
    int cornerRadius() const;
    /// The opacity of the popover's shadow where it is darkest; 0 for none.
    double shadowStrength() const;

    const platform::SymbolSource &symbols() const { return m_symbols; }

Q_SIGNALS:
    void changed();

private:
    platform::Appearance &m_appearance;
    const platform::SymbolSource &m_symbols;
    bool m_floating = false;
};

} // namespace brimwatch::views
