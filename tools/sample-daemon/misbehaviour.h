#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <optional>

class QTcpSocket;

namespace brimwatch::sample {

/// A way in which a daemon can fail its caller. Each has a name on the command line, see
/// misbehaviourNames().
enum class Misbehaviour {
    RefuseToken,
    Status500,
    Status500Hang,
    Status204,
    Redirect,
    Hang,
    Dribble,
    DribbleHeader,
    CloseEarly,
    CloseMidBody,
    Rubbish,
    RubbishBody,
    EmptyBody,
    ConnectErrorBody,
    Huge,
    HugeHeader,
    FloodHeader,
    FloodContinue,
    FloodChunks,
    FloodTinyChunks,
    Gzip,
};

struct MisbehaviourName {
    QString name;
    QString what; ///< One line for the user: what the daemon does.
    Misbehaviour misbehaviour;
};

/// All of them, in the order in which the help lists them.
const QList<MisbehaviourName> &misbehaviourNames();
std::optional<Misbehaviour> misbehaviourNamed(const QString &name);

// Everything below ends with the socket.

/// Sends `atOnce`, then `slowly` and then blanks, one byte per interval, until the other side
/// closes.
void dribble(QTcpSocket *socket, const QByteArray &atOnce, const QByteArray &slowly, char filler,
    std::chrono::milliseconds interval);

/// Sends `head`, then `filling` bytes of `filler` no faster than they are taken, then `tail`.
void stream(QTcpSocket *socket, const QByteArray &head, char filler, qint64 filling,
    const QByteArray &tail);

/// Sends `head`, then `piece` over and over, as fast as it is taken, until the other side closes.
void flood(QTcpSocket *socket, const QByteArray &head, const QByteArray &piece);

/// Sends `bytes`, if any, and closes.
void sendAndClose(QTcpSocket *socket, const QByteArray &bytes);

/// `bytes` as a gzip stream.
QByteArray gzipped(const QByteArray &bytes);

} // namespace brimwatch::sample
