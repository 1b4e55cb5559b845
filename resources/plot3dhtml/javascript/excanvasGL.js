// Canvas support check: a view without a 2D canvas gets a line of text instead of a blank page.
var CanvasSupport = {
    context2d: function (canvas) {
        if (!canvas || !canvas.getContext)
            return null;
        try {
            return canvas.getContext("2d");
        } catch (e) {
            return null;
        }
    },
    report: function (container, text) {
        var note = document.createElement("div");
        note.className = "surfacePlotMessage";
        note.appendChild(document.createTextNode(text));
        container.appendChild(note);
    }
};
