// Warnings tell the user why a valid result may be doubtful. They are members of the result's document and appear in
// all its forms: text, JSON, a column of CSV, reports. They do not change the exit code.
#pragma once

#include "document.hpp"

#include <string>
#include <string_view>

namespace tool {

// Appends {code, message} to the document's list "warnings". The code is for programs: words in lower case with
// hyphens, which stay the same if the message changes. The message is for people: a sentence without a full stop, with
// the numbers that matter.
void Warn(Json& document, std::string_view code, const std::string& message);

const Json& Warnings(const Json& document);         // the list; empty if there are no warnings
std::string WarningsText(const Json& document);     // lines of the block about one image, see TextLine; often empty
std::string WarningsSection(const Json& document);  // a section of an HTML page; often empty
std::string WarningsCell(const Json& document);     // the lines below a name in an HTML table

}  // namespace tool
