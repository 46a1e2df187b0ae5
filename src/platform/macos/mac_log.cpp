#include "platform/macos/mac_log.h"

#include "platform/macos/native_log.h"

#include <QString>
#include <QtGlobal>

namespace brimwatch::platform {
namespace {

NativeLogLevel levelOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return NativeLogLevel::Debug;
    case QtInfoMsg:
        return NativeLogLevel::Info;
    case QtWarningMsg:
    case QtCriticalMsg:
        return NativeLogLevel::Error;
    case QtFatalMsg:
        break;
    }
    return NativeLogLevel::Fault;
}

void write(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    writeSystemLog(levelOf(type), context.category != nullptr ? context.category : "default",
        message.toStdString());
}

} // namespace

void logToTheSystem()
{
    qInstallMessageHandler(write);
}

} // namespace brimwatch::platform
