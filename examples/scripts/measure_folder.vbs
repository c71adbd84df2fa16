' Measures the PNG, TIFF and BMP images of a folder: grey levels, and the dark fraction by an automatic threshold.
'
'     cscript //nologo measure_folder.vbs FOLDER > measured.csv
Option Explicit
Dim files, file, image, grey, level, dark

Set files = CreateObject("Scripting.FileSystemObject")
WScript.Echo "image,width,height,mean,deviation,level,dark"
For Each file In files.GetFolder(WScript.Arguments(0)).Files
    Select Case LCase(files.GetExtensionName(file.Name))
    Case "png", "tif", "tiff", "bmp"
        Set image = CreateObject("Orlix.Image")
        image.CreateFromFile file.Path
        Set grey = image.GrayMeasurements
        level = image.Histogram.AutoThresholdMinimizeVariance(0, 0)
        Set dark = image.Threshold(0, level)
        WScript.Echo """" & file.Name & """," & image.Width & "," & image.Height & "," & grey.GrayAverage & "," & _
            grey.GrayStandardDeviation & "," & level & "," & dark.PixelCount / (image.Width * image.Height)
    End Select
Next
