// Six colours spread evenly over the z range, repeated colourPeriods times, as the item's gradient shows them.
function ColourGradient(colours, periods) {
    this.colours = colours;
    this.periods = periods > 0 ? periods : 1;
}

ColourGradient.prototype.colourAt = function (t) {
    if (isNaN(t))
        return { red: 255, green: 0, blue: 255 };
    t = Math.max(0, Math.min(1, t)) * this.periods;
    if (t >= this.periods)
        t = 1;
    else
        t = t - Math.floor(t);
    var last = this.colours.length - 1;
    var position = t * last;
    var i = Math.min(last - 1, Math.floor(position));
    var f = position - i;
    var a = this.colours[i], b = this.colours[i + 1];
    return { red: Math.round(a.red + (b.red - a.red) * f), green: Math.round(a.green + (b.green - a.green) * f),
        blue: Math.round(a.blue + (b.blue - a.blue) * f) };
};
