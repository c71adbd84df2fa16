// Counts the dark particles of images, and writes a line for each particle:
//
//     cscript //nologo count_particles.js IMAGE...
var SMT_PixelCount = 1;

WScript.Echo("image,number,x,y,pixels,diameter");
for (var i = 0; i < WScript.Arguments.Count(); ++i) {
    var path = WScript.Arguments.Item(i);
    var image = new ActiveXObject("Orlix.Image");
    image.CreateFromFile(path);
    var level = image.Histogram.AutoThresholdMinimizeVariance(0, 0);
    var particles = image.Threshold(0, level).FindBlobs().Select(SMT_PixelCount, 12, 1e9);
    for (var k = 0; k < particles.Count; ++k) {
        var particle = particles.Item(k);
        WScript.Echo(['"' + path + '"', k + 1, particle.XCentroid, particle.YCentroid, particle.PixelCount,
                      2 * particle.EquivalentRadius].join(","));
    }
}
