#include "toolpanelstate.h"

#include "core/base/tokencodec.h"
#include "core/settings/options.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QSpinBox>

namespace {

bool takesPart(const QWidget* widget)
{
    const QString name = widget->objectName();
    return !name.isEmpty() && !name.startsWith(QLatin1String("qt_"));
}

template <typename Visit> void forEachNamed(const QWidget* panel, Visit visit)
{
    const QList<QWidget*> widgets = panel->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        if (takesPart(widget))
            visit(widget);
    }
}

} // namespace

QString ToolPanelState::capture(const QWidget* panel)
{
    QList<QPair<QString, QString>> pairs;
    forEachNamed(panel, [&pairs](QWidget* widget) {
        QString value;
        if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            if (!button->isCheckable())
                return;
            value = button->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
        } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
            value = QString::number(combo->currentIndex());
        } else if (auto* spin = qobject_cast<QSpinBox*>(widget)) {
            value = QString::number(spin->value());
        } else if (auto* real = qobject_cast<QDoubleSpinBox*>(widget)) {
            value = Options::formatReal(real->value());
        } else if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
            value = edit->text();
        } else {
            return;
        }
        pairs.append({ widget->objectName(), value });
    });
    return TokenCodec::encodePairs(pairs);
}

void ToolPanelState::restore(QWidget* panel, const QString& state)
{
    const QHash<QString, QString> values = TokenCodec::decodeMap(state);
    forEachNamed(panel, [&values](QWidget* widget) {
        const auto found = values.constFind(widget->objectName());
        if (found == values.constEnd())
            return;
        const QString& value = *found;
        if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            if (button->isCheckable())
                button->setChecked(value == QLatin1String("1"));
        } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
            bool ok = false;
            const int index = value.toInt(&ok);
            if (ok && index >= 0 && index < combo->count())
                combo->setCurrentIndex(index);
        } else if (auto* spin = qobject_cast<QSpinBox*>(widget)) {
            bool ok = false;
            const int number = value.toInt(&ok);
            if (ok)
                spin->setValue(number);
        } else if (auto* real = qobject_cast<QDoubleSpinBox*>(widget)) {
            bool ok = false;
            const double number = value.toDouble(&ok);
            if (ok)
                real->setValue(number);
        } else if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
            edit->setText(value);
        }
    });
}

void ToolPanelState::watch(QWidget* panel, const std::function<void()>& changed)
{
    forEachNamed(panel, [&](QWidget* widget) {
        if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            if (button->isCheckable())
                QObject::connect(button, &QAbstractButton::toggled, panel, changed);
        } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
            QObject::connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), panel, changed);
        } else if (auto* spin = qobject_cast<QSpinBox*>(widget)) {
            QObject::connect(spin, QOverload<int>::of(&QSpinBox::valueChanged), panel, changed);
        } else if (auto* real = qobject_cast<QDoubleSpinBox*>(widget)) {
            QObject::connect(real, QOverload<double>::of(&QDoubleSpinBox::valueChanged), panel, changed);
        } else if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
            QObject::connect(edit, &QLineEdit::textChanged, panel, changed);
        }
    });
}
