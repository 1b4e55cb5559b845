#pragma once

#include <QFrame>

class QLabel;

/** The strip under the collection tabs that describes the item under the cursor. */
class ItemInfoWidget final : public QFrame {
    Q_OBJECT

public:
    explicit ItemInfoWidget(QWidget* parent = nullptr);

    /** Shows @p text as the description; an empty text leaves only the caption. */
    void setInfo(const QString& text);

private:
    QLabel* m_info;
};
