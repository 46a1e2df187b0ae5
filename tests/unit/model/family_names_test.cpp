#include "model/family_names.h"

#include <QLocale>
#include <QTest>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

class FamilyNamesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void caseDoesNotCount();
    void accentsCountHoweverTheyAreWritten();
    void widthAndInvisibleCharactersCount();
    void aLaterWholeWordCountsAfterABrokenOne();
    void aNameOfManyBrokenWordsIsReadOnce();
    void loweringThatChangesTheLengthDiffers();
    void theUsersLocaleDoesNotCount();
};

void FamilyNamesTest::caseDoesNotCount()
{
    QVERIFY(containsIgnoringCase(u"GEMINI models"_s, u"Gemini"_s));
    QVERIFY(containsIgnoringCase(u"the gemini"_s, u"Gemini"_s));
    QVERIFY(lowerCasedContains(u"The GeMiNi"_s, u"gemini"_s));
    QVERIFY(!containsIgnoringCase(u"Gem"_s, u"Gemini"_s));
    QVERIFY(!containsIgnoringCase(QString(), u"Gemini"_s));
    QVERIFY(!lowerCasedContains(QString(), u"gemini"_s));
}

void FamilyNamesTest::accentsCountHoweverTheyAreWritten()
{
    for (const auto &name : {u"Gémini"_s, u"Ge\u0301mini"_s, u"Geminí"_s, u"Gemini\u0301"_s}) {
        QVERIFY2(!containsIgnoringCase(name, u"Gemini"_s), qUtf8Printable(name));
        QVERIFY2(!lowerCasedContains(name, u"gemini"_s), qUtf8Printable(name));
    }
}

void FamilyNamesTest::widthAndInvisibleCharactersCount()
{
    QVERIFY(!containsIgnoringCase(u"Ｇｅｍｉｎｉ"_s, u"Gemini"_s));
    QVERIFY(!containsIgnoringCase(u"Gemi\u00adni"_s, u"Gemini"_s));
    QVERIFY(!containsIgnoringCase(u"G\u200bemini"_s, u"Gemini"_s));
}

void FamilyNamesTest::aLaterWholeWordCountsAfterABrokenOne()
{
    QVERIFY(containsIgnoringCase(u"Gemini\u0301 Gemini"_s, u"Gemini"_s));
}

void FamilyNamesTest::aNameOfManyBrokenWordsIsReadOnce()
{
    // Read anew for each word, it takes longer than Qt Test waits for a function.
    const QString broken = u"gemini\u0301"_s.repeated(200'000);
    QVERIFY(!containsIgnoringCase(broken, u"Gemini"_s));
    QVERIFY(!lowerCasedContains(broken, u"gemini"_s));
    QVERIFY(containsIgnoringCase(broken + u"gemini"_s, u"Gemini"_s));
    QVERIFY(lowerCasedContains(broken + u"gemini"_s, u"gemini"_s));
}

void FamilyNamesTest::loweringThatChangesTheLengthDiffers()
{
    // "İ" becomes an "i" with a combining dot, which is another character than "i".
    QVERIFY(!lowerCasedContains(u"GEMİNİ"_s, u"gemini"_s));
    QVERIFY(lowerCasedContains(u"İ GEMINI"_s, u"gemini"_s));
}

void FamilyNamesTest::theUsersLocaleDoesNotCount()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Turkish));
    const bool ignoringCase = containsIgnoringCase(u"GEMINI"_s, u"Gemini"_s);
    const bool lowerCased = lowerCasedContains(u"GEMINI"_s, u"gemini"_s);
    QLocale::setDefault(before);
    QVERIFY(ignoringCase);
    QVERIFY(lowerCased);
}

} // namespace brimwatch::model

QTEST_GUILESS_MAIN(brimwatch::model::FamilyNamesTest)
#include "family_names_test.moc"
