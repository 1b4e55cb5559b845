#include "benchharness.h"

#include "core/analysis/objectrecognition.h"
#include "core/items/qscisingleobject.h"

#include <QTextStream>
#include <memory>

namespace {

/**
 * Recognition and every measure on the field: protrusions, type 0, fill 50 %, R1 min 3, R1 max 25 and DeltaZ (min)
 * 1e-8 ticked (the raw field's z is in metres and its grains are tens of nanometres high), everything else unticked.
 */
QList<BenchJob> objectJobs(BenchContext& context)
{
    ObjectRecognitionOptions options;
    options.r1Min = { true, 3 };
    options.r1Max = { true, 25 };
    options.deltaZMin = { true, 1e-8 };
    BenchField* field = &context.field;
    auto count = std::make_shared<int>(-1);
    return { { QStringLiteral("objects"),
        [field, options, count]() {
            QList<QSciSingleObject> objects;
            const RecognitionInput input { field->z.constData(), nullptr, field->width, field->height };
            if (ObjectRecognition(options).find(input, &objects) != ObjectRecognition::Result::Done)
                qFatal("objects bench: the search was refused");
            if (*count != objects.size()) {
                *count = objects.size();
                QTextStream(stderr) << "# objects: " << *count << " found\n";
            }
        },
        {} } };
}

const BenchRegistration registration(45, objectJobs);

} // namespace
