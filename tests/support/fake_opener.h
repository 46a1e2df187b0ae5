#pragma once

#include "platform/opener.h"

#include <QList>
#include <QUrl>

#include <functional>

namespace brimwatch::test {

/// A desktop that opens nothing; the IDE is installed when the test says so.
class FakeOpener final : public platform::Opener {
public:
    bool openAntigravity() override
    {
        started += installed ? 1 : 0;
        return installed;
    }
    void openUrl(const QUrl &url) override
    {
        aboutToOpen();
        opened.append(url);
    }

    bool installed = false;
    int started = 0; ///< How often the IDE was.
    QList<QUrl> opened;
    std::function<void()> aboutToOpen = [] { }; ///< Before a URL is opened.
};

} // namespace brimwatch::test
