// The surface plot: a z grid drawn with WebGL when the view offers it, else painted on a 2D canvas, with axes,
// ticks and titles on a 2D canvas above it. Dragging rotates, the wheel zooms. Texts are only ever drawn with
// fillText, never put into the document as markup.
function SurfacePlot(container, values, numRows, numCols, options) {
    this.container = container;
    this.values = values;
    this.rows = numRows;
    this.cols = numCols;
    this.options = options;
    this.xAngle = options.xAngle;
    this.yAngle = options.yAngle;
    this.zoom = 1;
    this.gradient = new ColourGradient(options.colours, options.colourPeriods);
    container.style.width = options.width + "px";
    container.style.height = options.height + "px";
    this.prepareData();

    this.surfaceCanvas = this.makeCanvas();
    this.overlay = this.makeCanvas();
    this.gl = options.useWebGL ? WebGLSupport.context(this.surfaceCanvas) : null;
    if (this.gl && !this.setUpGL())
        this.gl = null;
    if (!this.gl) {
        // A canvas that asked for WebGL cannot give a 2D context any more: start over with a fresh one.
        container.removeChild(this.surfaceCanvas);
        container.removeChild(this.overlay);
        this.surfaceCanvas = this.makeCanvas();
        this.overlay = this.makeCanvas();
        this.context = CanvasSupport.context2d(this.surfaceCanvas);
    }
    this.overlayContext = CanvasSupport.context2d(this.overlay);
    if (!this.gl && !this.context) {
        CanvasSupport.report(container, "This view can draw neither WebGL nor a 2D canvas.");
        return;
    }
    window.surfacePlotMode = this.gl ? "webgl" : "canvas";
    this.listen();
    this.draw();
}

SurfacePlot.prototype.makeCanvas = function () {
    var canvas = document.createElement("canvas");
    canvas.width = this.options.width;
    canvas.height = this.options.height;
    this.container.appendChild(canvas);
    return canvas;
};

// Model coordinates: the grid spans at most -0.5..0.5 in x and y, keeping its aspect ratio; z spans -0.2..0.2.
SurfacePlot.prototype.prepareData = function () {
    var min = Infinity, max = -Infinity, r, c, v;
    for (r = 0; r < this.rows; ++r) {
        for (c = 0; c < this.cols; ++c) {
            v = this.values[r][c];
            if (isFinite(v)) {
                if (v < min)
                    min = v;
                if (v > max)
                    max = v;
            }
        }
    }
    if (!(min <= max)) {
        min = 0;
        max = 1;
    }
    this.zMin = min;
    this.zMax = max;
    var longest = Math.max(this.cols - 1, this.rows - 1, 1);
    this.spanX = (this.cols - 1) / longest || 1;
    this.spanY = (this.rows - 1) / longest || 1;
    this.zBottom = -0.2;
    this.zHeight = 0.4;
    this.points = new Array(this.rows);
    for (r = 0; r < this.rows; ++r) {
        var line = new Array(this.cols);
        for (c = 0; c < this.cols; ++c) {
            v = this.values[r][c];
            var t = isFinite(v) ? (max > min ? (v - min) / (max - min) : 0.5) : NaN;
            line[c] = { x: this.spanX * (c / Math.max(1, this.cols - 1) - 0.5),
                y: this.spanY * (0.5 - r / Math.max(1, this.rows - 1)), z: this.zBottom + (isNaN(t) ? 0 : t) * this.zHeight,
                t: t };
        }
        this.points[r] = line;
    }
};

// Model to pixels: x to the right, y upwards, z towards the viewer.
SurfacePlot.prototype.matrix = function () {
    var w = this.options.width, h = this.options.height;
    var scale = Math.min(w, h) * 0.55 * this.zoom;
    var m = Mat4.translation(w / 2 + this.options.xTranslation, h / 2 - this.options.yTranslation, 0);
    m = Mat4.multiply(m, Mat4.scaling(scale, scale, scale));
    m = Mat4.multiply(m, Mat4.rotationX(this.xAngle));
    return Mat4.multiply(m, Mat4.rotationZ(this.yAngle));
};

SurfacePlot.prototype.shade = function (t, normal) {
    var colour = this.gradient.colourAt(t);
    var light = this.options.light, ambient = this.options.ambient;
    var length = Math.sqrt(light.x * light.x + light.y * light.y + light.z * light.z) || 1;
    var diffuse = -(normal[0] * light.x + normal[1] * light.y + normal[2] * light.z) / length;
    diffuse = Math.max(0, diffuse) * light.brightness;
    var red = colour.red * Math.min(1.2, ambient.red + diffuse);
    var green = colour.green * Math.min(1.2, ambient.green + diffuse);
    var blue = colour.blue * Math.min(1.2, ambient.blue + diffuse);
    return [Math.min(255, Math.round(red)), Math.min(255, Math.round(green)), Math.min(255, Math.round(blue))];
};

SurfacePlot.prototype.normal = function (a, b, c) {
    var ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z, vx = c.x - a.x, vy = c.y - a.y, vz = c.z - a.z;
    var nx = uy * vz - uz * vy, ny = uz * vx - ux * vz, nz = ux * vy - uy * vx;
    var length = Math.sqrt(nx * nx + ny * ny + nz * nz) || 1;
    if (nz < 0)
        length = -length;
    return [nx / length, ny / length, nz / length];
};

// Each cell of the grid with its colour, as a quad of model points.
SurfacePlot.prototype.cells = function () {
    if (this.cellList)
        return this.cellList;
    var list = [];
    for (var r = 0; r + 1 < this.rows; ++r) {
        for (var c = 0; c + 1 < this.cols; ++c) {
            var a = this.points[r][c], b = this.points[r][c + 1], d = this.points[r + 1][c], e = this.points[r + 1][c + 1];
            if (isNaN(a.t) || isNaN(b.t) || isNaN(d.t) || isNaN(e.t))
                continue;
            var colour = this.shade((a.t + b.t + d.t + e.t) / 4, this.normal(a, d, b));
            list.push({ corners: [a, b, e, d], colour: colour });
        }
    }
    if (this.rows === 1 || this.cols === 1) {
        // A single line of data: draw each point as a small cell of its own.
        for (var i = 0; i < this.rows; ++i)
            for (var j = 0; j < this.cols; ++j)
                if (!isNaN(this.points[i][j].t))
                    list.push({ corners: [this.points[i][j]], colour: this.shade(this.points[i][j].t, [0, 0, 1]) });
    }
    this.cellList = list;
    return list;
};

SurfacePlot.prototype.draw = function () {
    var m = this.matrix();
    if (this.gl)
        this.drawGL(m);
    else
        this.drawCanvas(m);
    this.drawAxes(m);
    window.surfacePlotDrawn = (window.surfacePlotDrawn || 0) + 1;
};

SurfacePlot.prototype.drawCanvas = function (m) {
    var ctx = this.context, h = this.options.height;
    ctx.clearRect(0, 0, this.options.width, h);
    var cells = this.cells(), projected = [], i, k;
    for (i = 0; i < cells.length; ++i) {
        var corners = cells[i].corners, screen = [], depth = 0;
        for (k = 0; k < corners.length; ++k) {
            var p = Mat4.apply(m, corners[k].x, corners[k].y, corners[k].z);
            screen.push([p[0], h - p[1]]);
            depth += p[2];
        }
        projected.push({ screen: screen, depth: depth / corners.length, colour: cells[i].colour });
    }
    // Painter's algorithm: the farthest cells first.
    projected.sort(function (a, b) { return a.depth - b.depth; });
    for (i = 0; i < projected.length; ++i) {
        var cell = projected[i], style = "rgb(" + cell.colour.join(",") + ")";
        ctx.fillStyle = style;
        if (this.options.renderDataPoints || cell.screen.length === 1) {
            ctx.fillRect(cell.screen[0][0] - 1, cell.screen[0][1] - 1, 2, 2);
            continue;
        }
        ctx.strokeStyle = style;
        ctx.beginPath();
        ctx.moveTo(cell.screen[0][0], cell.screen[0][1]);
        for (k = 1; k < cell.screen.length; ++k)
            ctx.lineTo(cell.screen[k][0], cell.screen[k][1]);
        ctx.closePath();
        ctx.fill();
        // The outline hides the hair-thin gaps antialiasing leaves between neighbouring cells.
        ctx.stroke();
    }
};

SurfacePlot.prototype.setUpGL = function () {
    var gl = this.gl;
    var vertexSource = "attribute vec3 position; attribute vec3 colour; uniform mat4 matrix; varying vec3 vColour;"
        + "void main() { gl_Position = matrix * vec4(position, 1.0); gl_PointSize = 2.0; vColour = colour; }";
    var fragmentSource = "precision mediump float; varying vec3 vColour;"
        + "void main() { gl_FragColor = vec4(vColour, 1.0); }";
    this.program = WebGLSupport.program(gl, vertexSource, fragmentSource);
    if (!this.program)
        return false;
    var cells = this.cells(), positions = [], colours = [];
    var order = this.options.renderDataPoints ? [0] : [0, 1, 2, 0, 2, 3];
    for (var i = 0; i < cells.length; ++i) {
        var corners = cells[i].corners, colour = cells[i].colour;
        var use = corners.length === 1 ? [0] : order;
        for (var k = 0; k < use.length; ++k) {
            var p = corners[use[k]];
            positions.push(p.x, p.y, p.z);
            colours.push(colour[0] / 255, colour[1] / 255, colour[2] / 255);
        }
    }
    this.vertexCount = positions.length / 3;
    this.positionBuffer = gl.createBuffer();
    gl.bindBuffer(gl.ARRAY_BUFFER, this.positionBuffer);
    gl.bufferData(gl.ARRAY_BUFFER, new Float32Array(positions), gl.STATIC_DRAW);
    this.colourBuffer = gl.createBuffer();
    gl.bindBuffer(gl.ARRAY_BUFFER, this.colourBuffer);
    gl.bufferData(gl.ARRAY_BUFFER, new Float32Array(colours), gl.STATIC_DRAW);
    return true;
};

SurfacePlot.prototype.drawGL = function (m) {
    var gl = this.gl, w = this.options.width, h = this.options.height;
    // Pixels to clip space; depth reversed because WebGL keeps the smaller depth.
    var depth = Math.min(w, h) * 2 * this.zoom;
    var clip = Mat4.multiply(Mat4.translation(-1, -1, 0), Mat4.scaling(2 / w, 2 / h, -1 / depth));
    gl.viewport(0, 0, w, h);
    gl.clearColor(0, 0, 0, 0);
    gl.clear(gl.COLOR_BUFFER_BIT | gl.DEPTH_BUFFER_BIT);
    gl.enable(gl.DEPTH_TEST);
    gl.useProgram(this.program);
    gl.uniformMatrix4fv(gl.getUniformLocation(this.program, "matrix"), false, new Float32Array(Mat4.multiply(clip, m)));
    var position = gl.getAttribLocation(this.program, "position");
    gl.bindBuffer(gl.ARRAY_BUFFER, this.positionBuffer);
    gl.enableVertexAttribArray(position);
    gl.vertexAttribPointer(position, 3, gl.FLOAT, false, 0, 0);
    var colour = gl.getAttribLocation(this.program, "colour");
    gl.bindBuffer(gl.ARRAY_BUFFER, this.colourBuffer);
    gl.enableVertexAttribArray(colour);
    gl.vertexAttribPointer(colour, 3, gl.FLOAT, false, 0, 0);
    gl.drawArrays(this.options.renderDataPoints ? gl.POINTS : gl.TRIANGLES, 0, this.vertexCount);
};

SurfacePlot.prototype.font = function (size, bold, italic) {
    var style = this.options.fontStyle;
    return (italic || style === "italic" ? "italic " : "") + (bold || style === "bold" ? "bold " : "") + size + "px "
        + this.options.fontFamily;
};

SurfacePlot.prototype.drawAxes = function (m) {
    var ctx = this.overlayContext, w = this.options.width, h = this.options.height, o = this.options;
    ctx.clearRect(0, 0, w, h);
    ctx.strokeStyle = ctx.fillStyle = window.getComputedStyle(document.body).color || "#fff";
    ctx.lineWidth = 1;
    var x0 = -this.spanX / 2, x1 = this.spanX / 2, y0 = -this.spanY / 2, y1 = this.spanY / 2;
    var z0 = this.zBottom, z1 = this.zBottom + this.zHeight;
    // The axes run along the base edges that face the viewer, so that turning the surface never hides them
    // behind it: x along the nearer of the two x edges, y along the edge further right on screen, z up the
    // remaining front corner. Each axis: its start, its end, and the outward direction of its ticks and labels.
    var yEdge = Mat4.apply(m, 0, y0, z0)[2] >= Mat4.apply(m, 0, y1, z0)[2] ? y0 : y1;
    var xEdge = Mat4.apply(m, x1, 0, z0)[0] >= Mat4.apply(m, x0, 0, z0)[0] ? x1 : x0;
    var xOther = xEdge === x1 ? x0 : x1;
    var ySign = yEdge === y0 ? -1 : 1, xSign = xEdge === x1 ? 1 : -1;
    var axes = [
        { from: [x0, yEdge, z0], to: [x1, yEdge, z0], out: [0, ySign, 0] },
        { from: [xEdge, y0, z0], to: [xEdge, y1, z0], out: [xSign, 0, 0] },
        { from: [xOther, yEdge, z0], to: [xOther, yEdge, z1], out: [-0.7 * xSign, 0.7 * ySign, 0] }
    ];
    var project = function (p) {
        var s = Mat4.apply(m, p[0], p[1], p[2]);
        return [s[0], h - s[1]];
    };
    var along = function (axis, t, distance) {
        var p = [];
        for (var i = 0; i < 3; ++i)
            p.push(axis.from[i] + (axis.to[i] - axis.from[i]) * t + axis.out[i] * distance);
        return project(p);
    };
    ctx.font = this.font(o.fontSize, false, false);
    ctx.textAlign = "center";
    ctx.textBaseline = "middle";
    for (var a = 0; a < 3; ++a) {
        var axis = axes[a], start = project(axis.from), end = project(axis.to);
        ctx.beginPath();
        ctx.moveTo(start[0], start[1]);
        ctx.lineTo(end[0], end[1]);
        var ticks = o.ticks[a];
        for (var i = 0; i < ticks.length; ++i) {
            var base = along(axis, ticks[i][0], 0), tip = along(axis, ticks[i][0], 0.025);
            ctx.moveTo(base[0], base[1]);
            ctx.lineTo(tip[0], tip[1]);
        }
        ctx.stroke();
        if (o.showLabels[a]) {
            for (i = 0; i < ticks.length; ++i) {
                var at = along(axis, ticks[i][0], o.labelOffsets[a]);
                ctx.fillText(ticks[i][1], at[0], at[1]);
            }
        }
        if (o.axisTitles[a]) {
            // The vertical axis carries its title on top, clear of its tick labels.
            var titleAt = a === 2 ? project(axis.to) : along(axis, 0.5, o.labelOffsets[a] * 2.4);
            ctx.fillText(o.axisTitles[a], titleAt[0], a === 2 ? titleAt[1] - o.fontSize * 1.5 : titleAt[1]);
        }
    }
    if (o.title) {
        ctx.font = this.font(o.titleSize, o.titleBold, o.titleItalic);
        ctx.textBaseline = "top";
        ctx.fillText(o.title, w / 2, 8);
    }
};

SurfacePlot.prototype.listen = function () {
    var self = this, last = null;
    this.overlay.onmousedown = function (event) {
        last = [event.clientX, event.clientY];
        return false;
    };
    document.onmouseup = function () {
        last = null;
    };
    document.onmousemove = function (event) {
        if (!last)
            return;
        self.yAngle += (event.clientX - last[0]) * 0.5;
        self.xAngle = Math.max(-180, Math.min(0, self.xAngle + (event.clientY - last[1]) * 0.5));
        last = [event.clientX, event.clientY];
        self.draw();
    };
    this.overlay.onmousewheel = function (event) {
        self.zoom = Math.max(0.2, Math.min(8, self.zoom * (event.wheelDelta > 0 ? 1.1 : 1 / 1.1)));
        self.draw();
        return false;
    };
};

// The view's current angles, for the window to store.
SurfacePlot.prototype.angles = function () {
    return [this.xAngle, this.yAngle];
};
