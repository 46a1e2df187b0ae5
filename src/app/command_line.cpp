#include "app/command_line.h"

#include <cstdio>
#include <string_view>

namespace brimwatch::app {
namespace {

constexpr auto usage = "Usage: brimwatch [--version | --help]\n"
                       "\n"
                       "Shows in the panel how much Antigravity model quota is left.\n"
                       "\n"
                       "  --version  print the version and end\n"
                       "  --help     print this help and end\n"
                       "\n"
                       "There are no other options: all settings are in the popover.\n";

/// Success when all is on standard output; the reason is said on standard error otherwise.
ExitStatus statusAfterWriting()
{
    if (std::fflush(stdout) == 0)
        return ExitStatus::Success;
    std::perror("brimwatch: cannot write to standard output");
    return ExitStatus::Failure;
}

} // namespace

std::optional<ExitStatus> answerCommandLine(int argc, const char *const *argv)
{
    if (argc < 2)
        return {};
    const std::string_view argument = argv[1];
    if (argc == 2 && argument == "--version") {
        std::puts("brimwatch " BRIMWATCH_VERSION);
        return statusAfterWriting();
    }
    if (argc == 2 && argument == "--help") {
        std::fputs(usage, stdout);
        return statusAfterWriting();
    }
    const char *unknown = argument == "--version" || argument == "--help" ? argv[2] : argv[1];
    std::fprintf(stderr, "brimwatch: unknown argument '%s'\n%s", unknown, usage);
    return ExitStatus::UsageError;
}

} // namespace brimwatch::app
