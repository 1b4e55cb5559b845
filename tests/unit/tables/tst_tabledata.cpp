#include "core/tables/columnstatistics.h"
#include "core/tables/qscisimpletablemodel.h"
#include "core/tables/tablefile.h"
#include "core/tables/tablereshape.h"
#include "core/tables/tabletext.h"
#include "core/tables/textdocumentfile.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& data)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(data);
}

const QStringList awkward { QStringLiteral("a|b"), QStringLiteral("<c|x|c>"), QStringLiteral("1 > 0 & 0 < 1"),
    QStringLiteral("&pipe;&amp;"), QStringLiteral("Grüße µm Å ☃"), QStringLiteral("tab\there\nline"),
    QStringLiteral(" padded "), QStringLiteral("1;2;3") };

} // namespace

class TestTableData : public QObject {
    Q_OBJECT

private slots:
    void tableFileRoundTripsAwkwardTexts()
    {
        QSciSimpleTableModel table(4, 5);
        for (int i = 0; i < awkward.size(); ++i)
            table.setCellText(i % 4, (i * 3) % 5, awkward.at(i));
        const QString path = m_dir.filePath(QStringLiteral("t.table.velm"));
        QString message;
        QVERIFY2(TableFile::write(path, table, QStringLiteral("Grains | <run 2>"), &message), qPrintable(message));
        QString title;
        auto back = TableFile::read(path, &title, &message);
        QVERIFY2(back, qPrintable(message));
        QCOMPARE(title, QStringLiteral("Grains | <run 2>"));
        QCOMPARE(back->rows(), 4);
        QCOMPARE(back->columns(), 5);
        QCOMPARE(back->allCells(), table.allCells());

        QSciSimpleTableModel empty(2, 3);
        QVERIFY(TableFile::write(path, empty, QString(), &message));
        back = TableFile::read(path, &title, &message);
        QVERIFY2(back, qPrintable(message));
        QCOMPARE(back->allCells(), QVector<QString>(6));
    }

    void textAndOutputFilesRoundTrip()
    {
        const QString text = awkward.join(QLatin1Char('\n'));
        const QString path = m_dir.filePath(QStringLiteral("n.text.velm"));
        QString message, title, back;
        QVERIFY(TextDocumentFile::write(path, TextDocumentFile::Kind::Text, QStringLiteral("Notes"), text, &message));
        QVERIFY2(
            TextDocumentFile::read(path, TextDocumentFile::Kind::Text, &title, &back, &message), qPrintable(message));
        QCOMPARE(back, text);
        QCOMPARE(title, QStringLiteral("Notes"));
        // A text file is not an output page, nor a table.
        QVERIFY(!TextDocumentFile::read(path, TextDocumentFile::Kind::Output, &title, &back, &message));
        QVERIFY(message.endsWith(path));
        QVERIFY(!TableFile::read(path, &title, &message));
    }

    void brokenFilesAreRefusedWithAMessage()
    {
        QSciSimpleTableModel table(50, 20);
        for (int r = 0; r < 50; ++r)
            for (int c = 0; c < 20; ++c)
                table.setCellText(r, c, QString::number(r * 31 + c * 7));
        const QString path = m_dir.filePath(QStringLiteral("b.table.velm"));
        QString message, title;
        QVERIFY(TableFile::write(path, table, QStringLiteral("x"), &message));
        const QByteArray good = readAll(path);

        auto refused = [&](const QByteArray& bytes, const char* expected) {
            writeAll(path, bytes);
            message.clear();
            const bool loaded = bool(TableFile::read(path, &title, &message));
            return !loaded && message.contains(QLatin1String(expected));
        };
        QVERIFY(refused(good.left(good.size() / 2), "File corrupted."));
        QVERIFY(refused(good.left(3), "File does not contain .velm data."));
        QVERIFY(refused(QByteArray(), "File does not contain .velm data."));
        QVERIFY(refused("\xff\xff\xff\xff" + good.mid(4), "File does not contain .velm data."));
        QVERIFY(refused(qCompress(QByteArray("<other|x|other>")), "File does not contain .velm data."));
        QVERIFY(refused(
            qCompress(QByteArray("<header|<type|table|type>|header><content|<rows|2|rows>")), "File corrupted."));
        const QByteArray outOfRange = "<header|<type|table|type>|header><content|<rows|2|rows><columns|2|columns>"
                                      "<cells|<c|2;0;x|c>|cells>|content>";
        QVERIFY(refused(qCompress(outOfRange), "File corrupted."));
        const QByteArray huge = "<header|<type|table|type>|header><content|<rows|100000000|rows>"
                                "<columns|100000000|columns><cells||cells>|content>";
        QVERIFY(refused(qCompress(huge), "File corrupted."));
        QByteArray flipped = good;
        flipped[flipped.size() / 2] = char(flipped.at(flipped.size() / 2) ^ 0x55);
        QVERIFY(refused(flipped, "File"));
        QVERIFY(!TableFile::read(m_dir.filePath(QStringLiteral("missing.table.velm")), &title, &message));
        QVERIFY(message.startsWith(QLatin1String("File does not exist")));
    }

    void mutatedFilesNeverCrashTheReader()
    {
        QSciSimpleTableModel table(6, 4);
        for (int i = 0; i < 24; ++i)
            table.setCellText(i / 4, i % 4, i % 5 ? awkward.at(i % awkward.size()) : QString());
        const QString path = m_dir.filePath(QStringLiteral("f.table.velm"));
        QString message, title;
        QVERIFY(TableFile::write(path, table, QStringLiteral("t"), &message));
        const QByteArray good = readAll(path);
        const QByteArray text = qUncompress(good);
        QRandomGenerator random(20261123);
        int refused = 0;
        // Half the cases damage the compressed bytes, half the tagged text under an intact frame.
        for (int round = 0; round < 2000; ++round) {
            QByteArray bytes = round % 2 ? good : text;
            const int edits = 1 + int(random.bounded(4));
            for (int e = 0; e < edits && !bytes.isEmpty(); ++e) {
                const int at = int(random.bounded(bytes.size()));
                switch (random.bounded(3)) {
                case 0:
                    bytes[at] = char(random.bounded(256));
                    break;
                case 1:
                    bytes.truncate(at);
                    break;
                default:
                    bytes.insert(at, "<|>&;0123456789"[random.bounded(15)]);
                }
            }
            writeAll(path, round % 2 ? bytes : qCompress(bytes));
            message.clear();
            const auto back = TableFile::read(path, &title, &message);
            if (back)
                QVERIFY(qint64(back->rows()) * back->columns() <= QSciSimpleTableModel::MaxCells);
            else
                QVERIFY(!message.isEmpty());
            refused += back ? 0 : 1;
        }
        QVERIFY(refused > 1000);
    }

    void importDetectsSeparatorsAndDecimalComma()
    {
        TableText::Parsed p = TableText::parse(QStringLiteral("x;y\r\n1,5;-2,25e3\r\n\r\n3;4\r\n"));
        QCOMPARE(p.separator, QLatin1Char(';'));
        QVERIFY(p.decimalComma);
        QCOMPARE(p.rows.size(), 3);
        QCOMPARE(p.rows.at(1), (QStringList { "1.5", "-2.25e3" }));

        p = TableText::parse(QStringLiteral("a,\"b, \"\"quoted\"\"\nline\",c\n1,2,\n"));
        QCOMPARE(p.separator, QLatin1Char(','));
        QVERIFY(!p.decimalComma);
        QCOMPARE(p.rows.at(0), (QStringList { "a", "b, \"quoted\"\nline", "c" }));
        QCOMPARE(p.rows.at(1), (QStringList { "1", "2", "" }));

        p = TableText::parse(QStringLiteral("  1.0   2.0\t3\n4 5 6\n"));
        QCOMPARE(p.separator, TableText::Whitespace);
        QCOMPARE(p.columns, 3);
        QCOMPARE(p.rows.at(0), (QStringList { "1.0", "2.0", "3" }));

        p = TableText::parse(QStringLiteral("1\t\t3\n4\t5\t6"));
        QCOMPARE(p.rows.at(0), (QStringList { "1", "", "3" }));
    }

    void csvAndClipboardTextRoundTrip()
    {
        const auto model = TableText::toModel({ awkward.mid(0, 4), awkward.mid(4) }, 4);
        QVERIFY(model);
        const TableText::Parsed back = TableText::parse(TableText::toCsv(*model));
        QCOMPARE(back.rows.size(), 2);
        QCOMPARE(back.rows.at(0), awkward.mid(0, 4));
        QCOMPARE(back.rows.at(1), awkward.mid(4));
        QCOMPARE(TableText::joinTabSeparated({ { "a\tb", "c" }, { "", "d" } }), QStringLiteral("a b\tc\n\td\n"));
        QVERIFY(!TableText::toModel({}, 3));
    }

    void sortReshapeAndStatistics()
    {
        QSciSimpleTableModel table(4, 2);
        const char* keys[] = { "3", "", "-1", "text" };
        for (int r = 0; r < 4; ++r) {
            table.setCellText(r, 0, QLatin1String(keys[r]));
            table.setCellText(r, 1, QString::number(r));
        }
        table.sort(0, Qt::AscendingOrder);
        // Empty and text keys sort as 0, in their old order; whole rows move.
        QCOMPARE(table.cellText(0, 0), QStringLiteral("-1"));
        QCOMPARE(table.cellText(1, 1), QStringLiteral("1"));
        QCOMPARE(table.cellText(2, 0), QStringLiteral("text"));
        QCOMPARE(table.cellText(3, 1), QStringLiteral("0"));
        table.sort(0, Qt::DescendingOrder);
        QCOMPARE(table.cellText(0, 0), QStringLiteral("3"));

        const ColumnStatistics s = ColumnStatistics::of(table, 0);
        QCOMPARE(s.count, 2);
        QCOMPARE(s.mean, 1.0);
        QCOMPARE(s.minimum, -1.0);
        QCOMPARE(s.maximum, 3.0);
        QCOMPARE(s.standardDeviation, std::sqrt(8.0));

        auto grown = TableReshape::insertRows(table, 1, 2);
        QCOMPARE(grown->rows(), 6);
        QCOMPARE(grown->cellText(0, 0), QStringLiteral("3"));
        QVERIFY(grown->cellText(1, 0).isEmpty());
        QCOMPARE(grown->cellText(3, 1), table.cellText(1, 1));
        auto shrunk = TableReshape::removeColumns(*grown, 0, 1);
        QCOMPARE(shrunk->columns(), 1);
        QCOMPARE(shrunk->cellText(3, 0), table.cellText(1, 1));
        auto turned = TableReshape::transposed(table);
        QCOMPARE(turned->rows(), 2);
        QCOMPARE(turned->cellText(1, 3), table.cellText(3, 1));
        QVERIFY(!TableReshape::removeRows(table, 0, 4));
        QVERIFY(!TableReshape::removeRows(table, 3, 2));
        QCOMPARE(TableReshape::resized(table, 2, 3)->cellText(1, 0), table.cellText(1, 0));
    }

    void modelFollowsItemModelRules()
    {
        QSciSimpleTableModel table(2, 2);
        const QModelIndex i = table.index(1, 0);
        QVERIFY(table.setData(i, 2.5));
        QVERIFY(table.setData(i, QStringLiteral("ignored"), Qt::DisplayRole));
        QCOMPARE(table.data(i, Qt::DisplayRole).toString(), QStringLiteral("2.5"));
        QVERIFY(!table.data(i, Qt::ToolTipRole).isValid());
        QVERIFY(table.flags(i) & Qt::ItemIsEditable);
        QCOMPARE(table.rowCount(i), 2);
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestTableData)
#include "tst_tabledata.moc"
