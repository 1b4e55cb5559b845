#include "qscisingleobject.h"

#include "core/base/messages.h"
#include "core/base/taggedtextnode.h"
#include "core/base/taggedtextreader.h"
#include "core/base/taggedtextwriter.h"
#include "core/settings/options.h"

#include <charconv>
#include <climits>
#include <variant>

namespace {

using Object = QSciSingleObject;
using Member = std::variant<double Object::*, int Object::*, bool Object::*, QPoint Object::*, QRect Object::*,
    QColor Object::*>;

struct FieldLayout {
    QString key;
    Member member;
};

struct ChapterLayout {
    QString name;
    QVector<FieldLayout> fields;
};

struct PointListLayout {
    QString name;
    QVector<QPoint> Object::*member;
};

#define VELMORA_FIELD(name)                                                                                            \
    FieldLayout                                                                                                        \
    {                                                                                                                  \
        QStringLiteral(#name), &Object::name                                                                           \
    }
#define VELMORA_ELEMENT(name) VELMORA_FIELD(name##Color), VELMORA_FIELD(name##Visible)

// Every serialised scalar field, by chapter, in the order the record writes them.
const QVector<ChapterLayout>& chapterLayouts()
{
    static const QVector<ChapterLayout> layouts {
        { QStringLiteral("firstChapter"),
            { VELMORA_FIELD(area), VELMORA_FIELD(areaPBM), VELMORA_FIELD(areaPM), VELMORA_FIELD(circumference),
                VELMORA_FIELD(circumferencePBM), VELMORA_FIELD(circumferencePM), VELMORA_FIELD(compactnessPBM),
                VELMORA_FIELD(compactnessPM), VELMORA_FIELD(cubage), VELMORA_FIELD(fracDim), VELMORA_FIELD(height),
                VELMORA_FIELD(lableSize), VELMORA_FIELD(rMax), VELMORA_FIELD(rMaxVector), VELMORA_FIELD(rMin),
                VELMORA_FIELD(rMinVector), VELMORA_FIELD(visible), VELMORA_FIELD(width), VELMORA_FIELD(zBar),
                VELMORA_FIELD(zMax), VELMORA_FIELD(zMin) } },
        { QStringLiteral("colors"),
            { VELMORA_ELEMENT(border), VELMORA_ELEMENT(fill), VELMORA_ELEMENT(label), VELMORA_ELEMENT(skeleton),
                VELMORA_ELEMENT(skeletonLargestBranch), VELMORA_ELEMENT(innerRadius), VELMORA_ELEMENT(outerRadius),
                VELMORA_ELEMENT(firstAxis), VELMORA_ELEMENT(secondAxis), VELMORA_ELEMENT(coa), VELMORA_ELEMENT(com),
                VELMORA_ELEMENT(boundingBox), VELMORA_ELEMENT(minimum), VELMORA_ELEMENT(maximum),
                VELMORA_ELEMENT(borderMinimum), VELMORA_ELEMENT(borderMaximum) } },
        { QStringLiteral("mainAxes"),
            { VELMORA_FIELD(mainAxesCalculated), VELMORA_FIELD(mainFirstAxisP1), VELMORA_FIELD(mainFirstAxisP2),
                VELMORA_FIELD(mainFirstAxisLength), VELMORA_FIELD(mainFirstAxisAngle), VELMORA_FIELD(mainSecondAxisP1),
                VELMORA_FIELD(mainSecondAxisP2), VELMORA_FIELD(mainSecondAxisLength),
                VELMORA_FIELD(mainSecondAxisAngle), VELMORA_FIELD(mainAxesAspectRatio),
                VELMORA_FIELD(mainAxesElongation) } },
        { QStringLiteral("largestExtent"),
            { VELMORA_FIELD(largestExtentCalculated), VELMORA_FIELD(largestExtentP1), VELMORA_FIELD(largestExtentP2),
                VELMORA_FIELD(largestExtentDistance) } },
        { QStringLiteral("skeleton"),
            { VELMORA_FIELD(skeletonCalculated), VELMORA_FIELD(skeletonMaxLength),
                VELMORA_FIELD(skeletonNumberOfBranches) } },
        { QStringLiteral("other"),
            { VELMORA_FIELD(stdWholeObject), VELMORA_FIELD(stdBorder), VELMORA_FIELD(heywoodDiameterPBM),
                VELMORA_FIELD(heywoodDiameterPM), VELMORA_FIELD(boundingBox), VELMORA_FIELD(zMinAt),
                VELMORA_FIELD(zMaxAt), VELMORA_FIELD(borderZMinAt), VELMORA_FIELD(borderZMaxAt), VELMORA_FIELD(zRange),
                VELMORA_FIELD(zMean), VELMORA_FIELD(borderZMin), VELMORA_FIELD(borderZMax), VELMORA_FIELD(borderZMean),
                VELMORA_FIELD(borderZRange) } },
    };
    return layouts;
}

#undef VELMORA_ELEMENT
#undef VELMORA_FIELD

const QVector<PointListLayout>& pointListLayouts()
{
    static const QVector<PointListLayout> layouts {
        { QStringLiteral("borderPixels"), &Object::borderPixels },
        { QStringLiteral("fillPixels"), &Object::fillPixels },
        { QStringLiteral("skeletonPixels"), &Object::skeletonPixels },
        { QStringLiteral("skeletonLargestBranch"), &Object::skeletonLargestBranch },
    };
    return layouts;
}

void appendInt(QString& out, int value)
{
    char digits[16];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    out += QLatin1String(digits, int(result.ptr - digits));
}

QString joinInts(std::initializer_list<int> values)
{
    QString text;
    for (const int value : values) {
        if (!text.isEmpty())
            text += QLatin1Char(';');
        appendInt(text, value);
    }
    return text;
}

QString format(double value)
{
    return Options::formatReal(value);
}
QString format(int value)
{
    return QString::number(value);
}
QString format(bool value)
{
    return value ? QStringLiteral("1") : QStringLiteral("0");
}
QString format(const QPoint& p)
{
    return joinInts({ p.x(), p.y() });
}
QString format(const QRect& r)
{
    return joinInts({ r.left(), r.top(), r.right(), r.bottom() });
}
QString format(const QColor& c)
{
    return Options::formatColor(c);
}

/**
 * Reads "a;b;..." integers into @p out; false on anything but optional minus signs, digits and single
 * separators, or on a value outside int. Linear and allocation-free per number: point lists run long.
 */
bool parseInts(QStringView text, QVector<int>& out)
{
    out.clear();
    if (text.isEmpty())
        return true;
    const QChar* c = text.begin();
    const QChar* end = text.end();
    while (true) {
        const bool negative = c != end && *c == QLatin1Char('-');
        if (negative)
            ++c;
        const QChar* digitsStart = c;
        long long value = 0;
        while (c != end && c->unicode() >= '0' && c->unicode() <= '9') {
            value = value * 10 + (c->unicode() - '0');
            if (value > static_cast<long long>(INT_MAX) + 1)
                return false;
            ++c;
        }
        if (c == digitsStart)
            return false;
        value = negative ? -value : value;
        if (value > INT_MAX || value < INT_MIN)
            return false;
        out.append(int(value));
        if (c == end)
            return true;
        if (*c != QLatin1Char(';'))
            return false;
        ++c;
    }
}

bool parse(const QString& text, double& value)
{
    bool ok = false;
    const double read = text.toDouble(&ok);
    if (ok)
        value = read;
    return ok;
}

bool parse(const QString& text, int& value)
{
    bool ok = false;
    const int read = text.toInt(&ok);
    if (ok)
        value = read;
    return ok;
}

bool parse(const QString& text, bool& value)
{
    value = text == QLatin1String("1");
    return true;
}

bool parse(const QString& text, QPoint& value)
{
    QVector<int> v;
    if (!parseInts(text, v) || v.size() != 2)
        return false;
    value = QPoint(v[0], v[1]);
    return true;
}

bool parse(const QString& text, QRect& value)
{
    QVector<int> v;
    if (!parseInts(text, v) || v.size() != 4)
        return false;
    value = QRect(QPoint(v[0], v[1]), QPoint(v[2], v[3]));
    return true;
}

bool parse(const QString& text, QColor& value)
{
    value = Options::parseColor(text, value);
    return true;
}

void writePointList(TaggedTextWriter& writer, const QString& name, const QVector<QPoint>& points)
{
    writer.beginChapter(name);
    writer.addPlainField(QStringLiteral("count"), QString::number(points.size()));
    if (!points.isEmpty()) {
        QString data;
        data.reserve(points.size() * 10);
        for (const QPoint& p : points) {
            if (!data.isEmpty())
                data += QLatin1Char(';');
            appendInt(data, p.x());
            data += QLatin1Char(';');
            appendInt(data, p.y());
        }
        writer.addPlainField(QStringLiteral("data"), data);
    }
    writer.endChapter();
}

bool readPointList(const TaggedTextNode* chapter, QVector<QPoint>& points)
{
    if (!chapter)
        return true;
    int count = -1;
    const QString* countText = chapter->findField(QStringLiteral("count"));
    if (countText && (!parse(*countText, count) || count < 0))
        return false;
    const QString* data = chapter->findField(QStringLiteral("data"));
    QVector<int> values;
    if (data && !parseInts(*data, values))
        return false;
    if (values.size() % 2 != 0 || (count >= 0 && values.size() != 2 * count))
        return false;
    points.resize(values.size() / 2);
    for (int i = 0; i < points.size(); ++i)
        points[i] = QPoint(values[2 * i], values[2 * i + 1]);
    return true;
}

} // namespace

QString QSciSingleObject::toString() const
{
    TaggedTextWriter writer(4096 + 12 * (borderPixels.size() + fillPixels.size() + skeletonPixels.size()));
    writer.beginChapter(QStringLiteral("header"));
    writer.addField(QStringLiteral("type"), QStringLiteral("QSciSingleObject"));
    writer.addField(QStringLiteral("version"), QStringLiteral("1"));
    writer.endChapter();
    for (const ChapterLayout& chapter : chapterLayouts()) {
        writer.beginChapter(chapter.name);
        for (const FieldLayout& field : chapter.fields)
            writer.addField(field.key, std::visit([this](auto member) { return format(this->*member); }, field.member));
        writer.endChapter();
    }
    writer.beginChapter(QStringLiteral("pixelSection"));
    for (const PointListLayout& list : pointListLayouts())
        writePointList(writer, list.name, this->*list.member);
    writer.endChapter();
    return writer.text();
}

bool QSciSingleObject::fromString(const QString& text, QString* message)
{
    TaggedTextNode root;
    QSciSingleObject read;
    bool ok = TaggedTextReader::parse(text, &root, nullptr);
    const TaggedTextNode* header = ok ? root.chapter(QStringLiteral("header")) : nullptr;
    ok = header && header->field(QStringLiteral("type")) == QLatin1String("QSciSingleObject");

    for (const ChapterLayout& chapter : chapterLayouts()) {
        const TaggedTextNode* node = ok ? root.chapter(chapter.name) : nullptr;
        if (!node)
            continue;
        for (const FieldLayout& field : chapter.fields) {
            // A value that does not read keeps the default, like a missing one.
            if (const QString* value = node->findField(field.key))
                std::visit([&read, value](auto member) { parse(*value, read.*member); }, field.member);
        }
    }
    // The pixel lists come last in every record: without them the text was cut off, not merely older.
    const TaggedTextNode* pixels = ok ? root.chapter(QStringLiteral("pixelSection")) : nullptr;
    ok = ok && pixels;
    for (const PointListLayout& list : pointListLayouts()) {
        if (pixels)
            ok = ok && readPointList(pixels->chapter(list.name), read.*list.member);
    }
    if (!ok) {
        if (message)
            *message = Messages::tr("Cannot read load string of QSciSingleObject!");
        return false;
    }
    read.objectNumber = objectNumber;
    read.itemTitle = itemTitle;
    read.timestamp = timestamp;
    *this = read;
    return true;
}

bool QSciSingleObject::operator==(const QSciSingleObject& other) const
{
    for (const ChapterLayout& chapter : chapterLayouts()) {
        for (const FieldLayout& field : chapter.fields) {
            if (!std::visit([this, &other](auto member) { return this->*member == other.*member; }, field.member))
                return false;
        }
    }
    for (const PointListLayout& list : pointListLayouts()) {
        if (this->*list.member != other.*list.member)
            return false;
    }
    return objectNumber == other.objectNumber && itemTitle == other.itemTitle && timestamp == other.timestamp;
}
