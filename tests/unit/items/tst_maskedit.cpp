#include "core/items/maskedit.h"
#include "core/items/qsciimage.h"

#include <QtTest>
#include <cmath>
#include <limits>

namespace {

/** The mask as shown, top row first: '#' selected, '.' not. */
QString shown(const QSciImage& item)
{
    QString text;
    for (int row = 0; row < item.height(); ++row) {
        if (row)
            text += QLatin1Char('/');
        for (int x = 0; x < item.width(); ++x)
            text += item.isPixelSelected(x, item.height() - 1 - row) ? QLatin1Char('#') : QLatin1Char('.');
    }
    return text;
}

/** Sets the mask from the same text form. */
void setShown(QSciImage& item, const QString& text)
{
    const QStringList rows = text.split(QLatin1Char('/'));
    for (int row = 0; row < rows.size(); ++row)
        for (int x = 0; x < rows[row].size(); ++x)
            item.setPixelSelected(x, item.height() - 1 - row, rows[row][x] == QLatin1Char('#'));
}

/** An item whose z, as shown top row first, is @p rows. */
QSciImage* zItem(const QList<QList<double>>& rows)
{
    const int h = rows.size(), w = rows.first().size();
    auto* item = new QSciImage(w, h, Qt::white);
    for (int row = 0; row < h; ++row)
        for (int x = 0; x < w; ++x)
            item->setZ(x, h - 1 - row, rows[row][x]);
    return item;
}

} // namespace

class TestMaskEdit : public QObject {
    Q_OBJECT

private slots:
    void rectangleCountsRowsFromTheTop_data()
    {
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("expected");
        const QString before = QStringLiteral("##..../....../......");
        QTest::newRow("new") << QRect(1, 1, 3, 2) << int(MaskEdit::Mode::New) << QStringLiteral("....../.###../.###..");
        QTest::newRow("add") << QRect(1, 1, 3, 2) << int(MaskEdit::Mode::Add) << QStringLiteral("##..../.###../.###..");
        QTest::newRow("subtract") << QRect(1, 0, 3, 1) << int(MaskEdit::Mode::Subtract)
                                  << QStringLiteral("#...../....../......");
        QTest::newRow("clipped") << QRect(4, -3, 9, 5) << int(MaskEdit::Mode::New)
                                 << QStringLiteral("....##/....##/......");
        QTest::newRow("outside") << QRect(10, 10, 2, 2) << int(MaskEdit::Mode::Add) << before;
    }

    void rectangleCountsRowsFromTheTop()
    {
        QFETCH(QRect, rect);
        QFETCH(int, mode);
        QFETCH(QString, expected);
        QSciImage item(6, 3, Qt::white);
        setShown(item, QStringLiteral("##..../....../......"));
        MaskEdit::applyRect(item, rect, MaskEdit::Mode(mode));
        QCOMPARE(shown(item), expected);
    }

    void magicWand_data()
    {
        QTest::addColumn<QPoint>("seed");
        QTest::addColumn<double>("tolerance");
        QTest::addColumn<bool>("contiguous");
        QTest::addColumn<QString>("expected");
        QTest::newRow("contiguous corner")
            << QPoint(0, 0) << 0.5 << true << QStringLiteral("##..../##..../....../......");
        QTest::newRow("global") << QPoint(0, 0) << 0.5 << false << QStringLiteral("##.###/##.#../...#../##.###");
        QTest::newRow("connected through a column")
            << QPoint(3, 3) << 0.5 << true << QStringLiteral("...###/...#../...#../...###");
        QTest::newRow("tolerance reaches the ridge")
            << QPoint(0, 0) << 4.0 << true << QStringLiteral("######/####../####../######");
        QTest::newRow("no value at the seed")
            << QPoint(5, 2) << 100.0 << false << QStringLiteral("....../....../....../......");
        QTest::newRow("seed outside") << QPoint(6, 0) << 100.0 << false
                                      << QStringLiteral("....../....../....../......");
    }

    void magicWand()
    {
        QFETCH(QPoint, seed);
        QFETCH(double, tolerance);
        QFETCH(bool, contiguous);
        QFETCH(QString, expected);
        const double nan = std::numeric_limits<double>::quiet_NaN();
        std::unique_ptr<QSciImage> item(zItem({
            { 1, 1, 5, 1, 1, 1 },
            { 1, 1, 5, 1, 9, 9 },
            { 5, 5, 5, 1, 9, nan },
            { 1, 1, 5, 1, 1, 1 },
        }));
        MaskEdit::applyMagicWand(*item, seed, tolerance, contiguous, MaskEdit::Mode::New);
        QCOMPARE(shown(*item), expected);
    }

    void magicWandCombinesByMode()
    {
        std::unique_ptr<QSciImage> item(zItem({ { 0, 0, 7 }, { 7, 7, 7 } }));
        setShown(*item, QStringLiteral(".##/..."));
        MaskEdit::applyMagicWand(*item, QPoint(0, 0), 0, true, MaskEdit::Mode::Add);
        QCOMPARE(shown(*item), QStringLiteral("###/..."));
        MaskEdit::applyMagicWand(*item, QPoint(2, 1), 0, true, MaskEdit::Mode::Subtract);
        QCOMPARE(shown(*item), QStringLiteral("##./..."));
    }

    void shift_data()
    {
        QTest::addColumn<QPoint>("offset");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("expected");
        QTest::newRow("down right") << QPoint(1, 1) << int(MaskEdit::Mode::New) << QStringLiteral("..../..../..##");
        QTest::newRow("up, off the top") << QPoint(0, -1) << int(MaskEdit::Mode::New)
                                         << QStringLiteral(".##./.#../....");
        QTest::newRow("left, off the side")
            << QPoint(-2, 0) << int(MaskEdit::Mode::New) << QStringLiteral("..../#.../....");
        QTest::newRow("add") << QPoint(1, 0) << int(MaskEdit::Mode::Add) << QStringLiteral("..../.###/.##.");
        QTest::newRow("subtract") << QPoint(1, 0) << int(MaskEdit::Mode::Subtract) << QStringLiteral("..../.#../.#..");
        QTest::newRow("far away") << QPoint(9, 0) << int(MaskEdit::Mode::New) << QStringLiteral("..../..../....");
    }

    void shift()
    {
        QFETCH(QPoint, offset);
        QFETCH(int, mode);
        QFETCH(QString, expected);
        QSciImage item(4, 3, Qt::white);
        setShown(item, QStringLiteral("..../.##./.#.."));
        MaskEdit::applyShift(item, offset, MaskEdit::Mode(mode));
        QCOMPARE(shown(item), expected);
    }
};

QTEST_GUILESS_MAIN(TestMaskEdit)
#include "tst_maskedit.moc"
