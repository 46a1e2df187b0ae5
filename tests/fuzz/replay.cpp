#include "fuzz.h"

#include <QByteArray>
#include <QDirIterator>
#include <QFile>
#include <QString>

#include <cstdio>

// A fuzzer without libFuzzer: it runs once with each file of the folder that it is given, which is
// what other fuzzers have found worth keeping. A broken rule, like a finding of the sanitizers,
// ends it.
int main(int count, char **arguments)
{
    int ran = 0;
    for (int i = 1; i < count; ++i) {
        QDirIterator files(QString::fromLocal8Bit(arguments[i]), QDir::Files);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "%s cannot be read\n", qPrintable(file.fileName()));
                return 1;
            }
            const QByteArray bytes = file.readAll();
            // So that the log's last line names the input that ended it.
            std::printf("%s\n", qPrintable(files.fileName()));
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.constData()),
                static_cast<std::size_t>(bytes.size()));
            ++ran;
        }
    }
    std::printf("%d inputs\n", ran);
    return ran > 0 ? 0 : 1;
}
