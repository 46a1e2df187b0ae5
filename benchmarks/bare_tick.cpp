// A Qt program that does nothing but look at the clock each second: what of an idle program's time
// is its toolkit's.
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
