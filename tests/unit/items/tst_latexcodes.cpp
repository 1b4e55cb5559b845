#include "core/items/latexcodes.h"
#include "core/items/qsciimage.h"

#include <QtTest>

class TestLatexCodes : public QObject {
    Q_OBJECT

private slots:
    void formulasStayMathAndTextIsEscaped()
    {
        QSciImage item(2, 2, Qt::white);
        item.setName(QStringLiteral("Au(111) 50%"));
        item.setTextLines({ QStringLiteral("$\\frac{a}{b}$"), QStringLiteral("T = 5 K & 100% _x_ {#1} ~^\\"),
            QStringLiteral("  $E = mc^2$  "), QStringLiteral("$") });
        const QStringList lines = LatexCodes::document(item).split(QLatin1Char('\n'));
        // The name goes into a comment, where a per cent sign would end nothing.
        QCOMPARE(lines.at(0), QStringLiteral("% Au(111) 50%"));
        QCOMPARE(lines.at(1), QStringLiteral("\\[ \\frac{a}{b} \\]"));
        QCOMPARE(lines.at(2),
            QStringLiteral(
                "T = 5 K \\& 100\\% \\_x\\_ \\{\\#1\\} \\textasciitilde{}\\textasciicircum{}\\textbackslash{}"));
        QCOMPARE(lines.at(4), QStringLiteral("\\[ E = mc^2 \\]"));
        // A lone dollar is text, not an empty formula.
        QCOMPARE(lines.at(5), QStringLiteral("\\$"));
    }
};

QTEST_GUILESS_MAIN(TestLatexCodes)
#include "tst_latexcodes.moc"
