#include "qml/popover_fixture.h"
#include "qml/samples.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QTest>
#include <QTextStream>

#include <array>
#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::PopoverFixture;

namespace {

/// A state of the popover: what happens before the picture is taken.
struct Scenario {
    QString name;
    std::function<void(PopoverFixture &)> prepare;
};

void showSettings(PopoverFixture &f)
{
    f.answer(test::sampleSummary());
    f.showSettings();
}

QList<Scenario> scenarios()
{
    const QString longError
        = u"The daemon did not answer: the connection was closed before a complete answer had "
          u"come, "
          "and three further attempts with the other daemons that announce themselves failed too."_s;
    return {
        {.name = u"normal"_s,
            .prepare = [](PopoverFixture &f) { f.answer(test::sampleSummary()); }},
        {.name = u"normal-end"_s,
            .prepare =
                [](PopoverFixture &f) {
                    f.answer(test::sampleSummary());
                    QTest::keyClick(&f.window(), Qt::Key_End);
                }},
        {.name = u"later"_s,
            .prepare =
                [](PopoverFixture &f) {
                    f.answer(test::sampleSummary());
                    f.clock.advance(std::chrono::seconds(42));
                }},
        {.name = u"loading"_s, .prepare = [](PopoverFixture &f) { f.awaitRefresh(); }},
        {.name = u"offline"_s,
            .prepare = [](PopoverFixture &f) { f.fail(u"Could not connect to the server."_s); }},
        {.name = u"offline-long"_s,
            .prepare = [longError](PopoverFixture &f) { f.fail(longError); }},
        {.name = u"error-beside-data"_s,
            .prepare =
                [](PopoverFixture &f) {
                    f.answer(test::sampleSummary());
                    f.clock.advance(std::chrono::minutes(5));
                    f.fail(u"Could not connect to the server."_s);
                    QTest::keyClick(&f.window(), Qt::Key_End);
                }},
        {.name = u"zero-groups"_s,
            .prepare = [](PopoverFixture &f) { f.answer(model::QuotaSummary{}); }},
        {.name = u"fifty-groups"_s,
            .prepare =
                [](PopoverFixture &f) {
                    f.answer(test::manyGroups(50));
                    f.awaitCards(50);
                    QTest::keyClick(&f.window(), Qt::Key_PageDown);
                }},
        {.name = u"long-names"_s,
            .prepare = [](PopoverFixture &f) { f.answer(test::longNames()); }},
        {.name = u"odd-names"_s, .prepare = [](PopoverFixture &f) { f.answer(test::oddNames()); }},
        {.name = u"low"_s, .prepare = [](PopoverFixture &f) { f.answer(test::lowSummary()); }},
        {.name = u"settings"_s, .prepare = [](PopoverFixture &f) { showSettings(f); }},
        {.name = u"settings-middle"_s,
            .prepare =
                [](PopoverFixture &f) {
                    showSettings(f);
                    f.setLoginItem(platform::LoginItem::Status::requiresApproval);
                    QTest::keyClick(&f.window(), Qt::Key_PageDown);
                }},
        {.name = u"settings-end"_s,
            .prepare =
                [](PopoverFixture &f) {
                    showSettings(f);
                    QTest::keyClick(&f.window(), Qt::Key_End);
                }},
        {.name = u"settings-few"_s,
            .prepare =
                [](PopoverFixture &f) {
                    f.service.setShowGeminiInToolbar(false);
                    f.service.setRefreshInterval(77);
                    f.setLoginItem(platform::LoginItem::Status::requiresApproval);
                    showSettings(f);
                }},
        {.name = u"settings-picker"_s,
            .prepare =
                [](PopoverFixture &f) {
                    showSettings(f);
                    QTest::mouseClick(
                        &f.window(), Qt::LeftButton, {}, f.middle(u"labelStyleBox"_s));
                }},
        {.name = u"settings-keyboard"_s,
            .prepare =
                [](PopoverFixture &f) {
                    showSettings(f);
                    for (int i = 0; i < 4; ++i)
                        QTest::keyClick(&f.window(), Qt::Key_Tab);
                }},
        {.name = u"focus"_s,
            .prepare =
                [](PopoverFixture &f) {
                    f.answer(test::sampleSummary());
                    QTest::keyClick(&f.window(), Qt::Key_Tab);
                }},
    };
}

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Takes pictures of the popover in all its states."_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"folder"_s, u"Where the pictures go."_s);
    const QCommandLineOption scale(
        u"text-scale"_s, u"How much larger than usual text is."_s, u"factor"_s, u"1"_s);
    const QCommandLineOption contrast(
        u"higher-contrast"_s, u"As on a desktop that is set to higher contrast."_s);
    const QCommandLineOption family(u"font"_s, u"The interface font."_s, u"family"_s);
    const QCommandLineOption only(u"only"_s, u"This one state."_s, u"state"_s);
    parser.addOptions({scale, contrast, family, only});
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    const QDir folder(parser.positionalArguments().constFirst());
    if (!folder.mkpath(u"."_s)) {
        QTextStream(stderr) << "cannot make " << folder.path() << '\n';
        return 1;
    }

    constexpr std::array grounds{platform::Background::Light, platform::Background::Dark};
    const auto all = scenarios();
    for (const Scenario &scenario : all) {
        if (parser.isSet(only) && parser.value(only) != scenario.name)
            continue;
        for (const platform::Background ground : grounds) {
            PopoverFixture fixture;
            fixture.appearance.ground = ground;
            fixture.appearance.scale = parser.value(scale).toDouble();
            if (parser.isSet(contrast))
                fixture.appearance.contrast = platform::Contrast::Higher;
            fixture.appearance.family = parser.value(family);
            fixture.show();
            scenario.prepare(fixture);
            QCoreApplication::processEvents();
            const QString name = scenario.name
                + (ground == platform::Background::Light ? "-light.png"_L1 : "-dark.png"_L1);
            if (!fixture.window().grabWindow().save(folder.filePath(name))) {
                QTextStream(stderr) << "cannot write " << name << '\n';
                return 1;
            }
        }
    }
    return 0;
}
