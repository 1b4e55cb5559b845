#pragma once

#include "qtoolpathshape.h"

/** A smooth curve through clicked points. */
class QToolDrawCurve final : public QToolPathShape {
    Q_OBJECT

public:
    explicit QToolDrawCurve(QWidget* parent = nullptr);
};
