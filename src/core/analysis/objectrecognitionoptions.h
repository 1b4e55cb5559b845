#pragma once

#include <QString>

/** A limit of the search that the user ticks and sets. */
struct ObjectLimit {
    bool checked = false;
    double value = 0;
};

/**
 * The options of one object-recognition run, as the processing panel shows them and the settings keep them
 * under "ImageProcessing.*". Defaults are those of a first start.
 */
struct ObjectRecognitionOptions {
    enum ObjectType { OpenAndClosed = 0, Open = 1, Closed = 2 };

    int objectType = OpenAndClosed;
    bool depressions = false; ///< objects descend valley-like instead of rising
    bool zRangeMode = false; ///< a global z range instead of the flood fill against the local environment
    double fillFactor = 50; ///< percent
    double zRangeMinFactor = 50; ///< percent of the item's z range
    double zRangeMaxFactor = 100;
    ObjectLimit deltaZMin, deltaZMax;
    bool subPlanes = false; ///< marked areas give the reference heights
    ObjectLimit r1Min { true, 3 }, r1Max { true, 25 };
    ObjectLimit r2Min, r2Max;
    ObjectLimit widthMin, widthMax, heightMin, heightMax, areaMin, areaMax;
    int offsetX = 0; ///< additional centre drift allowed when re-identifying, pixels
    int offsetY = 0;
    bool numberConstant = false; ///< "Number of objects is": Constant (else Changing)
    bool backgroundStable = true; ///< "Background is": Stable (else Moving)
    bool newObjectsSelected = true;
    bool markFoundPixels = false;
    bool onlyInSelection = false;
    int labelSize = 12;

    void readSettings();
    void writeSettings() const;
    /**
     * Sets the option stored under @p key (an "ImageProcessing.*" key) from @p value, as the settings would;
     * false when the key is not an option of the search.
     */
    bool set(const QString& key, const QString& value);
    /** The options that shape the search, for the processing log: "type=0, protrusions, fill=50, r1Min=3, ...". */
    QString summary() const;
};
