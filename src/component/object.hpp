// Base of every component class: reference count, interface map, aggregation, error support.
//
//     class OrlixBitmap final : public orlix::Object<OrlixBitmap, orlix::Answers<IBitmapProcess, IBitmap>> { ... };
//
// Each entry is one of the following; the first one is the default interface:
//     I                          an interface that the class implements
//     Answers<I, Parents...>     the same, and QueryInterface also answers these base interfaces of I
//     Part<Base, I, Parents...>  the same, where Base, which derives from I alone, implements the methods of I
//
// The class has the name of the contract's coclass, so __uuidof(Class) is its CLSID. On Windows scripts can call the
// methods of its interfaces (IDispatch). Notes:
//  (1) An object stays alive while one of its methods runs, even when a client called by the method gives back the last
//      reference. So a method may use its object after calling foreign code.
//  (2) When the last reference is gone, the object first releases what belongs to clients (LetGo) while it is still
//      intact, and from then on its methods fail with E_FAIL: a client released here may call back and finds an object
//      that does nothing. The destructor calls no foreign code. A reference taken this late keeps only the memory.
#pragma once

#include <atomic>
#include <new>
#include <utility>

#include <orlix/com_ptr.hpp>

#include "component/guard.hpp"
#include "platform/module_lock.hpp"
#ifdef _WIN32
#include "automation/windows/scripted.hpp"
#endif

namespace orlix {

// The object's own IUnknown. The count includes a reference for each running method.
class ObjectLife : public IUnknown {
public:
    STDMETHODIMP_(ULONG) AddRef() noexcept final { return count_.fetch_add(1, std::memory_order_relaxed) + 1; }
    STDMETHODIMP_(ULONG) Release() noexcept final {
        const ULONG left = count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) End();
        return left;
    }

    // Runs the body of a method of the class; see Object::Guarded.
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

    // Releases what belongs to clients.
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

    // Called when the last reference is gone. Every method can reach it (KeepAlive), so there is one copy for all.
    [[gnu::noinline]] void End() noexcept {
        if (!closed_) {
            closed_ = true;
            // Clients may take and give back references meanwhile; one that keeps a reference postpones the end.
            count_.store(1, std::memory_order_relaxed);
            Close();
            if (count_.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
        }
        count_.store(1, std::memory_order_relaxed);  // for a reference that the destructor itself takes and gives back
        Destroy();
    }

    std::atomic<ULONG> count_{1};
    bool closed_ = false;  // the last reference is gone
};

// Whether two interface pointers, of any objects, belong to the same object.
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
    using Answered = Entry;
    static bool Covers(REFIID iid) noexcept { return iid == __uuidof(Entry); }
};

template <class I, class... Parents>
struct InterfaceEntry<Answers<I, Parents...>> {
    using Interface = I;
    using Answered = I;
    static bool Covers(REFIID iid) noexcept { return iid == __uuidof(I) || (... || (iid == __uuidof(Parents))); }
};

template <class Base, class I, class... Parents>
struct InterfaceEntry<Part<Base, I, Parents...>> : InterfaceEntry<Answers<I, Parents...>> {
    using Interface = Base;
};

#ifdef _WIN32
using LateBinding = automation::Scripted;
#else
// There are no scripts.
class LateBinding {
protected:
    static void* AsDispatch(REFIID) noexcept { return nullptr; }
};
#endif

template <class Class, class... Entries>
class Object : public InterfaceEntry<Entries>::Interface..., public ISupportErrorInfo, public LateBinding {
public:
    // For class factories. With an outer object the client may request only IUnknown, and gets the inner object's own
    // IUnknown.
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

    // A new object with one reference, for use inside the library.
    static ComPtr<Class> Make() { return ComPtr<Class>::Attach(new Class); }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        return controlling_->QueryInterface(iid, object);
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return controlling_->AddRef(); }
    STDMETHODIMP_(ULONG) Release() noexcept override { return controlling_->Release(); }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) noexcept override {
        return (... || InterfaceEntry<Entries>::Covers(iid)) || AsDispatch(iid) ? S_OK : S_FALSE;
    }

    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

protected:
    Object() noexcept : inner_(*this) { LockModule(); }
    ~Object() { UnlockModule(); }

    // I is the interface of the calling method, whose name is taken from the call. Both go into the text of a
    // MethodFailure.
    template <class I = void, class Body>
    HRESULT Guarded(Body&& body, const char* method = __builtin_FUNCTION()) noexcept {
        return inner_.template Guarded<I>(__uuidof(Class), body, method);
    }

    // For parts of the class that run methods on their own.
    ObjectLife& life() noexcept { return inner_; }

    // Classes that hold client interfaces hide this function and release all of them in it. No new ones can arrive, as
    // all methods already fail.
    void LetGo() noexcept {}

    bool IsSelf(IUnknown* other) noexcept { return AreSame(controlling_, other); }

private:
    // Answers interface requests without asking an outer object.
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

    // Late binding asks for interfaces by it too.
    void* Find(REFIID iid) noexcept {
        void* found = nullptr;
        (void)(... || (InterfaceEntry<Entries>::Covers(iid)
                           ? (found = static_cast<typename InterfaceEntry<Entries>::Interface*>(this), true)
                           : false));
        if (!found && iid == __uuidof(ISupportErrorInfo)) found = static_cast<ISupportErrorInfo*>(this);
        return found ? found : AsDispatch(iid);
    }

#ifdef _WIN32
    const automation::ClassMembers& Members() const override {
        static const IID* const interfaces[] = {&__uuidof(typename InterfaceEntry<Entries>::Answered)...};
        static const automation::ClassMembers members(interfaces);
        return members;
    }
#endif

    Inner inner_;
    IUnknown* controlling_ = &inner_;  // an outer object is not counted: it owns this one
};

}  // namespace orlix
