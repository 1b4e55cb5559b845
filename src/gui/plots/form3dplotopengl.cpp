#include "form3dplotopengl.h"

#include "core/items/qsciimage.h"

#include <QMouseEvent>
#include <QOpenGLShaderProgram>
#include <QWheelEvent>
#include <cmath>

namespace {

const char* vertexShader = "attribute highp vec4 posAttr;\n"
                           "attribute lowp vec4 colAttr;\n"
                           "varying lowp vec4 col;\n"
                           "uniform highp mat4 matrix;\n"
                           "void main() {\n"
                           "   col = colAttr;\n"
                           "   gl_Position = matrix * posAttr;\n"
                           "}\n";

const char* fragmentShader = "varying lowp vec4 col;\n"
                             "void main() {\n"
                             "   gl_FragColor = col;\n"
                             "}\n";

} // namespace

form3dplotOpenGL::form3dplotOpenGL(const QSciImage& item, QWidget* parent)
    : QOpenGLWidget(parent)
    , m_gradient(item.colorGradient())
{
    setObjectName(QStringLiteral("form3dplotOpenGL"));
    setWindowFlag(Qt::Window);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("3D OpenGL plot") + QStringLiteral(" - ") + item.name());
    resize(800, 600);
    // The grid wants rows from the top; the item keeps columns from the bottom.
    const int w = item.width(), h = item.height();
    QVector<double> rows(qsizetype(w) * h);
    const double* z = item.zData();
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y)
            rows[qsizetype(h - 1 - y) * w + x] = z[qsizetype(x) * h + y];
    m_grid = SurfaceGrid::reduce(rows.constData(), w, h, MaxSide, MaxSide);
}

form3dplotOpenGL::~form3dplotOpenGL()
{
    makeCurrent();
    m_positions.destroy();
    m_colours.destroy();
    m_indices.destroy();
    delete m_program;
    doneCurrent();
}

void form3dplotOpenGL::buildMesh(QVector<float>* positions, QVector<float>* colours, QVector<quint32>* indices) const
{
    const int cols = m_grid.columns, rows = m_grid.rows;
    double low = qInf(), high = -qInf();
    for (double v : m_grid.z) {
        if (std::isfinite(v)) {
            low = std::min(low, v);
            high = std::max(high, v);
        }
    }
    if (!(low <= high))
        low = 0, high = 1;
    const double range = high > low ? high - low : 1;
    const float longest = float(std::max({ cols - 1, rows - 1, 1 }));
    positions->resize(qsizetype(cols) * rows * 3);
    colours->resize(qsizetype(cols) * rows * 3);
    // Light from the upper left front, so that slopes read as relief.
    const QVector3D light = QVector3D(-0.4f, 0.5f, 1.0f).normalized();
    const auto height = [&](int c, int r) {
        const double v = m_grid.at(std::clamp(c, 0, cols - 1), std::clamp(r, 0, rows - 1));
        return std::isfinite(v) ? float((v - low) / range * 0.4 - 0.2) : -0.2f;
    };
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < cols; ++c) {
            const qsizetype i = (qsizetype(r) * cols + c) * 3;
            const float x = (c - (cols - 1) / 2.0f) / longest, y = ((rows - 1) / 2.0f - r) / longest;
            (*positions)[i] = x;
            (*positions)[i + 1] = y;
            (*positions)[i + 2] = height(c, r);
            const QVector3D normal = QVector3D((height(c - 1, r) - height(c + 1, r)) * longest / 2,
                (height(c, r + 1) - height(c, r - 1)) * longest / 2, 1)
                                         .normalized();
            const float shade = 0.55f + 0.45f * std::max(0.0f, QVector3D::dotProduct(normal, light));
            const QRgb rgb = m_gradient.colorAt(m_grid.at(c, r), low, high);
            (*colours)[i] = qRed(rgb) / 255.0f * shade;
            (*colours)[i + 1] = qGreen(rgb) / 255.0f * shade;
            (*colours)[i + 2] = qBlue(rgb) / 255.0f * shade;
        }
    }
    indices->clear();
    indices->reserve(qsizetype(std::max(0, cols - 1)) * std::max(0, rows - 1) * 6);
    for (int r = 0; r + 1 < rows; ++r) {
        for (int c = 0; c + 1 < cols; ++c) {
            const quint32 a = quint32(r * cols + c), b = a + 1, d = a + quint32(cols), e = d + 1;
            *indices << a << d << b << b << d << e;
        }
    }
}

void form3dplotOpenGL::initializeGL()
{
    initializeOpenGLFunctions();
    m_program = new QOpenGLShaderProgram;
    m_program->addShaderFromSourceCode(QOpenGLShader::Vertex, QLatin1String(vertexShader));
    m_program->addShaderFromSourceCode(QOpenGLShader::Fragment, QLatin1String(fragmentShader));
    m_program->link();
    m_posAttr = m_program->attributeLocation("posAttr");
    m_colAttr = m_program->attributeLocation("colAttr");
    m_matrixUniform = m_program->uniformLocation("matrix");

    QVector<float> positions, colours;
    QVector<quint32> indices;
    buildMesh(&positions, &colours, &indices);
    m_indexCount = int(indices.size());
    for (auto [buffer, data] : { std::pair { &m_positions, &positions }, std::pair { &m_colours, &colours } }) {
        buffer->create();
        buffer->bind();
        buffer->allocate(data->constData(), int(data->size() * sizeof(float)));
    }
    m_indices.create();
    m_indices.bind();
    m_indices.allocate(indices.constData(), int(indices.size() * sizeof(quint32)));
}

void form3dplotOpenGL::paintGL()
{
    glViewport(0, 0, int(width() * devicePixelRatioF()), int(height() * devicePixelRatioF()));
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    if (!m_program || !m_program->isLinked())
        return;
    QMatrix4x4 matrix;
    const float aspect = float(width()) / std::max(1, height());
    matrix.perspective(35.0f, aspect, 0.1f, 100.0f);
    matrix.translate(0, 0, -2.4f / m_zoom);
    matrix.rotate(m_xAngle, 1, 0, 0);
    matrix.rotate(m_zAngle, 0, 0, 1);
    m_program->bind();
    m_program->setUniformValue(m_matrixUniform, matrix);
    m_positions.bind();
    m_program->enableAttributeArray(m_posAttr);
    m_program->setAttributeBuffer(m_posAttr, GL_FLOAT, 0, 3);
    m_colours.bind();
    m_program->enableAttributeArray(m_colAttr);
    m_program->setAttributeBuffer(m_colAttr, GL_FLOAT, 0, 3);
    m_indices.bind();
    glDrawElements(GL_TRIANGLES, m_indexCount, GL_UNSIGNED_INT, nullptr);
    m_program->disableAttributeArray(m_posAttr);
    m_program->disableAttributeArray(m_colAttr);
    m_program->release();
}

void form3dplotOpenGL::mousePressEvent(QMouseEvent* event)
{
    m_lastMouse = event->pos();
}

void form3dplotOpenGL::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    const QPoint delta = event->pos() - m_lastMouse;
    m_lastMouse = event->pos();
    m_zAngle += delta.x() * 0.5f;
    m_xAngle = std::clamp(m_xAngle + delta.y() * 0.5f, -180.0f, 0.0f);
    update();
}

void form3dplotOpenGL::wheelEvent(QWheelEvent* event)
{
    m_zoom = std::clamp(m_zoom * (event->angleDelta().y() > 0 ? 1.1f : 1 / 1.1f), 0.2f, 10.0f);
    update();
}
