#pragma once

#include "core/analysis/objectrecognitionoptions.h"
#include "core/processing/qscieffect.h"

/**
 * Object recognition as a page of the processing dialog sees it: its options, their settings and the
 * preconditions. It leaves z as it is (the preview shows the item unchanged); Apply runs ObjectOperations.
 */
class ObjectRecognitionEffect final : public QSciEffectOf<ObjectRecognitionEffect, ObjectRecognitionOptions> {
public:
    using QSciEffectOf::QSciEffectOf;

    QString name() const override;
    void readSettings() override { m_options.readSettings(); }
    void writeSettings() const override { m_options.writeSettings(); }
    bool selectionOnly() const override { return false; }
    bool check(int width, int height, bool anySelected, QString* message) const override;
    [[nodiscard]] bool run(const EffectInput& input, double* out, ProgressSink* progress) const override;
};
