// What a script learns when a call fails: a text that names the method.
//
//     cscript //nologo errors.js
var image = new ActiveXObject("Orlix.Image");
var calls = [function () { image.CreateFromFile("missing.png"); }, function () { image.Invert(); }];
for (var i = 0; i < calls.length; ++i) {
    try {
        calls[i]();
    } catch (failure) {
        WScript.Echo("failed: " + failure.message);
    }
}
