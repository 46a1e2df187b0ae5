#pragma once

class QUrl;

namespace brimwatch::platform {

/// Opens things in other programs. All of it may fail, and fails silently: the user sees that
/// nothing opens.
class Opener {
public:
    Opener() = default;
    virtual ~Opener() = default;
    Opener(const Opener &) = delete;
    Opener &operator=(const Opener &) = delete;
    Opener(Opener &&) = delete;
    Opener &operator=(Opener &&) = delete;

    /// Starts the installed IDE. False when none is installed.
    virtual bool openAntigravity() = 0;
    /// A web page in the browser, a folder in the file browser, a mail in the mail program.
    virtual void openUrl(const QUrl &url) = 0;
};

} // namespace brimwatch::platform
