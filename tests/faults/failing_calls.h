#pragma once

namespace brimwatch::test {

/// A call of the system that can be made to fail.
enum class Call : int { Open, Read, Write, Rename, Connect };

/// From now on calls of that kind by this thread are counted, and the one of that number, from 0,
/// fails with the error that users know: too many open files, a read error, a full disk, a folder
/// that may not be written, no network.
void failCall(Call call, long number);

/// Ends that, and returns how many calls there were.
long countedCalls();

} // namespace brimwatch::test
