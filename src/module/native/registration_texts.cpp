#include "module/native/registration_texts.hpp"

#include <stdexcept>

#include "module/registration.hpp"

namespace orlix {

std::string_view RegistrationText(WORD script) {
    for (const EmbeddedScript* embedded = kEmbeddedScripts; embedded->number; ++embedded)
        if (embedded->number == script) return embedded->text;
    throw std::out_of_range("no registration script of this number");
}

}  // namespace orlix
