#pragma once

#include <QByteArray>
#include <QProcess>

#include <sys/prctl.h>

#include <chrono>
#include <csignal>

namespace brimwatch::test {

/// An X server of the test's own, without a window manager. DISPLAY names it for this process. Make
/// it before the application object for Qt to use it.
class PrivateDisplay {
public:
    PrivateDisplay()
    {
        using namespace Qt::Literals::StringLiterals;
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // It shares our standard error: a test that crashes must not leave it running, or the
        // reader of ours would wait for it.
        m_server.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
        m_server.start(u"Xvfb"_s,
            {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1280x720x24"_s, u"-nolisten"_s,
                u"tcp"_s, u"-noreset"_s});
        constexpr std::chrono::milliseconds startTimeout = std::chrono::seconds(30);
        QByteArray number;
        while (!number.contains('\n')
            && m_server.waitForReadyRead(static_cast<int>(startTimeout.count())))
            number += m_server.readAllStandardOutput();
        if (!number.contains('\n'))
            qFatal("Xvfb did not start: %s", qPrintable(m_server.errorString()));
        qputenv("DISPLAY", QByteArray(":" + number.trimmed()));
    }
    ~PrivateDisplay() { stop(); }
    Q_DISABLE_COPY_MOVE(PrivateDisplay)

    void stop()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }

private:
    QProcess m_server;
};

} // namespace brimwatch::test
