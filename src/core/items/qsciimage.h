#pragma once

#include "core/display/colorgradient.h"
#include "core/display/colorrange.h"
#include "core/items/qscisingleobject.h"

#include <QDateTime>
#include <QImage>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QRect>
#include <QStringList>
#include <QVector>
#include <atomic>
#include <mutex>

/**
 * The image item: a picture, a z-matrix and a mask of one size W x H, an object layer, a calibration
 * header and display properties.
 *
 * Points are addressed by column x and row y with rows counted from the BOTTOM (row 0 is the bottom row
 * as shown). The z-matrix and the mask are held column by column: point (x, y) is at index x*H + y. The
 * picture is a QImage (ARGB32) whose rows run from the top, so point (x, y) is image pixel (x, H-1-y).
 *
 * Positions on the tab (left, top) and rectangles passed to the resize step are in display terms:
 * row 0 is the TOP row.
 *
 * Changing operations emit contentChanged() with the parts they touched; views redraw from that.
 * Callers record the item in the running history transaction before calling a changing operation.
 */
class QSciImage final : public QObject {
    Q_OBJECT

public:
    /** Parts of an item, as the history and the native writer select them. */
    enum Part : unsigned {
        PicturePart = 0x01,
        ZPart = 0x02,
        MaskPart = 0x04,
        ObjectsPart = 0x08,
        PositionPart = 0x10, ///< place on the tab, stacking order, selection, visibility
        DisplayPart = 0x20, ///< gradient and drawing switches
        HeaderPart = 0x40, ///< calibration, instrument header, text lines, name
        AllParts = 0x4F,
    };
    Q_DECLARE_FLAGS(Parts, Part)
    Q_FLAG(Parts)

    /** Calibration values of the header. */
    struct SciValues {
        double offsetX = 0;
        double offsetY = 0;
        double sizeX = 0; ///< physical width; W when never set
        double sizeY = 0; ///< physical height; H when never set
        QString xUnit;
        QString yUnit;
        QString zUnit;
        double xUnitPerPixel = 1;
        double yUnitPerPixel = 1;
        bool operator==(const SciValues& o) const;
    };

    /** The most points an item may hold: its z-matrix must fit one QVector<double>. */
    static constexpr qint64 MaxPoints = (qint64(0x7FFFFFFF) - 64) / 8;
    /** True when a @p width x @p height item can be made (both at least 1, at most MaxPoints points). */
    static bool sizeFits(qint64 width, qint64 height)
    {
        return width >= 1 && height >= 1 && width <= MaxPoints && height <= MaxPoints / width;
    }
    /** "The item would be too large: W x H points", for every place that refuses a size. */
    static QString tooLargeText(qint64 width, qint64 height);

    /** A 100 x 100 white item with z all 0 and no mask point selected. */
    explicit QSciImage(QObject* parent = nullptr);
    /** A @p width x @p height item filled with @p background, z all 0, mask empty. Sizes below 1 become 1. */
    QSciImage(int width, int height, const QColor& background, QObject* parent = nullptr);
    ~QSciImage() override;

    /** Deep copy of every field, matrix and object (not the QObject parent). */
    void copyFrom(const QSciImage& other);
    /** A new, unparented item holding a deep copy of this one, with its own creation time. */
    QSciImage* duplicate() const;

    /** A number unique to this object for the whole run; never copied, so the history can tell objects apart. */
    quint64 serial() const { return m_serial; }

    // ---- size and place -------------------------------------------------------------------------
    int width() const { return m_width; }
    int height() const { return m_height; }
    QSize size() const { return QSize(m_width, m_height); }
    int left() const { return m_left; }
    int top() const { return m_top; }
    int right() const { return m_left + m_width - 1; }
    int bottom() const { return m_top + m_height - 1; }
    /** Rectangle on the tab, in data points. */
    QRect tabRect() const { return QRect(m_left, m_top, m_width, m_height); }
    void setPosition(int left, int top);
    void moveBy(int dx, int dy) { setPosition(m_left + dx, m_top + dy); }

    // ---- z-matrix ----------------------------------------------------------------------------------
    double z(int x, int y) const { return m_z[qsizetype(x) * m_height + y]; }
    /** Per-point setters (setZ, setPixel, setPixelSelected) do not notify: call notifyChanged() after a batch. */
    void setZ(int x, int y, double value);
    /** W*H doubles, column by column, rows from the bottom. Writers call notifyChanged(ZPart) afterwards. */
    const double* zData() const { return m_z.constData(); }
    double* zData()
    {
        zChanged();
        return m_z.data();
    }
    QVector<double> zMatrix() const { return m_z; }
    /** Replaces the z-matrix; false when @p z does not hold W*H values. */
    [[nodiscard]] bool setZMatrix(const QVector<double>& z);
    /** The extremes of the finite z values (NaN and infinity mark unmeasured points); NaN when there is none. */
    double zMin() const;
    double zMax() const;
    /**
     * Both extremes in one pass over the matrix, finite values only. They are kept until z changes (through
     * this class, zData() or notifyChanged(ZPart)), so colouring again with another gradient skips the pass.
     */
    void zRange(double* zMin, double* zMax) const;

    // ---- picture -----------------------------------------------------------------------------------
    const QImage& picture() const { return m_picture; }
    /** Replaces the picture (converted to ARGB32); false when its size is not W x H. */
    [[nodiscard]] bool setPicture(const QImage& picture);
    QRgb pixel(int x, int y) const;
    void setPixel(int x, int y, QRgb color);
    /** Direct access for hot loops and painters; call notifyChanged(PicturePart) afterwards. */
    QImage& pictureRef() { return m_picture; }

    // ---- mask --------------------------------------------------------------------------------------
    bool isPixelSelected(int x, int y) const { return m_mask[qsizetype(x) * m_height + y] != 0; }
    void setPixelSelected(int x, int y, bool selected);
    /** W*H bytes (0 or 1), column by column, rows from the bottom; call notifyChanged(MaskPart) after writing. */
    const uchar* maskData() const { return m_mask.constData(); }
    uchar* maskData() { return m_mask.data(); }
    QVector<uchar> maskMatrix() const { return m_mask; }
    /** Replaces the mask (any non-zero byte selects); false when @p mask does not hold W*H values. */
    [[nodiscard]] bool setMask(const QVector<uchar>& mask);
    /** Bounding rectangle of the selected points in display terms (row 0 on top); empty when none. */
    QRect maskBorderRect() const;
    qsizetype maskSelectedCount() const;
    void selectAllMask();
    void clearMask();
    void invertMask();

    /**
     * Replaces all three matrices at once, the item taking the picture's size; false (and nothing changes)
     * when the picture is empty or @p z and @p mask do not hold W*H values.
     */
    [[nodiscard]] bool setContent(const QImage& picture, const QVector<double>& z, const QVector<uchar>& mask);

    // ---- objects -----------------------------------------------------------------------------------
    const QList<QSciSingleObject>& objects() const { return m_objects; }
    QList<QSciSingleObject>& objects() { return m_objects; }
    void setObjects(const QList<QSciSingleObject>& objects);

    // ---- header ------------------------------------------------------------------------------------
    const SciValues& sciValues() const { return m_sciValues; }
    void setSciValues(const SciValues& values);
    double zCalibrateMultiply() const { return m_zCalibrateMultiply; }
    double zCalibrateAdd() const { return m_zCalibrateAdd; }
    void setZCalibration(double multiply, double add);
    /** Key/value entries read from instrument files, in order. */
    const QList<QPair<QString, QString>>& instrumentHeader() const { return m_instrumentHeader; }
    void setInstrumentHeader(const QList<QPair<QString, QString>>& header);
    const QStringList& textLines() const { return m_textLines; }
    void setTextLines(const QStringList& lines);
    /** Display element settings (rulers, labels, z scale) by their file key, values as stored. */
    const QMap<QString, QString>& displayElements() const { return m_displayElements; }
    void setDisplayElements(const QMap<QString, QString>& elements);
    /** The defaults of every display element key, in the order the file writes them. */
    static const QList<QPair<QString, QString>>& displayElementDefaults();

    // ---- identity and display ------------------------------------------------------------------------
    QString name() const { return m_name; }
    void setName(const QString& name);
    QString tabText() const { return m_tabText; }
    void setTabText(const QString& text) { m_tabText = text; }
    int zPosInImageList() const { return m_zPos; }
    void setZPosInImageList(int z) { m_zPos = z; }
    bool isSelected() const { return m_selected; }
    void setSelected(bool selected);
    bool isVisible() const { return m_visible; }
    void setVisible(bool visible);
    QString abstractText() const { return m_abstract; }
    void setAbstractText(const QString& text) { m_abstract = text; }
    QDateTime creationTime() const { return m_creationTime; }
    void setCreationTime(const QDateTime& time) { m_creationTime = time; }

    bool drawImageInSciPaint() const { return m_drawImage; }
    bool drawMaskInSciPaint() const { return m_drawMask; }
    bool drawObjectsInSciPaint() const { return m_drawObjects; }
    bool drawZInSciPaint() const { return m_drawZ; }
    double opacity() const { return m_opacity; }
    void setDrawSwitches(bool image, bool mask, bool objects, bool z);
    void setOpacity(double opacity);
    const ColorGradient& colorGradient() const { return m_gradient; }
    void setColorGradient(const ColorGradient& gradient);
    /** Which z values the gradient spans when the z-matrix is coloured and the z scale drawn. */
    const ColorRange& colorRange() const { return m_colorRange; }
    void setColorRange(const ColorRange& range);
    /** The z values mapped to the first and last ramp entries under colorRange(). */
    void displayRange(double* low, double* high) const;
    /** One line per operation that changed z, mask or objects (see ProcessingLog). */
    const QStringList& processingLog() const { return m_processingLog; }
    void setProcessingLog(const QStringList& lines) { m_processingLog = lines; }

    QString fileName() const { return m_fileName; }
    void setFileName(const QString& fileName) { m_fileName = fileName; }
    bool isSaved() const { return m_saved; }
    void setSaved(bool saved) { m_saved = saved; }
    bool isLoading() const { return m_loading; }
    void setLoading(bool loading) { m_loading = loading; }
    bool isInEditMode() const { return m_editMode; }
    void setEditMode(bool on) { m_editMode = on; }

    // ---- operations (record the item in the history before calling) ---------------------------------
    /** Colours every point through the gradient between the matrix's own min and max (one min/max pass). */
    /** The z-matrix through the gradient as mapZToPicture() would paint it, leaving the picture alone. */
    QImage zPicture() const;
    void mapZToPicture();
    /** z = the gradient's inverse lookup of each picture point over 0..1. */
    void mapPictureToZ();
    /** z' = z * multiply + add; the two numbers are kept as the last calibration. */
    void recalibrateZ(double multiply, double add);
    /** Flips and rotations move all three matrices and the object records together. */
    void flipHorizontal();
    void flipVertical();
    /**
     * Rotates by +90 (clockwise), -90 or 180 degrees; W and H swap for +-90, and so do the x and y
     * calibration values. Other angles do nothing.
     */
    void rotate(int degrees);
    /**
     * The shared resize step: the matrices become the size of @p rect (in this item's own display
     * coordinates, row 0 on top, may reach outside the item); old points inside keep their values, new
     * points get @p zFill in z, @p pictureFill in the picture and are unselected. Objects move with their points;
     * those cut across are dropped.
     * The item moves by the rectangle's top-left corner, so the points it keeps stay where they were on the
     * tab, and the physical size scales with the point count. An empty @p rect does nothing.
     */
    void resizeToRect(const QRect& rect, double zFill, QRgb pictureFill = qRgba(0, 0, 0, 0));
    /** Cuts to the bounding rectangle of the mask; nothing happens without a selected point. */
    void cutToMaskBorderRect();
    /** Fills the picture with white. */
    void clearPicture();
    void clearObjects();

    /** Tells views that @p parts changed after direct writes through zData(), maskData() or pictureRef(). */
    /** Emits contentChanged(@p parts) unless the item is loading. */
    void notifyChanged(Parts parts);

signals:
    /** The content (matrices, objects, header or display) changed; views redraw. */
    void contentChanged(QSciImage::Parts parts);
    /** Position, selection or visibility changed. */
    void placeChanged();

private:
    /** Colours @p image (made W x H ARGB32 when it is not) from the z-matrix: one min/max pass, then the ramp. */
    void renderZInto(QImage& image) const;
    void resetMatrices(int width, int height, const QColor& background);
    /** Forgets the kept extremes of z. */
    void zChanged();
    static quint64 nextSerial()
    {
        static std::atomic<quint64> counter { 0 };
        return ++counter;
    }

    const quint64 m_serial = nextSerial();
    int m_width = 0;
    int m_height = 0;
    int m_left = 0;
    int m_top = 0;
    QImage m_picture;
    QVector<double> m_z;
    /** The extremes of m_z while valid; views colour from other threads, hence the lock. */
    struct ZRangeCache {
        std::mutex lock;
        quint64 generation = 0;
        bool valid = false;
        double low = 0;
        double high = 0;
    };
    mutable ZRangeCache m_zRange;
    QVector<uchar> m_mask;
    QList<QSciSingleObject> m_objects;
    SciValues m_sciValues;
    double m_zCalibrateMultiply = 1;
    double m_zCalibrateAdd = 0;
    QList<QPair<QString, QString>> m_instrumentHeader;
    QStringList m_textLines;
    QMap<QString, QString> m_displayElements;
    QString m_name;
    QString m_tabText;
    int m_zPos = 0;
    bool m_selected = false;
    bool m_visible = true;
    QString m_abstract;
    QDateTime m_creationTime;
    bool m_drawImage = true;
    bool m_drawMask = true;
    bool m_drawObjects = true;
    bool m_drawZ = false;
    double m_opacity = 1;
    ColorGradient m_gradient;
    ColorRange m_colorRange;
    QStringList m_processingLog;
    QString m_fileName;
    bool m_saved = false;
    bool m_loading = false;
    bool m_editMode = false;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(QSciImage::Parts)
