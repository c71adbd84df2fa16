// Base of every component class: reference count, interface map, aggregation, error support.
//
//     class OrlixBitmap final : public orlix::Object<OrlixBitmap, orlix::Answers<IBitmapProcess, IBitmap>> { ... };
//
// Each entry is an interface that the class implements, or Answers<I, Parents...>: I and the interfaces it derives from
// that are answered too. The first entry is the default interface. The class is named as the contract's coclass is, so
// __uuidof(Class) is its CLSID.
#pragma once

#include <atomic>
#include <new>
#include <utility>

#include <orlix/com_ptr.hpp>

#include "component/guard.hpp"
#include "component/module_lock.hpp"

namespace orlix {

template <class I, class... Parents>
struct Answers {};

template <class Entry>
struct InterfaceEntry {
    using Interface = Entry;
    static bool Covers(REFIID iid) noexcept { return iid == __uuidof(Entry); }
};

template <class I, class... Parents>
struct InterfaceEntry<Answers<I, Parents...>> {
    using Interface = I;
    static bool Covers(REFIID iid) noexcept { return iid == __uuidof(I) || (... || (iid == __uuidof(Parents))); }
};

template <class Class, class... Entries>
class Object : public InterfaceEntry<Entries>::Interface..., public ISupportErrorInfo {
public:
    // As a class factory does it: with an outer object only IUnknown may be asked for, and what is handed out is the
    // inner object's own IUnknown.
    static HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (outer && iid != __uuidof(IUnknown)) return CLASS_E_NOAGGREGATION;
        Class* created = nullptr;
        try {
            created = new Class;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        } catch (...) {
            return E_FAIL;
        }
        if (outer) created->controlling_ = outer;
        const HRESULT result = created->inner_.QueryInterface(iid, object);
        created->inner_.Release();
        return result;
    }

    // A new object with one reference, for the library's own use.
    static ComPtr<Class> Make() { return ComPtr<Class>::Attach(new Class); }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        return controlling_->QueryInterface(iid, object);
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return controlling_->AddRef(); }
    STDMETHODIMP_(ULONG) Release() noexcept override { return controlling_->Release(); }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) noexcept override {
        return (... || InterfaceEntry<Entries>::Covers(iid)) ? S_OK : S_FALSE;
    }

    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

protected:
    Object() noexcept : inner_(*this) { LockModule(); }
    ~Object() { UnlockModule(); }

    template <class Body>
    HRESULT Guarded(Body&& body) noexcept {
        return orlix::Guarded(__uuidof(Class), std::forward<Body>(body));
    }

    // Whether an interface pointer, of whatever object, belongs to this very object.
    bool IsSelf(IUnknown* other) noexcept {
        ComPtr<IUnknown> identity;
        return other && SUCCEEDED(other->QueryInterface(__uuidof(IUnknown), identity.OutVoid())) &&
               identity.get() == Identity().get();
    }

private:
    // The object's own IUnknown: counts the references, and answers the interfaces without asking an outer object.
    class Inner final : public IUnknown {
    public:
        explicit Inner(Object& owner) noexcept : owner_(owner) {}
        STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
            if (!object) return E_POINTER;
            *object = iid == __uuidof(IUnknown) ? this : owner_.Find(iid);
            if (!*object) return E_NOINTERFACE;
            static_cast<IUnknown*>(*object)->AddRef();
            return S_OK;
        }
        STDMETHODIMP_(ULONG) AddRef() noexcept override { return count_.fetch_add(1, std::memory_order_relaxed) + 1; }
        STDMETHODIMP_(ULONG) Release() noexcept override {
            const ULONG left = count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
            if (left == 0) {
                count_.store(1, std::memory_order_relaxed);  // a reference taken and given back while dying
                delete static_cast<Class*>(&owner_);
            }
            return left;
        }

    private:
        Object& owner_;
        std::atomic<ULONG> count_{1};
    };

    ComPtr<IUnknown> Identity() noexcept {
        ComPtr<IUnknown> identity;
        controlling_->QueryInterface(__uuidof(IUnknown), identity.OutVoid());
        return identity;
    }

    void* Find(REFIID iid) noexcept {
        void* found = nullptr;
        (void)(... || (InterfaceEntry<Entries>::Covers(iid)
                           ? (found = static_cast<typename InterfaceEntry<Entries>::Interface*>(this), true)
                           : false));
        if (!found && iid == __uuidof(ISupportErrorInfo)) found = static_cast<ISupportErrorInfo*>(this);
        return found;
    }

    Inner inner_;
    IUnknown* controlling_ = &inner_;  // not counted when it is an outer object: that one owns this
};

}  // namespace orlix
