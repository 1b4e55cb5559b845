#pragma once

#include "core/display/colorgradient.h"
#include "core/plots/surfacegrid.h"

#include <QMatrix4x4>
#include <QOpenGLBuffer>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPoint>

class QOpenGLShaderProgram;
class QSciImage;

/**
 * The native surface window for large items: the z-matrix as a lit, coloured triangle mesh drawn by OpenGL,
 * turned by dragging and zoomed by the wheel. Items above MaxSide points a side are reduced by block means first,
 * so that a 4096 x 4096 item stays interactive.
 */
class form3dplotOpenGL final : public QOpenGLWidget, protected QOpenGLFunctions {
    Q_OBJECT

public:
    static constexpr int MaxSide = 512;

    explicit form3dplotOpenGL(const QSciImage& item, QWidget* parent = nullptr);
    ~form3dplotOpenGL() override;

    const SurfaceGrid& grid() const { return m_grid; }
    /** The triangles of the mesh, once the window was shown. */
    int triangleCount() const { return m_indexCount / 3; }

protected:
    void initializeGL() override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void buildMesh(QVector<float>* positions, QVector<float>* colours, QVector<quint32>* indices) const;

    SurfaceGrid m_grid;
    ColorGradient m_gradient;
    QOpenGLShaderProgram* m_program = nullptr;
    QOpenGLBuffer m_positions { QOpenGLBuffer::VertexBuffer };
    QOpenGLBuffer m_colours { QOpenGLBuffer::VertexBuffer };
    QOpenGLBuffer m_indices { QOpenGLBuffer::IndexBuffer };
    int m_indexCount = 0;
    int m_posAttr = -1;
    int m_colAttr = -1;
    int m_matrixUniform = -1;
    float m_xAngle = -60;
    float m_zAngle = -30;
    float m_zoom = 1;
    QPoint m_lastMouse;
};
