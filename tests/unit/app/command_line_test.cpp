#include <QProcess>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

/// The program itself, from outside.
class CommandLineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void versionAndHelpAnswerAndEnd()
    {
        QCOMPARE(run({u"--version"_s}), 0);
        QCOMPARE(m_output, "brimwatch " BRIMWATCH_VERSION "\n");
        QCOMPARE(run({u"--help"_s}), 0);
        QVERIFY(m_output.startsWith("Usage: brimwatch"));
        QVERIFY(m_errors.isEmpty());
    }

    void anythingElseIsAUsageError_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("option") << QStringList{u"--configure"_s};
        QTest::newRow("option of Qt") << QStringList{u"-platform"_s, u"offscreen"_s};
        QTest::newRow("word") << QStringList{u"help"_s};
        QTest::newRow("too many") << QStringList{u"--version"_s, u"--help"_s};
        QTest::newRow("empty") << QStringList{QString()};
    }
    void anythingElseIsAUsageError()
    {
        QFETCH(QStringList, arguments);
        QCOMPARE(run(arguments), 2);
        QVERIFY(m_output.isEmpty());
        QVERIFY(m_errors.startsWith("brimwatch: unknown argument"));
    }

    void withoutADisplayItSaysSoAndEnds()
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        for (const auto &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
            environment.remove(name);
        QCOMPARE(run({}, environment), 1);
        QVERIFY(m_errors.contains("no display"));
        environment.insert(u"DISPLAY"_s, u":65000"_s);
        QCOMPARE(run({}, environment), 1);
        QVERIFY(m_errors.contains("no X server answers"));
    }

private:
    int run(const QStringList &arguments,
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(BRIMWATCH_PROGRAM), arguments);
        if (!process.waitForFinished())
            qFatal("the program does not end");
        m_output = process.readAllStandardOutput();
        m_errors = process.readAllStandardError();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    QByteArray m_output;
    QByteArray m_errors;
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "command_line_test.moc"
