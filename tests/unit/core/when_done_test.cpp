#include "core/when_done.h"

#include <QPromise>
#include <QTest>

#include <memory>
#include <optional>

namespace brimwatch {

class WhenDoneTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aResultIsHandedOverOnce();
    void aFutureThatIsDoneAlreadyAnswersFromTheEventLoop();
    void nothingIsCalledAfterTheContextIsGone();
    void aCancelledFutureIsNotReported();
    void theWatcherGoesAwayWithTheAnswer();
};

void WhenDoneTest::aResultIsHandedOverOnce()
{
    QObject context;
    QPromise<int> promise;
    promise.start();
    QList<int> results;
    whenDone(promise.future(), &context, [&results](int result) { results.append(result); });
    promise.addResult(7);
    QVERIFY(results.isEmpty());
    promise.finish();
    QTRY_COMPARE(results, QList<int>{7});
    QTRY_VERIFY(context.children().isEmpty());
    QCOMPARE(results, QList<int>{7});
}

void WhenDoneTest::aFutureThatIsDoneAlreadyAnswersFromTheEventLoop()
{
    QPromise<int> promise;
    promise.start();
    promise.addResult(7);
    promise.finish();
    QObject context;
    std::optional<int> answer;
    whenDone(promise.future(), &context, [&answer](int result) { answer = result; });
    QVERIFY(!answer);
    QTRY_VERIFY(answer);
    QCOMPARE(*answer, 7);
}

void WhenDoneTest::nothingIsCalledAfterTheContextIsGone()
{
    QPromise<int> promise;
    promise.start();
    bool called = false;
    auto context = std::make_unique<QObject>();
    whenDone(promise.future(), context.get(), [&called](int) { called = true; });
    context.reset();
    // Another context hears of the same future: when it has, the first one would have.
    QObject other;
    bool otherCalled = false;
    whenDone(promise.future(), &other, [&otherCalled](int) { otherCalled = true; });
    promise.addResult(7);
    promise.finish();
    QTRY_VERIFY(otherCalled);
    QVERIFY(!called);
}

void WhenDoneTest::aCancelledFutureIsNotReported()
{
    QObject context;
    bool called = false;
    {
        QPromise<int> promise;
        promise.start();
        whenDone(promise.future(), &context, [&called](int) { called = true; });
        // Ends without a result.
    }
    QTRY_VERIFY(context.children().isEmpty());
    QVERIFY(!called);
}

void WhenDoneTest::theWatcherGoesAwayWithTheAnswer()
{
    QObject context;
    QPromise<int> promise;
    promise.start();
    whenDone(promise.future(), &context, [](int) { });
    QCOMPARE(context.children().size(), 1);
    promise.addResult(7);
    promise.finish();
    QTRY_VERIFY(context.children().isEmpty());
}

} // namespace brimwatch

QTEST_GUILESS_MAIN(brimwatch::WhenDoneTest)
#include "when_done_test.moc"
