#pragma once

#include <QtGlobal>

class QUrl;

namespace brimwatch::platform {

/// Opens things in other programs. All of it may fail, and fails silently: the user sees that
/// nothing opens.
class Opener {
public:
    Opener() = default;
    virtual ~Opener() = default;
    Q_DISABLE_COPY_MOVE(Opener)

    /// Starts the installed IDE. False when none is installed.
    virtual bool openAntigravity() = 0;
    /// A web page in the browser, a folder in the file browser, a mail in the mail program.
    virtual void openUrl(const QUrl &url) = 0;
};

} // namespace brimwatch::platform
