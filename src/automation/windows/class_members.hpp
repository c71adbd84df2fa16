// The names under which scripts reach the methods and properties of a class.
#pragma once

#include <orlix/orlix.h>

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "automation/windows/contract_rows.hpp"

namespace orlix::automation {

struct Member {
    DISPID id;
    const Method* methods[3];  // by Access; a property that cannot be set has no kPut
};

// All methods of the class's interfaces that scripts can call. Notes:
//  (1) Inherited methods are members once. A name that two interfaces of the class have belongs to the one that the
//      class lists first; the other one's member is Interface_Name.
//  (2) A member that a dispatch interface of the contract numbers keeps that number; Item is DISPID_VALUE and _NewEnum
//      DISPID_NEWENUM. All other numbers are made of the interface's identifier and the method's slot, so they stay
//      when the contract grows.
class ClassMembers {
public:
    // The interfaces in the order in which the class lists them; those that the contract does not have are skipped.
    explicit ClassMembers(std::span<const IID* const> interfaces);

    bool empty() const noexcept { return members_.empty(); }
    const Member* Find(std::string_view smallLetters) const noexcept;
    const Member* Find(DISPID id) const noexcept;
    // The dispatch interfaces that have the class's members: that of the type library, and that of the contract which
    // numbers some of them. Null where there is none.
    const ScriptClass* scriptClass() const noexcept { return class_; }
    const Dispinterface* dispinterface() const noexcept { return dispinterface_; }

private:
    void Add(const Interface& row);
    void Add(const Interface& row, const Method& method);

    std::map<std::string, Member, std::less<>> members_;  // by their names in small letters
    std::map<DISPID, const Member*> byId_;
    std::vector<const Interface*> of_;  // the interfaces whose methods are members
    const ScriptClass* class_ = nullptr;
    const Dispinterface* dispinterface_ = nullptr;
};

}  // namespace orlix::automation
