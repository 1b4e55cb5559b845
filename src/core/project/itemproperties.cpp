#include "itemproperties.h"

ItemProperties ItemProperties::of(const QSciImage& item)
{
    ItemProperties p;
    p.name = item.name();
    p.drawImage = item.drawImageInSciPaint();
    p.drawMask = item.drawMaskInSciPaint();
    p.drawObjects = item.drawObjectsInSciPaint();
    p.drawZ = item.drawZInSciPaint();
    p.opacity = item.opacity();
    p.position = QPoint(item.left(), item.top());
    p.displayElements = item.displayElements();
    p.sciValues = item.sciValues();
    p.zCalibrateMultiply = item.zCalibrateMultiply();
    p.zCalibrateAdd = item.zCalibrateAdd();
    p.abstractText = item.abstractText();
    p.instrumentHeader = item.instrumentHeader();
    p.textLines = item.textLines();
    p.processingLog = item.processingLog();
    return p;
}

void ItemProperties::applyTo(QSciImage& item) const
{
    item.setName(name);
    item.setDrawSwitches(drawImage, drawMask, drawObjects, drawZ);
    item.setOpacity(opacity);
    item.setPosition(position.x(), position.y());
    if (!displayElements.isEmpty() && displayElements != item.displayElements())
        item.setDisplayElements(displayElements);
    item.setSciValues(sciValues);
    item.setZCalibration(zCalibrateMultiply, zCalibrateAdd);
    item.setAbstractText(abstractText);
    item.setInstrumentHeader(instrumentHeader);
    item.setTextLines(textLines);
    item.setProcessingLog(processingLog);
}

bool ItemProperties::operator==(const ItemProperties& o) const
{
    return name == o.name && drawImage == o.drawImage && drawMask == o.drawMask && drawObjects == o.drawObjects
        && drawZ == o.drawZ && opacity == o.opacity && position == o.position && displayElements == o.displayElements
        && sciValues == o.sciValues && zCalibrateMultiply == o.zCalibrateMultiply && zCalibrateAdd == o.zCalibrateAdd
        && abstractText == o.abstractText && instrumentHeader == o.instrumentHeader && textLines == o.textLines
        && processingLog == o.processingLog;
}
