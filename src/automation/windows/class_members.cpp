#include "automation/windows/class_members.hpp"

#include <algorithm>

#include "automation/windows/script_values.hpp"

namespace orlix::automation {
namespace {

bool DerivesFrom(const Interface* row, const IID& iid) noexcept {
    while (row && *row->iid != iid) row = row->base;
    return row != nullptr;
}

std::string InSmallLetters(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), SmallLetter);
    return text;
}

// Positive, and above the numbers of dispatch interfaces.
DISPID NumberOf(const Method& method) noexcept { return 0x1000000 + (method.iid->Data2 << 8) + method.slot; }

}  // namespace

ClassMembers::ClassMembers(std::span<const IID* const> interfaces) {
    for (const IID* iid : interfaces)
        for (const Interface* row : kInterfaces)
            if (*row->iid == *iid) Add(*row);
    for (const ScriptClass& row : kScriptClasses)
        if (std::is_permutation(row.interfaces.begin(), row.interfaces.end(), of_.begin(), of_.end())) class_ = &row;
    for (const Dispinterface& numbered : kDispinterfaces) {
        if (std::find(of_.begin(), of_.end(), numbered.of) == of_.end()) continue;
        dispinterface_ = &numbered;
        for (const NumberedMember& number : numbered.members) {
            const auto member = members_.find(InSmallLetters(number.name));
            if (member == members_.end()) continue;
            const auto& methods = member->second.methods;
            const Method* const method = methods[kGet] ? methods[kGet] : methods[kCall];
            if (method && DerivesFrom(numbered.of, *method->iid)) member->second.id = number.id;
        }
    }
    for (const auto& [name, member] : members_) byId_[member.id] = &member;
}

void ClassMembers::Add(const Interface& row) {
    if (std::find(of_.begin(), of_.end(), &row) != of_.end()) return;
    if (row.base) Add(*row.base);
    of_.push_back(&row);
    for (const Method& method : row.methods) Add(row, method);
}

void ClassMembers::Add(const Interface& row, const Method& method) {
    std::string name = InSmallLetters(method.name);
    if (const auto known = members_.find(name); known != members_.end()) {
        // A property's two methods may belong to an interface and one that derives from it.
        const Method* const get = known->second.methods[kGet];
        const bool isOther = method.access != kPut || !get || !DerivesFrom(&row, *get->iid);
        if (isOther) name = InSmallLetters(row.name) + '_' + name;
    }
    const DISPID id = name == "item" ? DISPID_VALUE : name == "_newenum" ? DISPID_NEWENUM : NumberOf(method);
    members_.try_emplace(name, Member{id, {}}).first->second.methods[method.access] = &method;
}

const Member* ClassMembers::Find(std::string_view smallLetters) const noexcept {
    const auto found = members_.find(smallLetters);
    return found != members_.end() ? &found->second : nullptr;
}

const Member* ClassMembers::Find(DISPID id) const noexcept {
    const auto found = byId_.find(id);
    return found != byId_.end() ? found->second : nullptr;
}

}  // namespace orlix::automation
