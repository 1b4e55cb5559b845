// 4x4 matrices, column-major as WebGL expects them.
var Mat4 = {
    identity: function () {
        return [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1];
    },
    multiply: function (a, b) {
        var out = new Array(16);
        for (var col = 0; col < 4; ++col) {
            for (var row = 0; row < 4; ++row) {
                var sum = 0;
                for (var k = 0; k < 4; ++k)
                    sum += a[k * 4 + row] * b[col * 4 + k];
                out[col * 4 + row] = sum;
            }
        }
        return out;
    },
    rotationX: function (degrees) {
        var r = degrees * Math.PI / 180, c = Math.cos(r), s = Math.sin(r);
        return [1, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 0, 0, 0, 1];
    },
    rotationZ: function (degrees) {
        var r = degrees * Math.PI / 180, c = Math.cos(r), s = Math.sin(r);
        return [c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1];
    },
    scaling: function (x, y, z) {
        return [x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1];
    },
    translation: function (x, y, z) {
        return [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1];
    },
    // The point (x, y, z) through m; returns [x, y, z] (no perspective divide: the views are orthographic).
    apply: function (m, x, y, z) {
        return [m[0] * x + m[4] * y + m[8] * z + m[12], m[1] * x + m[5] * y + m[9] * z + m[13],
            m[2] * x + m[6] * y + m[10] * z + m[14]];
    }
};
