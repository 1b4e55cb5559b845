// WebGL set-up: a context when the view offers one, and shader programs.
var WebGLSupport = {
    context: function (canvas) {
        if (!window.WebGLRenderingContext)
            return null;
        var names = ["webgl", "experimental-webgl"];
        for (var i = 0; i < names.length; ++i) {
            try {
                var gl = canvas.getContext(names[i], { preserveDrawingBuffer: true });
                if (gl)
                    return gl;
            } catch (e) {
            }
        }
        return null;
    },
    shader: function (gl, type, source) {
        var shader = gl.createShader(type);
        gl.shaderSource(shader, source);
        gl.compileShader(shader);
        if (!gl.getShaderParameter(shader, gl.COMPILE_STATUS))
            return null;
        return shader;
    },
    program: function (gl, vertexSource, fragmentSource) {
        var vs = WebGLSupport.shader(gl, gl.VERTEX_SHADER, vertexSource);
        var fs = WebGLSupport.shader(gl, gl.FRAGMENT_SHADER, fragmentSource);
        if (!vs || !fs)
            return null;
        var program = gl.createProgram();
        gl.attachShader(program, vs);
        gl.attachShader(program, fs);
        gl.linkProgram(program);
        if (!gl.getProgramParameter(program, gl.LINK_STATUS))
            return null;
        return program;
    }
};
