// A type library as text.
#pragma once

#include <orlix/client.hpp>

#include <functional>
#include <string>
#include <vector>

namespace orlix::testing {

std::string ToText(const GUID& guid);

// A type of a library, with its attributes. Methods throw Error where the library fails.
class Type {
public:
    explicit Type(ComPtr<ITypeInfo> info);
    ~Type() {
        if (info_) info_->ReleaseTypeAttr(attributes_);
    }
    Type(Type&&) noexcept = default;
    Type& operator=(Type&&) = delete;

    const TYPEATTR& attributes() const { return *attributes_; }

    // The dispatch interface that a dual interface is for scripts, and what it is for compiled clients.
    bool IsDual() const {
        return attributes_->typekind == TKIND_DISPATCH && (attributes_->wTypeFlags & TYPEFLAG_FDUAL);
    }
    Type ForCompiledClients() const { return Implemented(static_cast<UINT>(-1)); }

    std::string Name() const { return NameOf(MEMBERID_NIL); }
    std::string NameOf(MEMBERID member) const;
    std::string HelpOf(MEMBERID member) const;
    // As C++ spells it: get_Width.
    std::string MethodName(const FUNCDESC& function) const;

    // An interface's base, a class's interfaces.
    Type Implemented(UINT index) const;
    std::string ImplementedFlags(UINT index) const;  // "[default] [source] "
    Type Referred(HREFTYPE reference) const;

    std::string Describe(const TYPEDESC& type) const;
    std::string Describe(const FUNCDESC& function) const;

    void EachFunction(const std::function<void(const FUNCDESC&)>& visit) const;
    void EachVariable(const std::function<void(const VARDESC&)>& visit) const;

private:
    ComPtr<ITypeInfo> info_;
    TYPEATTR* attributes_ = nullptr;
};

// In the order of the library. Dual interfaces are what compiled clients see.
std::vector<Type> TypesOf(const ComPtr<ITypeLib>& library);

// What the library says, without help strings and without the sizes and offsets of records, which depend on the bit
// width. Lines end with \n and have up to 120 columns.
std::string Describe(const ComPtr<ITypeLib>& library);

}  // namespace orlix::testing
