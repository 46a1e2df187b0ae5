#pragma once

namespace brimwatch::platform {

/// What a process does before anything else.
///
/// - Standard input, output and error that are closed are opened, on nothing that can be read or
///   written. Otherwise the next file would get their numbers: the first line of a log went to the
///   session bus, which then ended the connection.
/// - A HOME that is unset, empty or relative becomes the folder of the password database. XDG_*
///   folders that are relative are unset (XDG Base Directory Specification 0.8: "ignore it").
///
/// Needs that there is one thread only.
void beginProcess();

} // namespace brimwatch::platform
