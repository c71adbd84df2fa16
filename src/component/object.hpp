// Base of every component class: reference count, interface map, aggregation, error support.
//
//     class OrlixBitmap final : public orlix::Object<OrlixBitmap, orlix::Answers<IBitmapProcess, IBitmap>> { ... };
//
// Each entry is an interface that the class implements, or Answers<I, Parents...>: I and the interfaces it derives from
// that are answered too. The first entry is the default interface. The class is named as the contract's coclass is, so
// __uuidof(Class) is its CLSID. Notes:
//  (1) An object lives as long as one of its methods runs, even where a client that the method calls gives the last
//      reference back. So a method may use its object after it has called somebody else's code.
//  (2) When the last reference is gone the object lets go of what belongs to clients (LetGo) while it is still whole,
//      and from then on its methods fail with E_FAIL: a client whose own last reference this was may call back, and
//      finds an object that does nothing. The destructor calls nobody. Who takes a reference even then keeps the
//      memory, no more.
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

    // With the interface of the method that calls this, whose name is taken from the call: what a NoImage is reported
    // by.
    template <class I = void, class Body>
    HRESULT Guarded(Body&& body, const char* method = __builtin_FUNCTION()) noexcept {
        const KeepAlive alive(inner_);
        MethodName name;
        if constexpr (!std::is_void_v<I>) name = {NameOf<I>(), method};
        return orlix::Guarded(
            __uuidof(Class),
            [&] {
                if (inner_.closed()) throw FailedResult(E_FAIL);
                return body();
            },
            name);
    }

    // Hidden by classes that hold interfaces of clients: releases all of them. Nothing can be put in their place, as
    // methods fail already.
    void LetGo() noexcept {}

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
            if (left == 0) End();
            return left;
        }
        bool closed() const noexcept { return closed_; }

    private:
        // When the last reference is gone. Every method has a place that may come here (KeepAlive): one copy for all.
        [[gnu::noinline]] void End() noexcept {
            if (!closed_) {
                closed_ = true;
                // Clients may take and give back references meanwhile; who keeps one puts the end off.
                count_.store(1, std::memory_order_relaxed);
                static_cast<Class&>(owner_).LetGo();
                if (count_.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
            }
            count_.store(1, std::memory_order_relaxed);  // a reference taken and given back by the destructor itself
            delete static_cast<Class*>(&owner_);
        }

        Object& owner_;
        std::atomic<ULONG> count_{1};
        bool closed_ = false;  // the last reference is gone
    };

    class KeepAlive {
    public:
        explicit KeepAlive(Inner& inner) noexcept : inner_(inner) { inner_.AddRef(); }
        ~KeepAlive() { inner_.Release(); }
        KeepAlive(const KeepAlive&) = delete;
        KeepAlive& operator=(const KeepAlive&) = delete;

    private:
        Inner& inner_;
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
