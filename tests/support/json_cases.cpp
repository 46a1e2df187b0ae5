#include "support/json_cases.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

QList<QJsonObject> referenceCases(const QString &fileName)
{
    const QString folder
        = qEnvironmentVariable("BRIMWATCH_REFERENCE_DATA", QStringLiteral(BRIMWATCH_TEST_DATA));
    QFile file(folder + u'/' + fileName);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s: %s", qUtf8Printable(file.fileName()), qUtf8Printable(file.errorString()));
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isArray() || document.array().isEmpty())
        qFatal("%s: no cases (%s)", qUtf8Printable(file.fileName()),
            qUtf8Printable(error.errorString()));
    QList<QJsonObject> cases;
    for (const auto &value : document.array())
        cases.append(value.toObject());
    return cases;
}

bool isRequired(const QJsonObject &referenceCase)
{
    return referenceCase["required"_L1].toBool(true);
}

} // namespace brimwatch::test
