#include "core/items/qscisingleobject.h"

#include <QtTest>

namespace {

QSciSingleObject filledRecord()
{
    QSciSingleObject o;
    o.area = 1.0 / 3.0;
    o.areaPBM = 1e-20;
    o.circumferencePM = -123456789.25;
    o.fracDim = -1;
    o.height = 7;
    o.width = 9;
    o.lableSize = 12;
    o.rMaxVector = QPoint(-3, 4);
    o.visible = true;
    o.zMax = 2.5e300;
    o.fillColor = QColor(1, 2, 3, 4);
    o.fillVisible = true;
    o.borderMaximumColor = QColor(250, 0, 9, 255);
    o.mainAxesCalculated = true;
    o.mainSecondAxisP2 = QPoint(100000, -7);
    o.mainAxesElongation = 0.125;
    o.largestExtentP1 = QPoint(1, 1);
    o.largestExtentDistance = 8.06225774829855;
    o.skeletonCalculated = true;
    o.skeletonNumberOfBranches = 3;
    o.boundingBox = QRect(QPoint(2, 3), QPoint(10, 9));
    o.borderZMaxAt = QPoint(5, 6);
    o.borderZRange = 0.5;
    for (int i = 0; i < 50; ++i)
        o.fillPixels.append(QPoint(i % 9 + 2, i / 9 + 3));
    o.borderPixels = { QPoint(2, 3), QPoint(10, 9) };
    o.skeletonPixels = { QPoint(4, 4), QPoint(5, 4) };
    o.skeletonLargestBranch = { QPoint(5, 4) };
    return o;
}

} // namespace

class TestQSciSingleObject : public QObject {
    Q_OBJECT

private slots:
    void roundTripsEveryField()
    {
        const QSciSingleObject written = filledRecord();
        const QString text = written.toString();
        QSciSingleObject read;
        QString message;
        QVERIFY2(read.fromString(text, &message), qPrintable(message));
        // Reals keep 12 significant digits, everything else comes back exactly.
        QCOMPARE(read.area, 0.333333333333);
        QSciSingleObject expected = written;
        expected.area = 0.333333333333;
        expected.largestExtentDistance = 8.06225774830;
        QVERIFY(read == expected);
        QCOMPARE(read.toString(), text);
        QVERIFY(!(read == QSciSingleObject()));
    }

    void writesTheRecordLayout()
    {
        const QString text = filledRecord().toString();
        QVERIFY(text.startsWith(QStringLiteral(
            "<header|<type|QSciSingleObject|type><version|1|version>|header><firstChapter|<area|0.333333333333|area>"
            "<areaPBM|1e-20|areaPBM>")));
        QVERIFY(text.contains(QStringLiteral("<fillColor|1;2;3;4|fillColor><fillVisible|1|fillVisible>")));
        QVERIFY(text.contains(QStringLiteral("<boundingBox|2;3;10;9|boundingBox>")));
        QVERIFY(text.contains(QStringLiteral("<rMaxVector|-3;4|rMaxVector>")));
        QVERIFY(text.contains(QStringLiteral("<borderPixels|<count|2|count><data|2;3;10;9|data>|borderPixels>")));
        QVERIFY(text.endsWith(QStringLiteral(
            "<skeletonLargestBranch|<count|1|count><data|5;4|data>|skeletonLargestBranch>|pixelSection>")));
        int last = -1;
        for (const char* chapter : { "|header>", "|firstChapter>", "|colors>", "|mainAxes>", "|largestExtent>",
                 "|skeleton>", "|other>", "|pixelSection>" }) {
            const int at = text.indexOf(QLatin1String(chapter));
            QVERIFY2(at > last, chapter);
            last = at;
        }
    }

    void onePixelAndNeverComputedSkeleton()
    {
        QSciSingleObject o;
        o.area = 1;
        o.fillPixels = { QPoint(3, 4) };
        o.borderPixels = o.fillPixels;
        const QString text = o.toString();
        QVERIFY(text.contains(QStringLiteral("<fillPixels|<count|1|count><data|3;4|data>|fillPixels>")));
        QVERIFY(text.contains(QStringLiteral("<skeletonCalculated|0|skeletonCalculated>")));
        QVERIFY(text.contains(QStringLiteral("<skeletonPixels|<count|0|count>|skeletonPixels>")));
        QSciSingleObject read = filledRecord();
        QVERIFY(read.fromString(text));
        QVERIFY(read == o);
    }

    void missingFieldsKeepDefaults()
    {
        QSciSingleObject read = filledRecord();
        read.objectNumber = 17;
        read.itemTitle = QStringLiteral("a|b<c>&");
        QVERIFY(
            read.fromString(QStringLiteral("<header|<type|QSciSingleObject|type>|header>"
                                           "<colors|<labelColor|9;9;9;9|labelColor><fillColor|bad|fillColor>|colors>"
                                           "<pixelSection|<fillPixels|<data|1;2|data>|fillPixels>|pixelSection>")));
        QSciSingleObject expected;
        expected.labelColor = QColor(9, 9, 9, 9);
        expected.fillPixels = { QPoint(1, 2) };
        expected.objectNumber = 17;
        expected.itemTitle = QStringLiteral("a|b<c>&");
        QVERIFY(read == expected);
    }

    void malformedRecordsFailAndChangeNothing_data()
    {
        QTest::addColumn<QString>("text");
        const QString head = QStringLiteral("<header|<type|QSciSingleObject|type>|header>");
        QTest::newRow("not tagged") << QStringLiteral("garbage");
        QTest::newRow("empty") << QString();
        QTest::newRow("other type") << QStringLiteral("<header|<type|QSciImage|type>|header>");
        QTest::newRow("no header") << QStringLiteral("<firstChapter|<area|1|area>|firstChapter>");
        QTest::newRow("cut short") << head + QStringLiteral("<firstChapter|<area|1|are");
        QTest::newRow("count without data")
            << head + QStringLiteral("<pixelSection|<fillPixels|<count|2|count>|fillPixels>|pixelSection>");
        QTest::newRow("count disagrees") << head
                + QStringLiteral("<pixelSection|<fillPixels|<count|2|count><data|1;2|data>|fillPixels>|pixelSection>");
        QTest::newRow("odd data") << head
                + QStringLiteral("<pixelSection|<borderPixels|<data|1;2;3|data>|borderPixels>|pixelSection>");
        QTest::newRow("bad number") << head
                + QStringLiteral("<pixelSection|<borderPixels|<data|1;x|data>|borderPixels>|pixelSection>");
        QTest::newRow("empty number") << head
                + QStringLiteral("<pixelSection|<borderPixels|<data|1;;2|data>|borderPixels>|pixelSection>");
        QTest::newRow("overflow") << head
                + QStringLiteral("<pixelSection|<borderPixels|<data|1;2147483648|data>|borderPixels>|pixelSection>");
    }

    void malformedRecordsFailAndChangeNothing()
    {
        QFETCH(QString, text);
        QSciSingleObject read = filledRecord();
        QString message;
        QVERIFY(!read.fromString(text, &message));
        QCOMPARE(message, QStringLiteral("Cannot read load string of QSciSingleObject!"));
        QVERIFY(read == filledRecord());
    }

    void cutOffRecordsAreRefusedAndChangeNothing()
    {
        const QString text = filledRecord().toString();
        QSciSingleObject before;
        before.area = 42;
        before.fillPixels = { QPoint(1, 2), QPoint(3, 4) };
        QVERIFY(before != filledRecord());
        for (int length = 0; length < text.size(); ++length) {
            QSciSingleObject read = before;
            QString message;
            if (read.fromString(text.left(length), &message))
                QFAIL(qPrintable(QStringLiteral("a record cut at %1 of %2 was read").arg(length).arg(text.size())));
            QCOMPARE(message, QStringLiteral("Cannot read load string of QSciSingleObject!"));
            QVERIFY(read == before);
        }
    }

    void largeObjectIsQuick()
    {
        QSciSingleObject o;
        for (int y = 0; y < 400; ++y) {
            for (int x = 0; x < 500; ++x)
                o.fillPixels.append(QPoint(x, y));
        }
        QElapsedTimer timer;
        timer.start();
        const QString text = o.toString();
        QSciSingleObject read;
        QVERIFY(read.fromString(text));
        QVERIFY(read == o);
        // 200,000 points; a quadratic step would take minutes here.
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(TestQSciSingleObject)
#include "tst_qscisingleobject.moc"
