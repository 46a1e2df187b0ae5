#pragma once

#include <functional>
#include <memory>
#include <string>

namespace brimwatch::platform {

/// The system's notifications. Texts are UTF-8. In a program without a bundle, which the system
/// lets post nothing, all of it does nothing. Main thread only.
class NativeNotifier {
public:
    /// `activated` is called on the main thread with the identifier of a notification that the user
    /// has chosen.
    explicit NativeNotifier(std::function<void(const std::string &)> activated);
    ~NativeNotifier();
    NativeNotifier(const NativeNotifier &) = delete;
    NativeNotifier &operator=(const NativeNotifier &) = delete;
    NativeNotifier(NativeNotifier &&) = delete;
    NativeNotifier &operator=(NativeNotifier &&) = delete;

    /// Has the system ask the user for alerts and sound. The answer is reported to nobody.
    void requestAuthorization();
    /// Delivers at once, with the default sound. What was posted under that identifier before is
    /// replaced.
    void post(const std::string &identifier, const std::string &title, const std::string &body);

private:
    struct Objects;
    std::unique_ptr<Objects> m_objects;
};

} // namespace brimwatch::platform
