#include "files/tiff_texts.hpp"

#include <algorithm>
#include <utility>

namespace orlix {

void KeepTexts(const TiffDirectory& directory, ImageProperties& kept) {
    for (const auto& [tag, keyword] : tiff::kTextTags) {
        WideString text = directory.Text(tag);
        const bool known = keyword == kDescriptionKeyword
                               ? kept.hasDescription
                               : std::ranges::find(kept.texts, keyword, &TextEntry::keyword) != kept.texts.end();
        if (!text.empty() && !known) kept.Keep({WideString(keyword), std::move(text)});
    }
}

}  // namespace orlix
