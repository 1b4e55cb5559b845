#pragma once

#include "convolution.h"
#include "qscieffect.h"

/** The options of QSciFilter. */
struct FilterOptions {
    enum class Kind { Gaussian, Sharpen, Unsharp, Convolution, Sobel, Smoothen, Despike };
    enum class Direction { Both, X, Y };

    Kind kind = Kind::Gaussian;
    double sigma = 2; ///< Gaussian and unsharp mask, in points
    double amount = 1; ///< unsharp mask
    Convolution::Kernel kernel { 1, 1, { 0, 0, 0, 0, 1, 0, 0, 0, 0 } }; ///< rows as displayed: the first is the top
    bool normalise = true;
    Direction direction = Direction::Both; ///< Sobel: the magnitude, or the signed response along x or y
    double radius = 2; ///< smoothen
    double despikeSigma = 3; ///< despike: how far out a peak lies
    bool selectionOnly = false;
};

/**
 * The filters of the Effects menu over z: Gaussian blur, sharpen, unsharp mask, a convolution with the user's
 * kernel, Sobel edge detection, the mean over a disc, and the removal of single-point peaks beyond k standard
 * deviations of their neighbourhood. Edges are mirrored. On the selection only the selected points change.
 */
class QSciFilter final : public QSciEffectOf<QSciFilter, FilterOptions> {
public:
    using Kind = FilterOptions::Kind;
    using Direction = FilterOptions::Direction;
    using QSciEffectOf::QSciEffectOf;

    QString name() const override;
    QString logParameters() const override;
    void readSettings() override;
    void writeSettings() const override;
    bool selectionOnly() const override { return m_options.selectionOnly; }
    bool check(int width, int height, bool anySelected, QString* message) const override;
    [[nodiscard]] bool run(const EffectInput& input, double* out, ProgressSink* progress) const override;

    static QString kindName(Kind kind);
    /** Parses "a,b,c;d,e,f;g,h,i" (rows from the top, odd sizes up to 15 x 15); false when it is not such a kernel. */
    static bool parseKernel(const QString& text, Convolution::Kernel* kernel);
    static QString kernelText(const Convolution::Kernel& kernel);
    /** The smoothing kernel: equal weights over the disc of @p radius points. */
    static Convolution::Kernel discMeanKernel(double radius);

private:
    bool compute(const EffectInput& input, double* out, ProgressSink* progress) const;
    bool sobel(const EffectInput& input, double* out, ProgressSink* progress) const;
};
