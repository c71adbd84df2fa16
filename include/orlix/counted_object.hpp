// CountedObject<Interfaces...>: base of the objects that a client hands to the library, such as regions, event sinks
// and streams. It counts the references and answers QueryInterface; the class implements the methods of its interfaces:
//
//     class Stripes final : public orlix::CountedObject<IRegionOfInterest> {
//     public:
//         explicit Stripes(LONG distance);
//         STDMETHODIMP get_Width(LONG* width) noexcept override;
//         ...
//     };
//     const auto region = orlix::MakeCounted<Stripes>(10);   // ComPtr<Stripes>, which holds the one reference
//     Check(process->put_RegionOfInterest(region.get()), process);
#ifndef ORLIX_COUNTED_OBJECT_HPP
#define ORLIX_COUNTED_OBJECT_HPP

#include <orlix/orlix.h>
#include <orlix/com_ptr.hpp>

#include <atomic>
#include <utility>

namespace orlix {

// An entry of the list for an interface that derives from others than IUnknown: the object answers them too.
//
//     class Memory final : public CountedObject<DerivedInterface<IStream, ISequentialStream>> { ... };
template <class I, class... Parents>
struct DerivedInterface {
    using Interface = I;
    static bool Answers(REFIID iid) noexcept { return iid == __uuidof(I) || (... || (iid == __uuidof(Parents))); }
};

template <class Entry>
struct CountedInterface : DerivedInterface<Entry> {};
template <class I, class... Parents>
struct CountedInterface<DerivedInterface<I, Parents...>> : DerivedInterface<I, Parents...> {};

// The first entry is the object's identity: its pointer answers IUnknown. Notes:
//  (1) A new object has one reference, its creator's. It must be created by `new`, as MakeCounted does, and must not be
//      deleted: the last Release does that. For objects on the stack, static ones, and parts of others this is not the
//      base.
//  (2) References may be taken and given back by any thread. What the class itself holds, it has to protect.
//  (3) When the last reference is gone, LetGo is called while the object is still whole, then it is destroyed. Code
//      that LetGo or a destructor calls may take references and give them back. One that is kept from LetGo puts the
//      destruction off until it is given back too; LetGo is not called again.
template <class First, class... Others>
class CountedObject : public CountedInterface<First>::Interface, public CountedInterface<Others>::Interface... {
public:
    // E_POINTER without an object to write to. Else *object is the interface with a reference added or, with
    // E_NOINTERFACE, null.
    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        if (!object) return E_POINTER;
        *object = Find(iid);
        if (!*object) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }
    STDMETHODIMP_(ULONG) Release() noexcept override {
        const ULONG left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) End();
        return left;
    }

    CountedObject(const CountedObject&) = delete;
    CountedObject& operator=(const CountedObject&) = delete;

protected:
    CountedObject() noexcept = default;
    virtual ~CountedObject() = default;

    // For classes whose own references lead to code that may call back: release them here, see note (3).
    virtual void LetGo() noexcept {}

private:
    void* Find(REFIID iid) noexcept {
        using Identity = typename CountedInterface<First>::Interface;
        if (iid == __uuidof(IUnknown) || CountedInterface<First>::Answers(iid)) return static_cast<Identity*>(this);
        void* found = nullptr;
        (void)(... || (CountedInterface<Others>::Answers(iid) &&
                       (found = static_cast<typename CountedInterface<Others>::Interface*>(this), true)));
        return found;
    }

    void End() noexcept {
        references_.store(1, std::memory_order_relaxed);
        if (!std::exchange(ended_, true)) {
            LetGo();
            if (references_.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
            references_.store(1, std::memory_order_relaxed);  // for references taken while it is destroyed
        }
        delete this;
    }

    std::atomic<ULONG> references_{1};
    bool ended_ = false;  // LetGo was called
};

// A new object, whose one reference is the returned pointer's. Throws what the constructor throws, and std::bad_alloc.
template <class Class, class... Arguments>
ComPtr<Class> MakeCounted(Arguments&&... arguments) {
    return ComPtr<Class>::Attach(new Class(std::forward<Arguments>(arguments)...));
}

}  // namespace orlix

#endif
