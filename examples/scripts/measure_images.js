// Measures images: grey levels, and the dark fraction by an automatic threshold.
//
//     cscript //nologo measure_images.js IMAGE... > measured.csv
WScript.Echo("image,width,height,mean,deviation,level,dark");
for (var i = 0; i < WScript.Arguments.Count(); ++i) {
    var path = WScript.Arguments.Item(i);
    var image = new ActiveXObject("Orlix.Image");
    image.CreateFromFile(path);
    var grey = image.GrayMeasurements;
    var level = image.Histogram.AutoThresholdMinimizeVariance(0, 0);
    var dark = image.Threshold(0, level);
    WScript.Echo(['"' + path.split("\\").pop() + '"', image.Width, image.Height, grey.GrayAverage,
                  grey.GrayStandardDeviation, level, dark.PixelCount / (image.Width * image.Height)].join(","));
}
