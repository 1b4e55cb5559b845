#include "core/base/taggedtextnode.h"
#include "core/base/taggedtextreader.h"
#include "core/base/taggedtextwriter.h"

#include <QtTest>

class TestTaggedText : public QObject {
    Q_OBJECT

private slots:
    void writesChaptersAndFields()
    {
        TaggedTextWriter writer;
        writer.beginChapter(QStringLiteral("header"));
        writer.addField(QStringLiteral("type"), QStringLiteral("2dPlot"));
        writer.endChapter();
        writer.beginChapter(QStringLiteral("content"));
        writer.beginChapter(QStringLiteral("plot"));
        writer.addField(QStringLiteral("values"), QStringLiteral("1;2"));
        writer.endChapter();
        writer.addField(QStringLiteral("empty"), QString());
        QCOMPARE(writer.openChapters(), 1);
        writer.endChapter();
        writer.endChapter(); // nothing open: ignored
        QCOMPARE(writer.text(),
            QStringLiteral("<header|<type|2dPlot|type>|header><content|<plot|<values|1;2|values>|plot><empty||empty>|"
                           "content>"));
    }

    void parsesIntoATree()
    {
        TaggedTextNode root;
        QString message;
        QVERIFY(TaggedTextReader::parse(QStringLiteral("<header|<type|2dPlot|type><v|1|v>|header>"
                                                       "<plotData|<plot|<n|a|n>|plot><plot|<n|b|n>|plot>|plotData>"
                                                       "<top|x|top>"),
            &root, &message));
        QCOMPARE(root.chapters().size(), size_t(2));
        QCOMPARE(root.field(QStringLiteral("top")), QStringLiteral("x"));
        const TaggedTextNode* header = root.chapter(QStringLiteral("header"));
        QVERIFY(header);
        QCOMPARE(header->fields(),
            (QVector<TaggedTextNode::Field> {
                { QStringLiteral("type"), QStringLiteral("2dPlot") }, { QStringLiteral("v"), QStringLiteral("1") } }));
        const TaggedTextNode* data = root.chapter(QStringLiteral("plotData"));
        QCOMPARE(data->chapters().size(), size_t(2));
        QCOMPARE(data->chapters().at(1).field(QStringLiteral("n")), QStringLiteral("b"));
        QCOMPARE(data->chapter(QStringLiteral("plot"))->field(QStringLiteral("n")), QStringLiteral("a"));
        QVERIFY(!root.chapter(QStringLiteral("missing")));
        QCOMPARE(header->field(QStringLiteral("missing"), QStringLiteral("d")), QStringLiteral("d"));

        QVERIFY(TaggedTextReader::parse(QString(), &root));
        QVERIFY(root.fields().isEmpty() && root.chapters().empty());
    }

    void escapesRoundTrip_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("escaped");
        QTest::newRow("plain") << QStringLiteral("1.5;2") << QStringLiteral("1.5;2");
        QTest::newRow("all four") << QStringLiteral("a|b>c<d&e") << QStringLiteral("a&pipe;b&gt;c&lt;d&amp;e");
        QTest::newRow("entity text") << QStringLiteral("&pipe;&amp;") << QStringLiteral("&amp;pipe;&amp;amp;");
        QTest::newRow("tag look-alike") << QStringLiteral("<x|y|x>") << QStringLiteral("&lt;x&pipe;y&pipe;x&gt;");
        QTest::newRow("lone ampersands") << QStringLiteral("&&;&") << QStringLiteral("&amp;&amp;;&amp;");
    }

    void escapesRoundTrip()
    {
        QFETCH(QString, value);
        QFETCH(QString, escaped);
        QCOMPARE(TaggedTextWriter::escape(value), escaped);
        TaggedTextWriter writer;
        writer.beginChapter(QStringLiteral("c"));
        writer.addField(QStringLiteral("k"), value);
        writer.endChapter();
        TaggedTextNode root;
        QVERIFY(TaggedTextReader::parse(writer.text(), &root));
        QCOMPARE(root.chapter(QStringLiteral("c"))->field(QStringLiteral("k")), value);
    }

    void unknownEntitiesStayAsWritten()
    {
        QCOMPARE(TaggedTextReader::unescape(u"a&b;&gt&lt;&"), QStringLiteral("a&b;&gt<&"));
    }

    void rejectsMalformedText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("unclosed chapter") << QStringLiteral("<a|<b|1|b>");
        QTest::newRow("cut in a value") << QStringLiteral("<a|1");
        QTest::newRow("cut in a name") << QStringLiteral("<a");
        QTest::newRow("cut after the value") << QStringLiteral("<a|1|a");
        QTest::newRow("field closed wrongly") << QStringLiteral("<a|1|b>");
        QTest::newRow("chapter closed wrongly") << QStringLiteral("<a|<b|1|b>|c>");
        QTest::newRow("close without open") << QStringLiteral("|a>");
        QTest::newRow("text between tags") << QStringLiteral("<a|<b|1|b>x|a>");
        QTest::newRow("leading text") << QStringLiteral("x<a|1|a>");
        QTest::newRow("empty name") << QStringLiteral("<|1|>");
        QTest::newRow("raw < in value") << QStringLiteral("<a|x<y|a>");
        QTest::newRow("raw > in value") << QStringLiteral("<a|x>y|a>");
        QTest::newRow("bracket in name") << QStringLiteral("<a<b|1|a<b>");
        QTest::newRow("trailing bar") << QStringLiteral("<a|1|a>|");
    }

    void rejectsMalformedText()
    {
        QFETCH(QString, text);
        TaggedTextNode root;
        QString message;
        QVERIFY(!TaggedTextReader::parse(text, &root, &message));
        QVERIFY(!message.isEmpty());
    }

    void deepAndLongInputs()
    {
        const auto nested = [](int depth) -> QString {
            return QStringLiteral("<c|").repeated(depth) + QStringLiteral("<v|1|v>")
                + QStringLiteral("|c>").repeated(depth);
        };
        TaggedTextNode root;
        QVERIFY(TaggedTextReader::parse(nested(1000), &root));
        QVERIFY(!TaggedTextReader::parse(nested(1000).chopped(1), &root));
        QVERIFY(!TaggedTextReader::parse(nested(1001), &root));
        QVERIFY(!TaggedTextReader::parse(nested(1000000), &root));

        // A long value comes back whole.

        QString points;
        for (int i = 0; i < 200000; ++i)
            points += QString::number(i) + QLatin1Char(';');
        TaggedTextWriter writer;
        writer.addField(QStringLiteral("data"), points);
        QVERIFY(TaggedTextReader::parse(writer.text(), &root));
        QCOMPARE(root.field(QStringLiteral("data")), points);
    }
};

QTEST_GUILESS_MAIN(TestTaggedText)
#include "tst_taggedtext.moc"
