// A Qt program that only reads the clock each second: the part of an idle program's time that Qt
// itself takes.
#include <QDateTime>
#include <QGuiApplication>
#include <QTimer>

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    QDateTime time;
    QTimer timer;
    QObject::connect(
        &timer, &QTimer::timeout, &timer, [&] { time = QDateTime::currentDateTime(); });
    timer.start(1000);
    return QGuiApplication::exec();
}
