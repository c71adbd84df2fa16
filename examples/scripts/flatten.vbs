' Takes uneven lighting out of an image: subtracts a plane that fits at least half of the pixels, and saves the result.
'
'     cscript //nologo flatten.vbs IMAGE RESULT
Option Explicit
Dim image, plane

Set image = CreateObject("Orlix.Image")
image.CreateFromFile WScript.Arguments(0)
Set plane = image.RobustPlanarFit(0.5)
WScript.Echo "slope " & plane.Alpha & " across, " & plane.Beta & " down, grey levels a pixel"
image.CorrectPlanar plane
image.Description = "flattened"
image.SaveToFile WScript.Arguments(1)
