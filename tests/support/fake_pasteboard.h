#pragma once

#include "platform/pasteboard.h"

#include <QStringList>

namespace brimwatch::test {

class FakePasteboard final : public platform::Pasteboard {
public:
    void setText(const QString &text) override { texts.append(text); }

    QStringList texts;
};

} // namespace brimwatch::test
