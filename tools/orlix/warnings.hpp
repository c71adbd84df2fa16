// What a user has to know about a result that is given all the same. Warnings are members of the result's document and
// appear in all its forms: the text, JSON, a column of CSV, the reports. They do not change the exit code.
#pragma once

#include "document.hpp"

#include <string>
#include <string_view>

namespace tool {

// Appends {code, message} to the document's list "warnings". The code is for programs: words of small letters with
// hyphens, which stay when the message changes. The message is a sentence for people without a full stop, and names its
// numbers.
void Warn(Json& document, std::string_view code, const std::string& message);

const Json& Warnings(const Json& document);         // the list; an empty one when there is none
std::string WarningsText(const Json& document);     // lines of the block about one image, see TextLine; mostly empty
std::string WarningsSection(const Json& document);  // of a page in HTML; mostly empty
std::string WarningsCell(const Json& document);     // the same below a name in a table

}  // namespace tool
