// Measures images in one call each, with the figures of the command line, and writes a table of UTF-8 text:
//
//     cscript //nologo measure_table.js TABLE IMAGE...
var FSM_Create = 1;

var helper = new ActiveXObject("Orlix.VBHelper");
var table = helper.OpenFileStream(WScript.Arguments.Item(0), FSM_Create);
helper.WriteText(table, "mean,deviation,median,dip,threshold,dark,pixels,x,y\n");
for (var i = 1; i < WScript.Arguments.Count(); ++i) {
    var measured = helper.MeasureFile(WScript.Arguments.Item(i));
    helper.WriteText(table, [measured.GrayAverage, measured.GrayStandardDeviation, measured.GrayMedian, measured.Dip,
                             measured.Threshold, measured.DarkFraction, measured.PhasePixels, measured.PhaseXCentroid,
                             measured.PhaseYCentroid].join(",") + "\n");
}
