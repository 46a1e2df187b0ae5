#pragma once

#include "support/fake_watcher.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QList>
#include <QString>
#include <QVariantMap>

#include <cstdint>

namespace brimwatch::test {

/// A desktop's mail portal. Gone from the bus at its end.
class FakeMailPortal final : public QDBusVirtualObject {
public:
    enum class Manners : std::uint8_t {
        Opens,
        IsDeclined, ///< By the user.
        Refuses, ///< The call.
        Fails, ///< After it has taken the call.
        IsSilent,
    };

    explicit FakeMailPortal(Manners manners = Manners::Opens);
    ~FakeMailPortal() override;
    Q_DISABLE_COPY_MOVE(FakeMailPortal)

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

    QList<QVariantMap> drafts; ///< The options of each call, as they came.

private:
    void respond(const QString &request, uint response);

    OtherProgram m_program;
    Manners m_manners;
};

} // namespace brimwatch::test
