#include "objectrecognitionoptions.h"

#include "core/settings/options.h"

#include <QStringList>
#include <functional>
#include <vector>

namespace {

/** One settings key and the option behind it, both ways. */
struct Binding {
    const char* key;
    std::function<QString(const ObjectRecognitionOptions&)> get;
    std::function<void(ObjectRecognitionOptions&, const QString&)> set;
};

bool toBool(const QString& text)
{
    return text == QLatin1String("1") || text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

QString fromBool(bool value)
{
    return value ? QStringLiteral("1") : QStringLiteral("0");
}

template <typename T> Binding flag(const char* key, T ObjectRecognitionOptions::*member, bool inverted = false)
{
    return { key, [=](const ObjectRecognitionOptions& o) { return fromBool((o.*member) != inverted); },
        [=](ObjectRecognitionOptions& o, const QString& v) { o.*member = toBool(v) != inverted; } };
}

Binding number(const char* key, double ObjectRecognitionOptions::*member)
{
    return { key, [=](const ObjectRecognitionOptions& o) { return QString::number(o.*member, 'g', 12); },
        [=](ObjectRecognitionOptions& o, const QString& v) {
            bool ok = false;
            const double d = v.toDouble(&ok);
            if (ok)
                o.*member = d;
        } };
}

Binding integer(const char* key, int ObjectRecognitionOptions::*member)
{
    return { key, [=](const ObjectRecognitionOptions& o) { return QString::number(o.*member); },
        [=](ObjectRecognitionOptions& o, const QString& v) {
            bool ok = false;
            const int i = v.toInt(&ok);
            if (ok)
                o.*member = i;
        } };
}

void limit(std::vector<Binding>& list, const char* checkKey, const char* valueKey,
    ObjectLimit ObjectRecognitionOptions::*member)
{
    list.push_back({ checkKey, [=](const ObjectRecognitionOptions& o) { return fromBool((o.*member).checked); },
        [=](ObjectRecognitionOptions& o, const QString& v) { (o.*member).checked = toBool(v); } });
    list.push_back(
        { valueKey, [=](const ObjectRecognitionOptions& o) { return QString::number((o.*member).value, 'g', 12); },
            [=](ObjectRecognitionOptions& o, const QString& v) {
                bool ok = false;
                const double d = v.toDouble(&ok);
                if (ok)
                    (o.*member).value = d;
            } });
}

const std::vector<Binding>& bindings()
{
    static const std::vector<Binding> list = [] {
        using O = ObjectRecognitionOptions;
        std::vector<Binding> l {
            integer("ImageProcessing.objecttype", &O::objectType),
            flag("ImageProcessing.protrusion", &O::depressions, true),
            flag("ImageProcessing.depression", &O::depressions),
            flag("ImageProcessing.floodFillMode", &O::zRangeMode, true),
            number("ImageProcessing.fillFactor", &O::fillFactor),
            flag("ImageProcessing.zRangeMode", &O::zRangeMode),
            number("ImageProcessing.zRangeMinFactor", &O::zRangeMinFactor),
            number("ImageProcessing.zRangeMaxFactor", &O::zRangeMaxFactor),
            flag("ImageProcessing.subPlaneCheck", &O::subPlanes),
            integer("ImageProcessing.objectPixelOffsetX", &O::offsetX),
            integer("ImageProcessing.objectPixelOffsetY", &O::offsetY),
            flag("ImageProcessing.objectNumberConstant", &O::numberConstant),
            flag("ImageProcessing.objectNumberChanging", &O::numberConstant, true),
            flag("ImageProcessing.backgroundStable", &O::backgroundStable),
            // Paired with "Stable" as its radio twin "Moving", despite the name.
            flag("ImageProcessing.backgroundNotMoving", &O::backgroundStable, true),
            flag("ImageProcessing.newObjectsAreSelected", &O::newObjectsSelected),
            flag("ImageProcessing.newObjectsAreUnselected", &O::newObjectsSelected, true),
            flag("ImageProcessing.markFoundPixels", &O::markFoundPixels),
            flag("ImageProcessing.findOnlyInSelection", &O::onlyInSelection),
            integer("ImageProcessing.labelSize", &O::labelSize),
        };
        limit(l, "ImageProcessing.deltaZMinCheck", "ImageProcessing.deltaZMin", &O::deltaZMin);
        limit(l, "ImageProcessing.deltaZMaxCheck", "ImageProcessing.deltaZMax", &O::deltaZMax);
        limit(l, "ImageProcessing.r1MinCheck", "ImageProcessing.r1Min", &O::r1Min);
        limit(l, "ImageProcessing.r1MaxCheck", "ImageProcessing.r1Max", &O::r1Max);
        limit(l, "ImageProcessing.r2MinCheck", "ImageProcessing.r2Min", &O::r2Min);
        limit(l, "ImageProcessing.r2MaxCheck", "ImageProcessing.r2Max", &O::r2Max);
        limit(l, "ImageProcessing.widthMinCheck", "ImageProcessing.widthMin", &O::widthMin);
        limit(l, "ImageProcessing.widthMaxCheck", "ImageProcessing.widthMax", &O::widthMax);
        limit(l, "ImageProcessing.heightMinCheck", "ImageProcessing.heightMin", &O::heightMin);
        limit(l, "ImageProcessing.heightMaxCheck", "ImageProcessing.heightMax", &O::heightMax);
        limit(l, "ImageProcessing.areaMinCheck", "ImageProcessing.areaMin", &O::areaMin);
        limit(l, "ImageProcessing.areaMaxCheck", "ImageProcessing.areaMax", &O::areaMax);
        return l;
    }();
    return list;
}

} // namespace

void ObjectRecognitionOptions::readSettings()
{
    // Keys of a pair (protrusion/depression, ...) are read in their order, so the second one stored wins; both
    // are always written together.
    for (const Binding& b : bindings()) {
        const QString key = QString::fromLatin1(b.key);
        b.set(*this, ::Options::getString(key, b.get(*this)));
    }
}

void ObjectRecognitionOptions::writeSettings() const
{
    for (const Binding& b : bindings())
        ::Options::setString(QString::fromLatin1(b.key), b.get(*this));
}

bool ObjectRecognitionOptions::set(const QString& key, const QString& value)
{
    for (const Binding& b : bindings())
        if (key == QLatin1String(b.key)) {
            b.set(*this, value);
            return true;
        }
    return false;
}

QString ObjectRecognitionOptions::summary() const
{
    QStringList parts { QStringLiteral("type=%1").arg(objectType),
        depressions ? QStringLiteral("depressions") : QStringLiteral("protrusions") };
    if (zRangeMode)
        parts << QStringLiteral("zrange=%1..%2%").arg(zRangeMinFactor).arg(zRangeMaxFactor);
    else
        parts << QStringLiteral("fill=%1").arg(fillFactor);
    const std::pair<const char*, const ObjectLimit*> limits[] = { { "deltaZMin", &deltaZMin },
        { "deltaZMax", &deltaZMax }, { "r1Min", &r1Min }, { "r1Max", &r1Max }, { "r2Min", &r2Min }, { "r2Max", &r2Max },
        { "widthMin", &widthMin }, { "widthMax", &widthMax }, { "heightMin", &heightMin }, { "heightMax", &heightMax },
        { "areaMin", &areaMin }, { "areaMax", &areaMax } };
    for (const auto& limit : limits)
        if (limit.second->checked)
            parts << QStringLiteral("%1=%2").arg(QLatin1String(limit.first)).arg(limit.second->value, 0, 'g', 12);
    if (subPlanes)
        parts << QStringLiteral("subsurface planes");
    if (onlyInSelection)
        parts << QStringLiteral("in selection");
    return parts.join(QLatin1String(", "));
}
