// Takes uneven lighting out of an image: subtracts a plane that fits at least half of the pixels, and saves the result.
//
//     cscript //nologo flatten.js IMAGE RESULT
var image = new ActiveXObject("Orlix.Image");
image.CreateFromFile(WScript.Arguments.Item(0));
var plane = image.RobustPlanarFit(0.5);
WScript.Echo("slope " + plane.Alpha + " across, " + plane.Beta + " down, grey levels a pixel");
image.CorrectPlanar(plane);
image.Description = "flattened";
image.SaveToFile(WScript.Arguments.Item(1));
