#include "objectrecognitioneffect.h"

#include "core/analysis/objectrecognition.h"

#include <QCoreApplication>

QString ObjectRecognitionEffect::name() const
{
    return QCoreApplication::translate("ObjectRecognition", "Object recognition");
}

bool ObjectRecognitionEffect::check(int width, int height, bool, QString* message) const
{
    return ObjectRecognition(m_options).check(width, height, message);
}

bool ObjectRecognitionEffect::run(const EffectInput&, double*, ProgressSink*) const
{
    return true;
}
