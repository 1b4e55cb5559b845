#include "core/base/tokencodec.h"

#include <QtTest>

class TestTokenCodec : public QObject {
    Q_OBJECT

private slots:
    void roundTripsTextWithBars()
    {
        QString s;
        TokenCodec::append(s, QStringLiteral("sciValues.xUnit"));
        TokenCodec::append(s, QStringLiteral("a|b|"));
        TokenCodec::append(s, QString());
        QCOMPARE(s, QStringLiteral("15|sciValues.xUnit4|a|b|0|"));
        TokenReader reader(s);
        QCOMPARE(reader.next(), QStringLiteral("sciValues.xUnit"));
        QCOMPARE(reader.next(), QStringLiteral("a|b|"));
        QCOMPARE(reader.next(), QString());
        QVERIFY(reader.atEnd());
    }

    void malformedPrefixConsumesTwoCharacters_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QStringList>("tokens");
        QTest::newRow("zero length") << QStringLiteral("0|3|abc") << QStringList { QString(), QStringLiteral("abc") };
        QTest::newRow("letters") << QStringLiteral("x|3|abc") << QStringList { QString(), QStringLiteral("abc") };
        // "12x|" is not a number: only "12" goes, the rest is read again as a token.
        QTest::newRow("long bad prefix") << QStringLiteral("12x|2|ab")
                                         << QStringList { QString(), QString(), QStringLiteral("ab") };
        QTest::newRow("too long") << QStringLiteral("9|abc") << QStringList { QStringLiteral("abc") };
    }

    void malformedPrefixConsumesTwoCharacters()
    {
        QFETCH(QString, input);
        QFETCH(QStringList, tokens);
        TokenReader reader(input);
        QStringList read;
        while (!reader.atEnd())
            read.append(reader.next());
        QCOMPARE(read, tokens);
    }

    void mapDropsTrailingKeyAndKeepsLastRepeat()
    {
        const QHash<QString, QString> map = TokenCodec::decodeMap(QStringLiteral("1|a1|11|a1|21|b"));
        QCOMPARE(map.size(), 1);
        QCOMPARE(map.value(QStringLiteral("a")), QStringLiteral("2"));
    }
};

QTEST_GUILESS_MAIN(TestTokenCodec)
#include "tst_tokencodec.moc"
