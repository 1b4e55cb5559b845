#pragma once

#include <QList>
#include <QPointF>
#include <QString>

class Project;
class QSciImage;

/**
 * Voronoi cells around the objects of an item, one cell per object around its centroid of area: as a new item
 * beside it (z = the object's number or the cell's area) or as the cell borders in the item's mask. One history
 * transaction; the window and velmora-cli both call this.
 */
class VoronoiOperations final {
public:
    enum class Output { CellNumber, CellArea, MaskBorders };

    struct Cell {
        int objectNumber = 0; ///< the position in the object list when the record has no number (read from a file)
        QPointF centre; ///< in points, rows from the bottom
        qint64 points = 0;
        double area = 0; ///< in the item's x unit times y unit
    };

    /**
     * Builds the cells of @p item's objects and stores them as @p output says; @p cells receives them in the
     * order of the objects, @p made the new item (null for the mask). False with the message, nothing changed,
     * when the item holds no object.
     */
    static bool construct(Project& project, QSciImage* item, Output output, QList<Cell>* cells = nullptr,
        QString* message = nullptr, QSciImage** made = nullptr);

    /** The unit of a cell area: "nm^2", or "x*y" for differing units; empty when the item has none. */
    static QString areaUnit(const QSciImage& item);
    static QString noObjectsText();
};
