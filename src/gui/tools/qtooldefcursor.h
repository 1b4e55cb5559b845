#pragma once

#include "qtool.h"

/** The default pointer: the view moves and selects items itself, so none of the three operations acts. */
class QToolDefCursor final : public QTool {
    Q_OBJECT

public:
    explicit QToolDefCursor(QWidget* parent = nullptr);
};
