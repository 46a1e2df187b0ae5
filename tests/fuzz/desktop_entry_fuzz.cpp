// A command survives its Exec key, a value its entry, and the rest of an entry stays byte for byte.
#include "fuzz.h"
#include "platform/linux/desktop/desktop_entry.h"

using namespace brimwatch;
using namespace brimwatch::platform;
using namespace Qt::Literals::StringLiterals;

namespace {

void commandSurvives(fuzz::Input &input)
{
    QStringList command{u'/' + input.text()};
    while (!input.isEmpty())
        command.append(input.text());
    fuzz::require(
        commandOfExec(execOfCommand(command)) == command, "a command is what its Exec key starts");
    auto entry = DesktopEntryText::parse("[Desktop Entry]\n");
    entry->set("Exec"_L1, execOfCommand(command));
    const auto read = DesktopEntryText::parse(entry->toBytes());
    fuzz::require(
        read && commandOfExec(read->value("Exec"_L1)) == command, "it is that also in an entry");
}

/// Lines that do not set the key.
QByteArrayList without(const QByteArray &bytes, const QByteArray &key)
{
    QByteArrayList result;
    const auto lines = bytes.split('\n');
    for (const auto &line : lines) {
        if (line.left(line.indexOf('=')).trimmed() != key)
            result.append(line);
    }
    while (!result.isEmpty() && result.constLast().isEmpty())
        result.removeLast();
    return result;
}

void entrySurvives(fuzz::Input &input)
{
    const QString value = input.text();
    QStringList list;
    for (int i = input.below(4); i > 0; --i)
        list.append(input.text());
    const QByteArray bytes = input.rest();
    const auto entry = DesktopEntryText::parse(bytes);
    if (!entry)
        return;
    fuzz::require(entry->toBytes() == bytes, "an entry that is not changed stays byte for byte");
    commandOfExec(entry->value("Exec"_L1));
    entry->startableCommand();
    entry->list("OnlyShowIn"_L1);
    entry->boolean("Hidden"_L1);

    auto changed = *entry;
    changed.set("Name"_L1, value);
    fuzz::require(changed.value("Name"_L1) == value, "a value that is set is read");
    const auto again = DesktopEntryText::parse(changed.toBytes());
    fuzz::require(again && again->value("Name"_L1) == value, "it is read from the bytes");
    fuzz::require(without(bytes, "Name") == without(changed.toBytes(), "Name"),
        "the rest stays byte for byte");

    changed.setList("OnlyShowIn"_L1, list);
    fuzz::require(changed.list("OnlyShowIn"_L1) == list, "a list that is set is read");
    changed.remove("OnlyShowIn"_L1);
    fuzz::require(!changed.has("OnlyShowIn"_L1), "a key that is removed is gone");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    if (input.flag())
        commandSurvives(input);
    else
        entrySurvives(input);
    return 0;
}
