#pragma once

#include "platform/appearance.h"
#include "platform/linux/appearance/system_colors.h"
#include "platform/opener.h"
#include "platform/pasteboard.h"

#include <QList>
#include <QStringList>
#include <QUrl>

namespace brimwatch::test {

class FakeOpener final : public platform::Opener {
public:
    bool installed = false;
    int started = 0;
    QList<QUrl> opened;

    bool openAntigravity() override;
    void openUrl(const QUrl &url) override { opened.append(url); }
};

class FakePasteboard final : public platform::Pasteboard {
public:
    QStringList texts;

    void setText(const QString &text) override { texts.append(text); }
};

/// A desktop with the settings of the test.
class FakeAppearance final : public platform::Appearance {
    Q_OBJECT

public:
    platform::Background background = platform::Background::Light;
    double scale = 1;
    platform::Contrast contrast = platform::Contrast::Usual;
    bool still = false;
    QString family;

    bool isDark() const override { return background == platform::Background::Dark; }
    platform::Rgba color(model::ColorToken token) const override
    {
        return platform::systemColor(token, background, contrast);
    }
    QString fontFamily() const override { return family; }
    double textScale() const override { return scale; }
    bool reducesMotion() const override { return still; }
};

} // namespace brimwatch::test
