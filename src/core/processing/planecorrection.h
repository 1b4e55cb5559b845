#pragma once

class QSciImage;

/**
 * Global plane correction: the least-squares plane z = a + b*x + c*y over the whole z-matrix is fitted and
 * subtracted, so that a tilted sample becomes level with mean 0. x is the column and y the row from the
 * bottom, both counted in data points from 0.
 */
class PlaneCorrection final {
public:
    struct Plane {
        double a = 0;
        double b = 0;
        double c = 0;
        double at(int x, int y) const { return a + b * x + c * y; }
    };

    /** The fitted plane of a @p width x @p height matrix held column by column; a flat 0 plane when empty. */
    static Plane fitGlobalPlane(const double* zColumnMajor, int width, int height);
    /** Fits and subtracts in place; returns the plane that was taken away. */
    static Plane subtractGlobalPlane(double* zColumnMajor, int width, int height);
    /** The same on an item's z-matrix; tells its views. Callers record the item in the history first. */
    static Plane subtractGlobalPlane(QSciImage& item);
};
