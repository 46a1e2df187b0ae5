#pragma once

#include <QGuiApplication>

#include <memory>

namespace brimwatch::app {

/// Whether there is a display to show anything on; says on standard error what is missing when
/// there is none.
bool displayIsThere();

/// The application object, on the platform that the popover wants, with what the toolkit would load
/// of its own accord and we do not use left out. `argc` and `argv` must live as long as it.
std::unique_ptr<QGuiApplication> makeApplication(int &argc, char **argv);

} // namespace brimwatch::app
