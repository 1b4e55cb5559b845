#include "itemdecoration.h"

#include "core/items/qsciimage.h"

DisplayDecoration::Source ItemDecoration::sourceOf(const QSciImage& item)
{
    DisplayDecoration::Source source;
    const QSciImage::SciValues& values = item.sciValues();
    source.size = item.size();
    source.title = item.name();
    source.xOffset = values.offsetX;
    source.yOffset = values.offsetY;
    source.xSize = values.sizeX;
    source.ySize = values.sizeY;
    source.xUnit = values.xUnit;
    source.yUnit = values.yUnit;
    source.zUnit = values.zUnit;
    item.displayRange(&source.zMin, &source.zMax);
    source.gradient = item.colorGradient();
    return source;
}

DisplayDecoration ItemDecoration::of(const QSciImage& item)
{
    return of(item, DisplayElements::fromMap(item.displayElements()));
}

DisplayDecoration ItemDecoration::of(const QSciImage& item, const DisplayElements& elements)
{
    return DisplayDecoration(elements, sourceOf(item));
}

DisplayElements ItemDecoration::figureElements(const QSciImage& item)
{
    DisplayElements elements = DisplayElements::fromMap(item.displayElements());
    if (!elements.anyShown())
        elements.showFigureSet();
    return elements;
}

QImage ItemDecoration::shownPicture(const QSciImage& item)
{
    return item.drawZInSciPaint() ? item.zPicture() : item.picture();
}

QImage ItemDecoration::decoratedPicture(const QSciImage& item)
{
    return decoratedPicture(item, shownPicture(item), DisplayElements::fromMap(item.displayElements()));
}

QImage ItemDecoration::decoratedPicture(const QSciImage& item, const QImage& picture, const DisplayElements& elements)
{
    return of(item, elements).render(picture);
}
