#pragma once

namespace brimwatch::views {

/// Has the items of our QML types made accessible without Qt looking for plugins that do so. Qt
/// keeps each class name that it has looked for as long as the program runs, and the classes of QML
/// types get new names with each engine, so that every popover would leave some KiB behind.
void makeItemsAccessible();

} // namespace brimwatch::views
