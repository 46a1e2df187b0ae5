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

using Step = std::function<void(PopoverFixture &)>;

void answerWithSamples(PopoverFixture &f)
{
    f.answer(test::sampleSummary());
}

Step pressKey(Qt::Key key)
{
    return [key](PopoverFixture &f) { QTest::keyClick(&f.window(), key); };
}

/// A state of the popover. A refresh ends before the popover is shown, so that its icon does not
/// turn and every picture is reproducible.
struct Scenario {
    QString name;
    Step fetch = answerWithSamples; ///< Before the popover is shown.
    Step act = [](PopoverFixture &) { }; ///< After that.
};

QList<Scenario> scenarios()
{
    const QString longError
        = u"The daemon did not answer: the connection was closed before a complete answer had "
          "come, and three further attempts with the other daemons that announce themselves "
          "failed too."_s;
    return {
        {.name = u"normal"_s},
        {.name = u"normal-end"_s, .act = pressKey(Qt::Key_End)},
        {.name = u"later"_s,
            .act = [](PopoverFixture &f) { f.clock.advance(std::chrono::seconds(42)); }},
        {.name = u"loading"_s,
            .fetch = [](PopoverFixture &) {},
            .act = [](PopoverFixture &f) { f.awaitRefresh(); }},
        {.name = u"offline"_s,
            .fetch = [](PopoverFixture &f) { f.fail(u"Could not connect to the server."_s); }},
        {.name = u"offline-long"_s, .fetch = [longError](PopoverFixture &f) { f.fail(longError); }},
        {.name = u"error-beside-data"_s,
            .fetch =
                [](PopoverFixture &f) {
                    answerWithSamples(f);
                    f.clock.advance(std::chrono::minutes(5));
                    f.fail(u"Could not connect to the server."_s);
                },
            .act = pressKey(Qt::Key_End)},
        {.name = u"zero-groups"_s,
            .fetch = [](PopoverFixture &f) { f.answer(model::QuotaSummary{}); }},
        {.name = u"fifty-groups"_s,
            .fetch = [](PopoverFixture &f) { f.answer(test::manyGroups(50)); },
            .act =
                [](PopoverFixture &f) {
                    f.awaitCards(50);
                    QTest::keyClick(&f.window(), Qt::Key_PageDown);
                }},
        {.name = u"long-names"_s, .fetch = [](PopoverFixture &f) { f.answer(test::longNames()); }},
        {.name = u"odd-names"_s, .fetch = [](PopoverFixture &f) { f.answer(test::oddNames()); }},
        {.name = u"low"_s, .fetch = [](PopoverFixture &f) { f.answer(test::lowSummary()); }},
        {.name = u"settings"_s, .act = [](PopoverFixture &f) { f.showSettings(); }},
        {.name = u"settings-middle"_s,
            .act =
                [](PopoverFixture &f) {
                    f.showSettings();
                    f.setLoginItem(platform::LoginItem::Status::requiresApproval);
                    QTest::keyClick(&f.window(), Qt::Key_PageDown);
                }},
        {.name = u"settings-end"_s,
            .act =
                [](PopoverFixture &f) {
                    f.showSettings();
                    QTest::keyClick(&f.window(), Qt::Key_End);
                }},
        {.name = u"settings-few"_s,
            .act =
                [](PopoverFixture &f) {
                    f.service.setShowGeminiInToolbar(false);
                    f.service.setRefreshInterval(77);
                    f.setLoginItem(platform::LoginItem::Status::requiresApproval);
                    f.showSettings();
                }},
        {.name = u"settings-picker"_s,
            .act =
                [](PopoverFixture &f) {
                    f.showSettings();
                    QTest::mouseClick(
                        &f.window(), Qt::LeftButton, {}, f.middle(u"labelStyleBox"_s));
                }},
        {.name = u"settings-keyboard"_s,
            .act =
                [](PopoverFixture &f) {
                    f.showSettings();
                    for (int i = 0; i < 4; ++i)
                        QTest::keyClick(&f.window(), Qt::Key_Tab);
                }},
        {.name = u"focus"_s, .act = pressKey(Qt::Key_Tab)},
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
        u"text-scale"_s, u"The factor by which text is enlarged."_s, u"factor"_s, u"1"_s);
    const QCommandLineOption contrast(
        u"higher-contrast"_s, u"As on a desktop with higher contrast."_s);
    const QCommandLineOption family(u"font"_s, u"The interface font."_s, u"family"_s);
    const QCommandLineOption only(u"only"_s, u"Only this state."_s, u"state"_s);
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
        for (const platform::Background background : grounds) {
            PopoverFixture fixture;
            fixture.appearance.background = background;
            fixture.appearance.scale = parser.value(scale).toDouble();
            if (parser.isSet(contrast))
                fixture.appearance.contrast = platform::Contrast::Higher;
            fixture.appearance.family = parser.value(family);
            scenario.fetch(fixture);
            fixture.show();
            scenario.act(fixture);
            QCoreApplication::processEvents();
            const QString name = scenario.name
                + (background == platform::Background::Light ? "-light.png"_L1 : "-dark.png"_L1);
            if (!fixture.window().grabWindow().save(folder.filePath(name))) {
                QTextStream(stderr) << "cannot write " << name << '\n';
                return 1;
            }
        }
    }
    return 0;
}
