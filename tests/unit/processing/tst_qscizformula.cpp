#include "core/processing/qscizformula.h"

#include <QtTest>

namespace {

/** A 3 x 2 matrix shown as "1 2 3 / 4 5 6": rows from the bottom in memory, so (x, 1) is the top row. */
QVector<double> shown()
{
    return { 4, 1, 5, 2, 6, 3 };
}

QVector<double> applied(const QSciZFormula::Options& o, const QVector<uchar>& mask = {})
{
    const QVector<double> z = shown();
    QVector<double> out = z;
    const EffectInput input { z.constData(), mask.isEmpty() ? nullptr : mask.constData(), 3, 2 };
    if (!QSciZFormula(o).run(input, out.data(), nullptr))
        qFatal("formula stopped without a sink");
    return out;
}

QSciZFormula::Options formula(const QString& text)
{
    QSciZFormula::Options o;
    o.formula = text;
    return o;
}

} // namespace

class TestQSciZFormula : public QObject {
    Q_OBJECT

private slots:
    void variablesCountRowsFromTheTop()
    {
        // Shown as 1 2 3 / 4 5 6: $x counts columns, $y rows from the top.
        QCOMPARE(applied(formula(QStringLiteral("$z * 2 + $x + 10 * $y"))), (QVector<double> { 18, 2, 21, 5, 24, 8 }));
        // The right neighbour as shown; the last column has none and keeps its values.
        QCOMPARE(applied(formula(QStringLiteral("z($x+1, $y)"))), (QVector<double> { 5, 2, 6, 3, 6, 3 }));
        QCOMPARE(applied(formula(QStringLiteral("sqrt($z - 2)"))),
            (QVector<double> { std::sqrt(2.0), 1, std::sqrt(3.0), 0, 2, 1 }));
    }

    void clipInvertAndSelection()
    {
        QSciZFormula::Options o;
        o.clip = true;
        o.clipLow = 2;
        o.clipHigh = 5;
        o.invert = true;
        // Clipped to 2 2 3 / 4 5 5, then turned over between 2 and 5.
        QCOMPARE(applied(o), (QVector<double> { 3, 5, 2, 5, 2, 4 }));

        QSciZFormula::Options only = formula(QStringLiteral("0"));
        only.selectionOnly = true;
        QCOMPARE(applied(only, { 0, 1, 0, 0, 0, 1 }), (QVector<double> { 4, 0, 5, 2, 6, 0 }));
    }

    void wrongFormulasAreRefused_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("power with ^") << QStringLiteral("$z^2");
        QTest::newRow("unknown function") << QStringLiteral("foo($z)");
        QTest::newRow("unbalanced") << QStringLiteral("($z + 1");
    }

    void wrongFormulasAreRefused()
    {
        QFETCH(QString, text);
        QString message;
        QVERIFY(!QSciZFormula(formula(text)).check(3, 2, false, &message));
        QVERIFY(message.startsWith(QStringLiteral("The formula gives no number: ") + text));
        QVERIFY(QSciZFormula(formula(QStringLiteral("power($z, 2)"))).check(3, 2, false, &message));
    }
};

QTEST_GUILESS_MAIN(TestQSciZFormula)
#include "tst_qscizformula.moc"
