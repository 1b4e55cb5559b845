#pragma once

#include <QDialog>

class QListWidget;

/** Asks which channels of a multi-channel file to open; all are ticked at first. */
class FormChooseChannels final : public QDialog {
    Q_OBJECT

public:
    explicit FormChooseChannels(QWidget* parent = nullptr);
    void setChannels(const QString& fileName, const QStringList& titles);
    /** Indexes of the ticked channels, in file order. */
    QList<int> chosen() const;
    /** Ticks exactly @p indexes (tests and scripts). */
    void setChosen(const QList<int>& indexes);

private:
    QListWidget* m_list = nullptr;
};
