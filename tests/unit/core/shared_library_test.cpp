#include "core/shared_library.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

class SharedLibraryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFunctionOfTheLibraryIsCalled()
    {
        const auto root = loadFunction<double(double)>("libm.so.6", "cbrt");
        QVERIFY2(root, root ? "" : qPrintable(root.error()));
        QCOMPARE((*root)(27.0), 3.0);
    }

    void theErrorNamesWhatIsMissing()
    {
        const auto library = loadFunction<void()>("libbrimwatch-missing.so", "anything");
        QVERIFY(!library);
        QVERIFY(library.error().contains(u"libbrimwatch-missing.so"_s));
        const auto symbol = loadFunction<void()>("libm.so.6", "brimwatch_missing");
        QVERIFY(!symbol);
        QVERIFY(symbol.error().contains(u"brimwatch_missing"_s));
    }
};

QTEST_GUILESS_MAIN(SharedLibraryTest)
#include "shared_library_test.moc"
