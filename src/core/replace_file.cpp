#include "core/replace_file.h"

#include <QSaveFile>

namespace brimwatch {

Result<void, QString> replaceFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    // commit() of Qt 6.4 succeeds although the end could not be written: flush() tells.
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush()
        || !file.commit())
        return fail(file.errorString());
    return {};
}

} // namespace brimwatch
