#pragma once

#include "objectrecognitionoptions.h"

#include <QList>
#include <QPointF>
#include <QString>

class QSciSingleObject;

/**
 * Carries object numbers from one image of a series to the next: each object takes the number of the object of
 * the previous image whose centre, moved by the drift of the series, lies nearest within the allowance.
 *
 * The allowance is the mean radius of the previous image's objects (of the disc of their area), widened by the
 * additional centre drift of the options in x and in y. The drift is the movement of the reference object when
 * one is marked; otherwise nothing when the background is "Stable", and the median movement of every previous
 * object to its nearest successor when it is "Moving". "Stable" is refused ("Background is moving") when that
 * median movement exceeds the allowance. Pairs are taken nearest first; with "Constant" every object must find
 * its predecessor ("Objects are moving"), with "Changing" the rest get new numbers after the highest in use.
 */
class ObjectReidentification final {
public:
    explicit ObjectReidentification(const ObjectRecognitionOptions& options);

    /**
     * Numbers @p current after @p previous. @p referenceObject is the number of the marked reference object in
     * @p previous, 0 for none. False with the message when the series breaks one of its conditions; the numbers
     * are then left as they were.
     */
    bool match(const QList<QSciSingleObject>& previous, QList<QSciSingleObject>& current, int referenceObject,
        QString* message, QPointF* drift = nullptr) const;

    static QString countChangedText();
    static QString backgroundMovingText();
    static QString objectsMovingText();

private:
    ObjectRecognitionOptions m_options;
};
