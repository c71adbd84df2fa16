// Base of every component class: reference count, interface map, aggregation, error support.
//
//     class OrlixBitmap final : public orlix::Object<OrlixBitmap, orlix::Answers<IBitmapProcess, IBitmap>> { ... };
//
// Each entry is an interface that the class implements; or Answers<I, Parents...>: I and the interfaces it derives from
// that are answered too; or Part<Base, I, Parents...>: the same where Base, which derives from I alone, implements its
// methods. The first entry is the default interface. The class is named as the contract's coclass is, so
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

// The object's own IUnknown: counts the references, those of methods that run included.
class ObjectLife : public IUnknown {
public:
    STDMETHODIMP_(ULONG) AddRef() noexcept final { return count_.fetch_add(1, std::memory_order_relaxed) + 1; }
    STDMETHODIMP_(ULONG) Release() noexcept final {
        const ULONG left = count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) End();
        return left;
    }

    // Runs the body of a method of the class, see Object::Guarded.
    template <class I, class Body>
    HRESULT Guarded(const CLSID& clsid, Body& body, const char* method) noexcept {
        const KeepAlive alive(*this);
        MethodName name;
        if constexpr (!std::is_void_v<I>) name = {NameOf<I>(), method};
        return orlix::Guarded(
            clsid,
            [&] {
                if (closed_) throw FailedResult(E_FAIL);
                return body();
            },
            name);
    }

protected:
    ~ObjectLife() = default;

    // Lets go of what belongs to clients.
    virtual void Close() noexcept = 0;
    virtual void Destroy() noexcept = 0;

private:
    class KeepAlive {
    public:
        explicit KeepAlive(ObjectLife& life) noexcept : life_(life) { life_.AddRef(); }
        ~KeepAlive() { life_.Release(); }
        KeepAlive(const KeepAlive&) = delete;
        KeepAlive& operator=(const KeepAlive&) = delete;

    private:
        ObjectLife& life_;
    };

    // When the last reference is gone. Every method has a place that may come here (KeepAlive): one copy for all.
    [[gnu::noinline]] void End() noexcept {
        if (!closed_) {
            closed_ = true;
            // Clients may take and give back references meanwhile; who keeps one puts the end off.
            count_.store(1, std::memory_order_relaxed);
            Close();
            if (count_.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
        }
        count_.store(1, std::memory_order_relaxed);  // a reference taken and given back by the destructor itself
        Destroy();
    }

    std::atomic<ULONG> count_{1};
    bool closed_ = false;  // the last reference is gone
};

// Whether two interface pointers, of whatever objects, belong to the same one.
inline bool AreSame(IUnknown* one, IUnknown* other) noexcept {
    ComPtr<IUnknown> identities[2];
    return one && other && SUCCEEDED(one->QueryInterface(__uuidof(IUnknown), identities[0].OutVoid())) &&
           SUCCEEDED(other->QueryInterface(__uuidof(IUnknown), identities[1].OutVoid())) &&
           identities[0].get() == identities[1].get();
}

template <class I, class... Parents>
struct Answers {};

template <class Base, class I, class... Parents>
struct Part {};

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

template <class Base, class I, class... Parents>
struct InterfaceEntry<Part<Base, I, Parents...>> : InterfaceEntry<Answers<I, Parents...>> {
    using Interface = Base;
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

    // With the interface of the method that calls this, whose name is taken from the call: what a MethodFailure is
    // reported by.
    template <class I = void, class Body>
    HRESULT Guarded(Body&& body, const char* method = __builtin_FUNCTION()) noexcept {
        return inner_.template Guarded<I>(__uuidof(Class), body, method);
    }

    // For parts of the class that run methods themselves.
    ObjectLife& life() noexcept { return inner_; }

    // Hidden by classes that hold interfaces of clients: releases all of them. Nothing can be put in their place, as
    // methods fail already.
    void LetGo() noexcept {}

    bool IsSelf(IUnknown* other) noexcept { return AreSame(controlling_, other); }

private:
    // Answers the interfaces without asking an outer object.
    class Inner final : public ObjectLife {
    public:
        explicit Inner(Object& owner) noexcept : owner_(owner) {}
        STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
            if (!object) return E_POINTER;
            *object = iid == __uuidof(IUnknown) ? this : owner_.Find(iid);
            if (!*object) return E_NOINTERFACE;
            static_cast<IUnknown*>(*object)->AddRef();
            return S_OK;
        }

    private:
        void Close() noexcept override { static_cast<Class&>(owner_).LetGo(); }
        void Destroy() noexcept override { delete static_cast<Class*>(&owner_); }

        Object& owner_;
    };

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
