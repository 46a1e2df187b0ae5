#include "months/measures.h"

#include "platform/linux/x11/x_connection.h"
#include "support/fake_watcher.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDir>
#include <QFile>

#include <xcb/res.h>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray procFile(qint64 pid, const QString &name)
{
    QFile file(u"/proc/%1/%2"_s.arg(pid).arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

qint64 children(qint64 pid)
{
    qint64 count = 0;
    const auto threads
        = QDir(u"/proc/%1/task"_s.arg(pid)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &thread : threads) {
        const QByteArray list = procFile(pid, u"task/%1/children"_s.arg(thread)).simplified();
        count += list.isEmpty() ? 0 : list.split(' ').size();
    }
    return count;
}

/// Adds what the X server keeps for the process, by the name of its type.
void addResources(qint64 pid, Measures &measures)
{
    platform::XConnection x;
    xcb_connection_t *c = x.connection();
    // The version that knows processes.
    const platform::XcbPointer<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(c, xcb_res_query_version(c, 1, 2), nullptr));
    constexpr xcb_res_client_id_spec_t allProcesses{
        .client = 0, .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const platform::XcbPointer<xcb_res_query_client_ids_reply_t> ids(
        xcb_res_query_client_ids_reply(c, xcb_res_query_client_ids(c, 1, &allProcesses), nullptr));
    if (!version || !ids)
        qFatal("the X server does not say what it keeps for whom");
    for (auto id = xcb_res_query_client_ids_ids_iterator(ids.get()); id.rem > 0;
        xcb_res_client_id_value_next(&id)) {
        if (xcb_res_client_id_value_value_length(id.data) < 1
            || *xcb_res_client_id_value_value(id.data) != static_cast<std::uint32_t>(pid))
            continue;
        const platform::XcbPointer<xcb_res_query_client_resources_reply_t> resources(
            xcb_res_query_client_resources_reply(
                c, xcb_res_query_client_resources(c, id.data->spec.client), nullptr));
        if (!resources)
            continue;
        measures[u"X connections"_s] += 1;
        const auto *types = xcb_res_query_client_resources_types(resources.get());
        for (int i = 0; i < xcb_res_query_client_resources_types_length(resources.get()); ++i) {
            const platform::XcbPointer<xcb_get_atom_name_reply_t> name(
                xcb_get_atom_name_reply(c, xcb_get_atom_name(c, types[i].resource_type), nullptr));
            const QString type = name ? QString::fromLatin1(xcb_get_atom_name_name(name.get()),
                                            xcb_get_atom_name_name_length(name.get()))
                                      : u"unnamed"_s;
            measures["X "_L1 + type] += types[i].count;
        }
    }
}

qint64 matches(const QString &busName, OtherProgram &asking)
{
    const auto answer = asking.call(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
        u"org.freedesktop.DBus.Debug.Stats"_s, u"GetConnectionStats"_s, {busName});
    const auto stats = qdbus_cast<QVariantMap>(answer.arguments().value(0));
    return stats.contains(u"MatchRules"_s) ? stats.value(u"MatchRules"_s).toLongLong() : -1;
}

} // namespace

qint64 privateMemory(qint64 pid)
{
    qint64 kibibytes = -1;
    const auto lines = procFile(pid, u"smaps_rollup"_s).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("Private_Dirty:") || line.startsWith("Swap:"))
            kibibytes = qMax(kibibytes, 0) + line.simplified().split(' ').value(1).toLongLong();
    }
    return kibibytes;
}

Measures measure(qint64 pid, const QString &busName, OtherProgram &asking)
{
    Measures measures;
    measures[u"memory"_s] = privateMemory(pid);
    measures[u"descriptors"_s]
        = QDir(u"/proc/%1/fd"_s.arg(pid))
              .entryList(QDir::System | QDir::AllEntries | QDir::NoDotAndDotDot)
              .size();
    measures[u"threads"_s]
        = QDir(u"/proc/%1/task"_s.arg(pid)).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    measures[u"children"_s] = children(pid);
    measures[u"bus matches"_s] = matches(busName, asking);
    addResources(pid, measures);
    return measures;
}

} // namespace brimwatch::test
