#include "objectreidentification.h"

#include "objectmeasures.h"

#include "core/items/qscisingleobject.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

ObjectReidentification::ObjectReidentification(const ObjectRecognitionOptions& options)
    : m_options(options)
{
}

QString ObjectReidentification::countChangedText()
{
    return QCoreApplication::translate("ObjectRecognition", "Number of Objects is not constant");
}

QString ObjectReidentification::backgroundMovingText()
{
    return QCoreApplication::translate("ObjectRecognition", "Background is moving");
}

QString ObjectReidentification::objectsMovingText()
{
    return QCoreApplication::translate("ObjectRecognition", "Objects are moving");
}

bool ObjectReidentification::match(const QList<QSciSingleObject>& previous, QList<QSciSingleObject>& current,
    int referenceObject, QString* message, QPointF* drift) const
{
    const auto fail = [&](const QString& text) {
        if (message)
            *message = text;
        return false;
    };
    if (m_options.numberConstant && previous.size() != current.size())
        return fail(countChangedText());

    std::vector<QPointF> before, after;
    double radius = 0;
    for (const QSciSingleObject& o : previous) {
        before.push_back(ObjectMeasures::centroidOfArea(o));
        radius += std::sqrt(o.fillPixels.size() / ObjectMeasures::Pi);
    }
    for (const QSciSingleObject& o : current)
        after.push_back(ObjectMeasures::centroidOfArea(o));
    radius = previous.isEmpty() ? 0 : radius / previous.size();
    const double allowX = radius + m_options.offsetX, allowY = radius + m_options.offsetY;
    const auto within = [&](QPointF d) { return std::abs(d.x()) <= allowX && std::abs(d.y()) <= allowY; };
    const auto nearest = [&](QPointF from) {
        int best = -1;
        double bestDistance = std::numeric_limits<double>::max();
        for (size_t j = 0; j < after.size(); ++j) {
            const QPointF d = after[j] - from;
            const double distance = d.x() * d.x() + d.y() * d.y();
            if (distance < bestDistance) {
                bestDistance = distance;
                best = int(j);
            }
        }
        return best;
    };

    // The typical movement of the objects, robust against the few that appear or vanish.
    std::vector<double> moveX, moveY;
    for (const QPointF& from : before) {
        const int j = nearest(from);
        if (j >= 0) {
            moveX.push_back(after[size_t(j)].x() - from.x());
            moveY.push_back(after[size_t(j)].y() - from.y());
        }
    }
    const auto median = [](std::vector<double> v) {
        if (v.empty())
            return 0.0;
        std::nth_element(v.begin(), v.begin() + v.size() / 2, v.end());
        return v[v.size() / 2];
    };
    const QPointF typical(median(moveX), median(moveY));

    QPointF shift;
    int referenceIndex = -1;
    for (int i = 0; i < previous.size(); ++i)
        if (referenceObject > 0 && previous[i].objectNumber == referenceObject)
            referenceIndex = i;
    if (referenceIndex >= 0) {
        const int j = nearest(before[size_t(referenceIndex)]);
        if (j < 0)
            return fail(objectsMovingText());
        shift = after[size_t(j)] - before[size_t(referenceIndex)];
        if (m_options.backgroundStable && !within(shift))
            return fail(backgroundMovingText());
    } else if (m_options.backgroundStable) {
        if (!within(typical))
            return fail(backgroundMovingText());
    } else {
        shift = typical;
    }

    struct Pair {
        double distance;
        int from, to;
    };
    std::vector<Pair> pairs;
    for (size_t i = 0; i < before.size(); ++i)
        for (size_t j = 0; j < after.size(); ++j) {
            const QPointF d = after[j] - before[i] - shift;
            if (within(d))
                pairs.push_back({ d.x() * d.x() + d.y() * d.y(), int(i), int(j) });
        }
    std::stable_sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) { return a.distance < b.distance; });
    std::vector<int> numberOf(after.size(), 0);
    std::vector<char> used(before.size(), 0);
    for (const Pair& p : pairs) {
        if (used[size_t(p.from)] || numberOf[size_t(p.to)])
            continue;
        used[size_t(p.from)] = 1;
        numberOf[size_t(p.to)] = previous[p.from].objectNumber;
    }
    int highest = 0;
    for (const QSciSingleObject& o : previous)
        highest = std::max(highest, o.objectNumber);
    for (size_t j = 0; j < after.size(); ++j)
        if (!numberOf[j]) {
            if (m_options.numberConstant)
                return fail(objectsMovingText());
            numberOf[j] = ++highest;
        }
    for (size_t j = 0; j < after.size(); ++j)
        current[int(j)].objectNumber = numberOf[j];
    if (drift)
        *drift = shift;
    return true;
}
