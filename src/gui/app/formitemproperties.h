#pragma once

#include "core/project/itemproperties.h"

#include <QDialog>
#include <QPair>
#include <QStringList>
#include <QVector>

class NumberField;
class QCheckBox;
class QDoubleSpinBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QStackedWidget;
class QTableWidget;

/**
 * Shows and edits the properties of one item, as "Display properties" (name, drawing switches, opacity,
 * position, display elements) or "Advanced properties" (calibration, z calibration, abstract, header lines, text
 * lines). It edits a copy: after exec() returned Accepted the caller hands properties() to
 * ItemOperations::setProperties, which records the item for undo. Values left alone come back exactly.
 */
class FormItemProperties final : public QDialog {
    Q_OBJECT

public:
    enum class Mode { Display, Advanced };

    explicit FormItemProperties(QWidget* parent = nullptr);

    /** Loads @p item's values (only read) and shows the page of @p mode. */
    void setItem(const QSciImage& item, Mode mode);
    void setProperties(const ItemProperties& properties, Mode mode);
    Mode mode() const { return m_mode; }
    /** The loaded values with the user's edits. */
    ItemProperties properties() const;

private:
    QWidget* buildDisplayPage();
    QWidget* buildAdvancedPage();
    NumberField* numberField(const char* objectName);
    void updateOk();
    void addHeaderLine();
    void removeHeaderLines();
    void addTextLine();
    void removeTextLines();

    Mode m_mode = Mode::Display;
    ItemProperties m_loaded;
    double m_opacity = 1;
    QStackedWidget* m_pages = nullptr;
    QPushButton* m_ok = nullptr;

    QLineEdit* m_name = nullptr;
    QCheckBox* m_drawImage = nullptr;
    QCheckBox* m_drawMask = nullptr;
    QCheckBox* m_drawObjects = nullptr;
    QCheckBox* m_drawZ = nullptr;
    QDoubleSpinBox* m_opacityBox = nullptr;
    QSpinBox* m_left = nullptr;
    QSpinBox* m_top = nullptr;
    /** Display element switches, each with the keys it turns on and off together. */
    QVector<QPair<QCheckBox*, QStringList>> m_elements;

    NumberField* m_offsetX = nullptr;
    NumberField* m_offsetY = nullptr;
    NumberField* m_sizeX = nullptr;
    NumberField* m_sizeY = nullptr;
    NumberField* m_xUnitPerPixel = nullptr;
    NumberField* m_yUnitPerPixel = nullptr;
    QLineEdit* m_xUnit = nullptr;
    QLineEdit* m_yUnit = nullptr;
    QLineEdit* m_zUnit = nullptr;
    NumberField* m_zMultiply = nullptr;
    NumberField* m_zAdd = nullptr;
    QPlainTextEdit* m_abstract = nullptr;
    QTableWidget* m_header = nullptr;
    QListWidget* m_textLines = nullptr;
    QListWidget* m_processingLog = nullptr;
    QVector<NumberField*> m_numbers;
};
