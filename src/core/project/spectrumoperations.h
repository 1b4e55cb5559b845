#pragma once

#include "core/processing/fouriertransform.h"

#include <QList>
#include <QString>

class Project;
class QSciImage;

/** Fourier spectra of items as new items beside them, and the round trip back through a mask on a spectrum. */
class SpectrumOperations final {
public:
    /** Adds the spectrum of each item right of it on its tab, as one transaction; returns the new items. */
    static QList<QSciImage*> addSpectra(Project& project, const QList<QSciImage*>& items, FourierTransform::Mode mode);
    /**
     * Keeps in @p item only the frequencies selected in the mask of @p spectrum (a spectrum of an item of the same
     * size), as one transaction "Fourier filter". False with a message when the sizes differ or nothing is selected.
     */
    [[nodiscard]] static bool filter(Project& project, QSciImage* item, const QSciImage& spectrum, QString* message);
};
