#include "qtoollatextext.h"

#include "latexrenderer.h"
#include "toolcolorbuttons.h"

#include "core/project/itemoperations.h"

#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

QToolLatexText::QToolLatexText(QWidget* parent)
    : QTool(QStringLiteral("LATEX_TEXT"), parent)
    , m_formula(new QLineEdit(QStringLiteral("z(x) = \\sum_{n} a_n \\cos\\left(\\frac{2\\pi n x}{L}\\right)")))
    , m_size(new QSpinBox)
    , m_preview(new QLabel)
    , m_status(new QLabel)
    , m_delay(new QTimer(this))
{
    m_formula->setObjectName(QStringLiteral("leFormula"));
    m_formula->setPlaceholderText(tr("LaTeX math, e.g. \\frac{a}{b}"));
    m_size->setObjectName(QStringLiteral("sbFormulaSize"));
    m_size->setRange(6, 400);
    m_size->setValue(20);
    m_size->setSuffix(tr(" points"));
    m_preview->setObjectName(QStringLiteral("lbFormulaPreview"));
    m_preview->setMinimumHeight(40);
    m_preview->setAlignment(Qt::AlignCenter);
    m_status->setObjectName(QStringLiteral("lbFormulaStatus"));
    m_status->setWordWrap(true);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new ToolColorButtons(this));
    layout->addWidget(new QLabel(tr("Formula:")));
    layout->addWidget(m_formula);
    layout->addWidget(new QLabel(tr("Font size:")));
    layout->addWidget(m_size);
    layout->addWidget(m_preview);
    layout->addWidget(m_status);
    layout->addStretch(1);

    // Rendering starts a web page: wait until the typing pauses.
    m_delay->setSingleShot(true);
    m_delay->setInterval(400);
    connect(m_delay, &QTimer::timeout, this, &QToolLatexText::renderNow);
    connect(m_formula, &QLineEdit::textChanged, m_delay, QOverload<>::of(&QTimer::start));
    connect(m_size, QOverload<int>::of(&QSpinBox::valueChanged), m_delay, QOverload<>::of(&QTimer::start));
    connect(this, &QTool::colorsChanged, m_delay, QOverload<>::of(&QTimer::start));
    watchPanel();
}

QString QToolLatexText::formula() const
{
    return m_formula->text();
}

void QToolLatexText::setFormula(const QString& formula)
{
    m_formula->setText(formula);
}

void QToolLatexText::renderNow()
{
    m_delay->stop();
    m_image = QImage();
    m_status->setText(tr("Rendering..."));
    // Made at the first formula: a web page is no small thing, and most sessions place none.
    if (!m_renderer) {
        m_renderer = new LatexRenderer(this);
        connect(m_renderer, &LatexRenderer::rendered, this, &QToolLatexText::onRendered);
        connect(m_renderer, &LatexRenderer::failed, this, &QToolLatexText::onFailed);
    }
    m_renderer->render(formula(), leftColor(), m_size->value());
}

void QToolLatexText::onRendered(const QString& rendered, const QImage& image)
{
    if (rendered != formula())
        return; // a newer text is on its way
    m_image = image;
    // Light ink needs a dark ground to be seen in the panel.
    m_preview->setAutoFillBackground(true);
    QPalette palette = m_preview->palette();
    palette.setColor(QPalette::Window, leftColor().lightness() > 160 ? QColor(60, 60, 60) : QColor(Qt::white));
    m_preview->setPalette(palette);
    m_preview->setPixmap(
        QPixmap::fromImage(image.width() > 240 ? image.scaledToWidth(240, Qt::SmoothTransformation) : image));
    m_status->setText(tr("Drag it onto an item; it is placed where the button is released."));
    emit renderingFinished(true);
}

void QToolLatexText::onFailed(const QString& failed, const QString& message)
{
    if (failed != formula())
        return;
    m_image = QImage();
    m_preview->clear();
    m_status->setText(message);
    emit renderingFinished(false);
}

void QToolLatexText::beginDrag(const QPoint& point, Qt::MouseButton)
{
    if (!item())
        return;
    if (m_image.isNull() && !(m_renderer && m_renderer->isBusy()))
        renderNow();
    m_at = point;
    startDrag(point);
}

void QToolLatexText::updateDrag(const QPoint& point)
{
    m_at = point;
    setNeedsRedraw();
}

void QToolLatexText::endDrag(const QPoint& point, Qt::MouseButton)
{
    if (isDragActive())
        m_at = point;
    finishDrag();
    if (m_image.isNull()) {
        emit statusMessageRequested(tr("The formula is not rendered yet."));
        return;
    }
    const QImage image = m_image;
    const QPoint at = m_at;
    const QString source = QLatin1Char('$') + formula() + QLatin1Char('$');
    // Like every picture edit, a formula on an item that shows its z-matrix switches it to its picture.
    const bool showedZ = item() && item()->drawZInSciPaint();
    QSciImage::Parts parts = QSciImage::PicturePart | QSciImage::HeaderPart;
    if (showedZ)
        parts |= QSciImage::DisplayPart;
    applyToItem(tr("LaTeX text"), parts, [&](QSciImage& target) {
        {
            QPainter painter(&target.pictureRef());
            painter.drawImage(at, image);
        }
        target.setTextLines(target.textLines() + QStringList { source });
        if (target.drawZInSciPaint())
            target.setDrawSwitches(true, target.drawMaskInSciPaint(), target.drawObjectsInSciPaint(), false);
        target.notifyChanged(QSciImage::PicturePart);
    });
    if (showedZ && item() && !item()->drawZInSciPaint())
        emit statusMessageRequested(ItemOperations::pictureShownText({ item() }));
}

void QToolLatexText::drawPreview(QPainter& painter)
{
    if (!m_image.isNull())
        painter.drawImage(m_at, m_image);
}
