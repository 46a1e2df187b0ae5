// A daemon's answer on its way to the label, the tooltip and the bus: within the bounds, valid
// texts, and what is written says the same when it is read.
#include "app/item_description.h"
#include "app/state_description.h"
#include "fuzz.h"
#include "model/label_composition.h"
#include "model/quota_json.h"
#include "platform/linux/bus/bus_state.h"
#include "published_bounds.h"
#include "service/quota_service.h"
#include "support/service_fixture.h"

#include <QCoreApplication>
#include <QJsonDocument>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The service of a program, which is given one answer after the other.
class Program {
public:
    void show(const model::QuotaSummary &summary, std::uint8_t settings)
    {
        auto &service = m_fixture.service;
        service.setShowGeminiInToolbar((settings & 1U) != 0);
        service.setShowArgonInToolbar((settings & 2U) != 0);
        service.setShowClaudeInToolbar((settings & 4U) != 0);
        service.setShowFiveHourInMenuBar((settings & 8U) != 0);
        service.setShowWeeklyInMenuBar((settings & 16U) != 0);
        service.setToolbarLabelStyle((settings & 32U) != 0 ? u"icon"_s : u"shortName"_s);
        service.refresh();
        bool isFinished = false;
        const auto connection = QObject::connect(&service, &service::QuotaService::refreshFinished,
            &service, [&isFinished] { isFinished = true; });
        m_fixture.fetching.answer(service::FetchedQuota{
            .summary = summary, .daemon = {.httpPort = 1, .csrfToken = token}});
        while (!isFinished)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QObject::disconnect(connection);
        m_fixture.log.clear();
        m_fixture.fetching.asked.clear();
    }
    service::QuotaService &service() { return m_fixture.service; }
    static inline const QString token = u"very secret"_s;

private:
    test::ServiceFixture m_fixture;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int count = 0;
    static QCoreApplication application(count, nullptr);
    static Program program;

    fuzz::Input input(data, size);
    const auto settings = input.number<std::uint8_t>();
    const auto summary = model::decodeAnswer(input.rest());
    if (!summary)
        return 0;

    const auto again = model::decodeQuotaSummary(
        QJsonDocument(model::encode(*summary)).toJson(QJsonDocument::Compact));
    fuzz::require(
        again && *again == *summary, "a summary that is written says the same when it is read");

    program.show(*summary, settings);
    const auto &service = program.service();
    const auto label = model::composeLabel(
        service.labelInput(), {}, [settings](const QString &) { return (settings & 64U) != 0; });
    fuzz::require(label.badge.numbers.size() <= 2, "a badge has at most two numbers");
    fuzz::require(label.plainTitle().isValidUtf16(), "the label is valid UTF-16");
    for (const auto &number : label.badge.numbers)
        fuzz::require(number.text.size() <= 3, "a badge's number has at most three digits");

    const QString home = u"/home/somebody"_s;
    const auto description = app::describeItem(service, home);
    fuzz::require(description.lines.size() <= platform::ItemDescription::mostLines,
        "a tooltip has at most so many lines");
    fuzz::requireLine(description.title, platform::ItemDescription::longestLine);
    for (const auto &line : description.lines) {
        fuzz::requireLine(line, platform::ItemDescription::longestLine);
        fuzz::require(!line.contains(Program::token) && !line.contains(home),
            "a tooltip has nothing private");
    }

    const auto state = app::describeState(service, home);
    fuzz::requireBounds(state);
    fuzz::require(!state.title.contains(Program::token) && !state.title.contains(home),
        "the bus has nothing private");
    fuzz::require(platform::fromBusProperties(platform::toBusProperties(state)) == state,
        "a state that is written to the bus says the same when it is read");
    return 0;
}
