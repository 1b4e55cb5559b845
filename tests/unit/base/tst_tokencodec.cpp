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

    void lengthsCountUtf16CodeUnits_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("encoded");
        QTest::newRow("Latin-1 letters") << QStringLiteral("\u00c5 \u00b5m") << QStringLiteral("4|\u00c5 \u00b5m");
        QTest::newRow("Greek and CJK") << QStringLiteral("\u03bcm \u9ad8\u3055")
                                       << QStringLiteral("5|\u03bcm \u9ad8\u3055");
        // Outside the Basic Multilingual Plane one character is two UTF-16 code units (four UTF-8 bytes).
        QTest::newRow("beyond the BMP") << QStringLiteral("a\U0001F600b") << QStringLiteral("4|a\U0001F600b");
    }

    void lengthsCountUtf16CodeUnits()
    {
        QFETCH(QString, text);
        QFETCH(QString, encoded);
        QCOMPARE(TokenCodec::encode(text), encoded);
        // The token after it must start exactly where this one ends.
        const QString pairs
            = TokenCodec::encodePairs({ { text, QStringLiteral("next") }, { QStringLiteral("k"), text } });
        const QHash<QString, QString> map = TokenCodec::decodeMap(pairs);
        QCOMPARE(map.value(text), QStringLiteral("next"));
        QCOMPARE(map.value(QStringLiteral("k")), text);
        QCOMPARE(map.size(), 2);
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
