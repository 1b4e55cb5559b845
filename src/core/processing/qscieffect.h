#pragma once

#include <QRect>
#include <QString>
#include <memory>

class ProgressSink;
class QSciImage;

/** The z-matrix an effect reads, as the item holds it: column by column, rows from the bottom. */
struct EffectInput {
    const double* z = nullptr;
    /** One byte per point, non-zero where selected; may be null when nothing is selected. */
    const uchar* mask = nullptr;
    int width = 0;
    int height = 0;
};

/**
 * An effect of the image-processing dialog: options as a value, preconditions, and a computation over
 * a z-matrix that never touches an item. The dialog's panels edit the options, the preview runs a clone
 * on a worker thread, and the item operation writes the result back inside one history transaction.
 */
class QSciEffect {
public:
    virtual ~QSciEffect() = default;

    /** The effect's name as the menus, the dialog and the history show it. */
    virtual QString name() const = 0;
    /** The options as the item's processing log records them ("radius=2, loops=1"); empty when there are none. */
    virtual QString logParameters() const { return QString(); }
    virtual std::unique_ptr<QSciEffect> clone() const = 0;
    virtual void readSettings() = 0;
    virtual void writeSettings() const = 0;

    /** True when only the selected points of the item change. */
    virtual bool selectionOnly() const = 0;
    /**
     * The preconditions on an item of @p width x @p height with @p anySelected points selected; false with the
     * message when the effect cannot run. The default tests only the selection.
     */
    virtual bool check(int width, int height, bool anySelected, QString* message) const;
    bool check(const QSciImage& item, QString* message) const;

    /**
     * Computes the new z-matrix into @p out (W*H values that hold a copy of the input when called). Returns false
     * when @p progress asked to stop; @p out is then partly written and must be thrown away.
     */
    [[nodiscard]] virtual bool run(const EffectInput& input, double* out, ProgressSink* progress) const = 0;

    /** The points an effect visits: the whole matrix, or the bounding box of the selection (x column, y row from the
     * bottom). */
    QRect region(const EffectInput& input) const;

    static QString nothingSelectedText();
};

/**
 * An effect whose options are one value of type @p OptionsType: construction from the options, reading and
 * replacing them, and the copy the preview runs. @p Derived is the effect itself.
 */
template <typename Derived, typename OptionsType> class QSciEffectOf : public QSciEffect {
public:
    using Options = OptionsType;

    QSciEffectOf() = default;
    explicit QSciEffectOf(const Options& options)
        : m_options(options)
    {
    }

    const Options& options() const { return m_options; }
    void setOptions(const Options& options) { m_options = options; }
    std::unique_ptr<QSciEffect> clone() const override
    {
        return std::make_unique<Derived>(static_cast<const Derived&>(*this));
    }

protected:
    Options m_options;
};
