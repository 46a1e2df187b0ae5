#pragma once

#include <QGuiApplication>

#include <memory>

namespace brimwatch::platform {

struct SessionEnvironment;

/// Whether there is a display to show anything on. Says on standard error what is missing when
/// there is none.
bool isDisplayThere(const SessionEnvironment &environment);

/// The application object, on the platform plugin that suits the session, without the theme plugin
/// that Qt would load and we do not use. `argc` and `argv` outlive it.
std::unique_ptr<QGuiApplication> makeApplication(
    const SessionEnvironment &environment, int &argc, char **argv);

} // namespace brimwatch::platform
