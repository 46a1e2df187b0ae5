#include "views/models/theme.h"

#include "platform/appearance.h"
#include "platform/qt_color.h"
#include "views/models/assign.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QJSEngine>
#include <QQmlEngine>
#include <QVariant>

#include <algorithm>
#include <cmath>

namespace brimwatch::views {
namespace {

constexpr const char *engineProperty = "brimwatchTheme";

QColor halfway(const QColor &a, const QColor &b)
{
    return QColor::fromRgbF(
        (a.redF() + b.redF()) / 2, (a.greenF() + b.greenF()) / 2, (a.blueF() + b.blueF()) / 2);
}

/// Relative luminance as WCAG 2 defines it.
double luminance(const QColor &color)
{
    const auto linear = [](double component) {
        return component <= 0.03928 ? component / 12.92
                                    : std::pow((component + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

double contrastOfWhite(const QColor &background)
{
    return 1.05 / (luminance(background) + 0.05);
}

} // namespace

Theme::Theme(
    platform::Appearance &appearance, const platform::SymbolSource &symbols, QObject *parent)
    : QObject(parent)
    , m_appearance(appearance)
    , m_symbols(symbols)
{
    connect(&appearance, &platform::Appearance::changed, this, &Theme::changed);
}

void Theme::attachTo(QQmlEngine &engine)
{
    QJSEngine::setObjectOwnership(this, QJSEngine::CppOwnership);
    engine.setProperty(engineProperty, QVariant::fromValue(this));
}

Theme *Theme::of(const QObject *object)
{
    const QQmlEngine *engine = qmlEngine(object);
    return engine != nullptr ? engine->property(engineProperty).value<Theme *>() : nullptr;
}

Theme *Theme::create(QQmlEngine *engine, QJSEngine * /*scriptEngine*/)
{
    return engine->property(engineProperty).value<Theme *>();
}

QColor Theme::color(model::ColorToken token) const
{
    return toColor(m_appearance.color(token));
}

QColor Theme::color(model::ColorToken token, double opacity) const
{
    platform::Rgba color = m_appearance.color(token);
    color.alpha *= opacity;
    return toColor(color);
}

QColor Theme::fill(model::ColorToken token) const
{
    QColor result = color(token);
    if (token == model::ColorToken::SystemOrange) {
        constexpr float bright = 0.95F;
        result.setHsvF(result.hsvHueF(), result.hsvSaturationF(), std::max(result.valueF(), bright),
            result.alphaF());
    }
    return result;
}

QColor Theme::accentFill() const
{
    constexpr double readable = 3.5;
    constexpr int deepest = 125;
    for (int percent = 100; percent <= deepest; ++percent) {
        const QColor deeper = accent().darker(percent);
        if (contrastOfWhite(deeper) >= readable)
            return deeper;
    }
    return accent();
}

QColor Theme::onAccent() const
{
    // White, unless its contrast is below 3 : 1, the minimum for controls in WCAG 2.
    return contrastOfWhite(accentFill()) >= 3 ? color(model::ColorToken::White) : QColor(Qt::black);
}

QColor Theme::background() const
{
    return halfway(
        color(model::ColorToken::WindowBackground), color(model::ColorToken::ControlBackground));
}

QString Theme::fontFamily() const
{
    const QString family = m_appearance.fontFamily();
    return family.isEmpty() ? QGuiApplication::font().family() : family;
}

QString Theme::fixedFontFamily() const
{
    return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

bool Theme::reducesMotion() const
{
    return m_appearance.reducesMotion();
}

double Theme::textScale() const
{
    // A smaller popover would cut off what it shows.
    return std::max(m_appearance.textScale(), 1.0);
}

void Theme::setFloating(bool floating)
{
    if (assign(m_floating, floating))
        Q_EMIT changed();
}

int Theme::cornerRadius() const
{
    return m_floating ? 10 : 0;
}

double Theme::shadowStrength() const
{
    if (!m_floating)
        return 0;
    // On a dark background a weaker one is invisible.
    return background().lightnessF() < 0.5 ? 0.6 : 0.3;
}

} // namespace brimwatch::views
