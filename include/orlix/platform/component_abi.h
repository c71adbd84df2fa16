// The component object model's binary conventions, off Windows: just what the contract and its clients need, with the
// system's own names, values and layouts. Only orlix.h includes it; Windows has its own.
//
// Strings (BSTR) are UTF-16, preceded by their length in bytes. The current error information is kept per thread.
// Creation by class or ProgID goes to the library itself: there is no system-wide registry, but a store of the process
// that the library's registration scripts fill.
#ifndef ORLIX_PLATFORM_COMPONENT_ABI_H
#define ORLIX_PLATFORM_COMPONENT_ABI_H

#include <stddef.h>
#include <stdint.h>

#if !defined(__cplusplus) || __cplusplus < 201703L
#error "Off Windows orlix.h needs C++17 (-std=c++17 or later), orlix/client.hpp C++20."
#endif

// Interfaces have no destructors: Release ends what is behind them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// -------------------------------------------------------------------------------------------------- calling convention

#define STDMETHODCALLTYPE
#define WINAPI
#define EXTERN_C extern "C"
#define ORLIX_API __attribute__((visibility("default")))
// What stands in for a function of the system is called by the system's name and linked by another one: a process may
// hold a second library that stands in for it.
#define ORLIX_LINKED_AS(name) __asm__("orlix_" #name)
#define STDMETHODIMP HRESULT STDMETHODCALLTYPE
#define STDMETHODIMP_(type) type STDMETHODCALLTYPE
#define STDAPI extern "C" ORLIX_API HRESULT
#define BEGIN_INTERFACE
#define END_INTERFACE
#define __RPC_FAR
#define __RPC_USER
#define __RPC_STUB
#define DECLSPEC_UUID(uuid)
#define DECLSPEC_NOVTABLE
#define MIDL_INTERFACE(uuid) struct

// --------------------------------------------------------------------------------------------------------- basic types

typedef unsigned char BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef int32_t INT;
typedef uint32_t UINT;
typedef int32_t BOOL;
typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;
typedef float FLOAT;
typedef double DOUBLE;
typedef int16_t SHORT;
typedef int16_t VARIANT_BOOL;
typedef LONG HRESULT;
typedef LONG SCODE;
typedef LONG DISPID;
typedef DWORD LCID;
typedef DWORD OLE_COLOR;
typedef char16_t OLECHAR;
typedef OLECHAR* LPOLESTR;
typedef const OLECHAR* LPCOLESTR;
typedef OLECHAR* BSTR;

static_assert(sizeof(LONG) == 4 && sizeof(OLECHAR) == 2);

#define OLESTR(text) u##text
#define TRUE 1
#define FALSE 0

typedef struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
} RECT;

typedef struct tagBITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    void* bmBits;
} BITMAP;

typedef union _ULARGE_INTEGER {
    ULONGLONG QuadPart;
} ULARGE_INTEGER;

typedef union _LARGE_INTEGER {
    LONGLONG QuadPart;
} LARGE_INTEGER;

typedef struct _FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
} FILETIME;

typedef void* HGLOBAL;

// --------------------------------------------------------------------------------------------------------- identifiers

typedef struct _GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;
static_assert(sizeof(GUID) == 16);

typedef GUID IID;
typedef GUID CLSID;
typedef const GUID& REFGUID;
typedef const IID& REFIID;
typedef const CLSID& REFCLSID;

constexpr bool operator==(const GUID& a, const GUID& b) {
    if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) return false;
    for (int i = 0; i < 8; ++i)
        if (a.Data4[i] != b.Data4[i]) return false;
    return true;
}
constexpr bool operator!=(const GUID& a, const GUID& b) { return !(a == b); }
inline bool IsEqualGUID(REFGUID a, REFGUID b) { return a == b; }
inline bool IsEqualIID(REFIID a, REFIID b) { return a == b; }
inline bool IsEqualCLSID(REFCLSID a, REFCLSID b) { return a == b; }

#define DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) \
    inline constexpr GUID name = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}

inline constexpr GUID GUID_NULL = {};

// __uuidof(T) names the identifier that the interface description gives to the interface or class T.
template <class T>
struct OrlixUuidOf;
#define __CRT_UUID_DECL(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)             \
    extern "C++" {                                                                   \
    template <>                                                                      \
    struct OrlixUuidOf<type> {                                                       \
        static constexpr GUID value = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}; \
    };                                                                               \
    }
#define __uuidof(type) (OrlixUuidOf<type>::value)

// ------------------------------------------------------------------------------------------------------------- results

#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_NOTIMPL ((HRESULT)0x80004001)
#define E_NOINTERFACE ((HRESULT)0x80004002)
#define E_POINTER ((HRESULT)0x80004003)
#define E_FAIL ((HRESULT)0x80004005)
#define E_UNEXPECTED ((HRESULT)0x8000FFFF)
#define E_OUTOFMEMORY ((HRESULT)0x8007000E)
#define E_INVALIDARG ((HRESULT)0x80070057)
#define DISP_E_EXCEPTION ((HRESULT)0x80020009)
#define CLASS_E_NOAGGREGATION ((HRESULT)0x80040110)
#define CLASS_E_CLASSNOTAVAILABLE ((HRESULT)0x80040111)
#define STG_E_INVALIDFUNCTION ((HRESULT)0x80030001)
#define STG_E_ACCESSDENIED ((HRESULT)0x80030005)
#define STG_E_INVALIDPOINTER ((HRESULT)0x80030009)
#define STG_E_SEEKERROR ((HRESULT)0x80030019)
#define STG_E_WRITEFAULT ((HRESULT)0x8003001D)
#define STG_E_READFAULT ((HRESULT)0x8003001E)
#define STG_E_MEDIUMFULL ((HRESULT)0x80030070)
#define STG_E_CANTSAVE ((HRESULT)0x80030103)
#define CONNECT_E_NOCONNECTION ((HRESULT)0x80040200)
#define CONNECT_E_CANNOTCONNECT ((HRESULT)0x80040202)
#define REGDB_E_CLASSNOTREG ((HRESULT)0x80040154)
#define CO_E_CLASSSTRING ((HRESULT)0x800401F3)
#define SUCCEEDED(result) ((HRESULT)(result) >= 0)
#define FAILED(result) ((HRESULT)(result) < 0)

// ---------------------------------------------------------------------------------------------------------- interfaces

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppvObject) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;
};
DEFINE_GUID(IID_IUnknown, 0x00000000, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);
__CRT_UUID_DECL(IUnknown, 0x00000000, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

struct IClassFactory : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppvObject) = 0;
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL fLock) = 0;
};
DEFINE_GUID(IID_IClassFactory, 0x00000001, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);
__CRT_UUID_DECL(IClassFactory, 0x00000001, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

struct IErrorInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetGUID(GUID* pGUID) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSource(BSTR* pBstrSource) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDescription(BSTR* pBstrDescription) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* pBstrHelpFile) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* pdwHelpContext) = 0;
};
DEFINE_GUID(IID_IErrorInfo, 0x1cf2b120, 0x547d, 0x101b, 0x8e, 0x65, 0x08, 0x00, 0x2b, 0x2b, 0xd1, 0x19);
__CRT_UUID_DECL(IErrorInfo, 0x1cf2b120, 0x547d, 0x101b, 0x8e, 0x65, 0x08, 0x00, 0x2b, 0x2b, 0xd1, 0x19)

struct ICreateErrorInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE SetGUID(REFGUID rguid) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR szSource) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR szDescription) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR szHelpFile) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD dwHelpContext) = 0;
};
DEFINE_GUID(IID_ICreateErrorInfo, 0x22f03340, 0x547d, 0x101b, 0x8e, 0x65, 0x08, 0x00, 0x2b, 0x2b, 0xd1, 0x19);
__CRT_UUID_DECL(ICreateErrorInfo, 0x22f03340, 0x547d, 0x101b, 0x8e, 0x65, 0x08, 0x00, 0x2b, 0x2b, 0xd1, 0x19)

struct ISupportErrorInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) = 0;
};
DEFINE_GUID(IID_ISupportErrorInfo, 0xdf0b3d60, 0x548f, 0x101b, 0x8e, 0x65, 0x08, 0x00, 0x2b, 0x2b, 0xd1, 0x19);
__CRT_UUID_DECL(ISupportErrorInfo, 0xdf0b3d60, 0x548f, 0x101b, 0x8e, 0x65, 0x08, 0x00, 0x2b, 0x2b, 0xd1, 0x19)

typedef struct tagSTATSTG {
    LPOLESTR pwcsName;
    DWORD type;
    ULARGE_INTEGER cbSize;
    FILETIME mtime;
    FILETIME ctime;
    FILETIME atime;
    DWORD grfMode;
    DWORD grfLocksSupported;
    CLSID clsid;
    DWORD grfStateBits;
    DWORD reserved;
} STATSTG;

#define STGTY_STREAM 2
#define STATFLAG_DEFAULT 0
#define STATFLAG_NONAME 1
#define STREAM_SEEK_SET 0
#define STREAM_SEEK_CUR 1
#define STREAM_SEEK_END 2

struct ISequentialStream : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Read(void* pv, ULONG cb, ULONG* pcbRead) = 0;
    virtual HRESULT STDMETHODCALLTYPE Write(const void* pv, ULONG cb, ULONG* pcbWritten) = 0;
};
DEFINE_GUID(IID_ISequentialStream, 0x0c733a30, 0x2a1c, 0x11ce, 0xad, 0xe5, 0x00, 0xaa, 0x00, 0x44, 0x77, 0x3d);
__CRT_UUID_DECL(ISequentialStream, 0x0c733a30, 0x2a1c, 0x11ce, 0xad, 0xe5, 0x00, 0xaa, 0x00, 0x44, 0x77, 0x3d)

struct IStream : ISequentialStream {
    virtual HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin, ULARGE_INTEGER* plibNewPosition) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER libNewSize) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyTo(IStream* pstm, ULARGE_INTEGER cb, ULARGE_INTEGER* pcbRead,
                                             ULARGE_INTEGER* pcbWritten) = 0;
    virtual HRESULT STDMETHODCALLTYPE Commit(DWORD grfCommitFlags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Revert() = 0;
    virtual HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER libOffset, ULARGE_INTEGER cb, DWORD dwLockType) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER libOffset, ULARGE_INTEGER cb, DWORD dwLockType) = 0;
    virtual HRESULT STDMETHODCALLTYPE Stat(STATSTG* pstatstg, DWORD grfStatFlag) = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IStream** ppstm) = 0;
};
DEFINE_GUID(IID_IStream, 0x0000000c, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);
__CRT_UUID_DECL(IStream, 0x0000000c, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

struct IPersist : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetClassID(CLSID* pClassID) = 0;
};
DEFINE_GUID(IID_IPersist, 0x0000010c, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);
__CRT_UUID_DECL(IPersist, 0x0000010c, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

struct IPersistStreamInit : IPersist {
    virtual HRESULT STDMETHODCALLTYPE IsDirty() = 0;
    virtual HRESULT STDMETHODCALLTYPE Load(IStream* pStm) = 0;
    virtual HRESULT STDMETHODCALLTYPE Save(IStream* pStm, BOOL fClearDirty) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* pCbSize) = 0;
    virtual HRESULT STDMETHODCALLTYPE InitNew() = 0;
};
DEFINE_GUID(IID_IPersistStreamInit, 0x7fd52380, 0x4e07, 0x101b, 0xae, 0x2d, 0x08, 0x00, 0x2b, 0x2e, 0xc7, 0x13);
__CRT_UUID_DECL(IPersistStreamInit, 0x7fd52380, 0x4e07, 0x101b, 0xae, 0x2d, 0x08, 0x00, 0x2b, 0x2e, 0xc7, 0x13)

struct IConnectionPointContainer;
struct IEnumConnections;

struct IConnectionPoint : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* pIID) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** ppCPC) = 0;
    virtual HRESULT STDMETHODCALLTYPE Advise(IUnknown* pUnkSink, DWORD* pdwCookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unadvise(DWORD dwCookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** ppEnum) = 0;
};
DEFINE_GUID(IID_IConnectionPoint, 0xb196b286, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07);
__CRT_UUID_DECL(IConnectionPoint, 0xb196b286, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07)

struct IEnumConnectionPoints : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG cConnections, IConnectionPoint** ppCP, ULONG* pcFetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG cConnections) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IEnumConnectionPoints** ppEnum) = 0;
};
DEFINE_GUID(IID_IEnumConnectionPoints, 0xb196b285, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07);
__CRT_UUID_DECL(IEnumConnectionPoints, 0xb196b285, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07)

typedef struct tagCONNECTDATA {
    IUnknown* pUnk;
    DWORD dwCookie;
} CONNECTDATA;

struct IEnumConnections : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG cConnections, CONNECTDATA* rgcd, ULONG* pcFetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG cConnections) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IEnumConnections** ppEnum) = 0;
};
DEFINE_GUID(IID_IEnumConnections, 0xb196b287, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07);
__CRT_UUID_DECL(IEnumConnections, 0xb196b287, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07)

struct IConnectionPointContainer : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** ppEnum) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID riid, IConnectionPoint** ppCP) = 0;
};
DEFINE_GUID(IID_IConnectionPointContainer, 0xb196b284, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07);
__CRT_UUID_DECL(IConnectionPointContainer, 0xb196b284, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07)

// Scripts call through this, on Windows; the library answers it nowhere else.
struct DISPPARAMS;
struct EXCEPINFO;
struct ITypeInfo;

// A value of a script. Nothing here makes or reads one.
struct VARIANT {
    uint16_t vt;
    uint16_t wReserved1, wReserved2, wReserved3;
    union {
        LONG lVal;
        double dblVal;
        BSTR bstrVal;
        IUnknown* punkVal;
        void* byref;
    };
};
struct IDispatch : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* pctinfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT iTInfo, LCID lcid, ITypeInfo** ppTInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* rgszNames, UINT cNames, LCID lcid,
                                                    DISPID* rgDispId) = 0;
    virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID dispIdMember, REFIID riid, LCID lcid, WORD wFlags,
                                             DISPPARAMS* pDispParams, VARIANT* pVarResult, EXCEPINFO* pExcepInfo,
                                             UINT* puArgErr) = 0;
};
DEFINE_GUID(IID_IDispatch, 0x00020400, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);
__CRT_UUID_DECL(IDispatch, 0x00020400, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

// ----------------------------------------------------------------------------------------------------------- functions

extern "C" {

// A copy of a zero-terminated string, or of the first `length` units (text may be null: the units are then not set).
// Null for a null text, for lengths that no address space holds and when memory is short.
ORLIX_API BSTR SysAllocString(const OLECHAR* text) ORLIX_LINKED_AS(SysAllocString);
ORLIX_API BSTR SysAllocStringLen(const OLECHAR* text, UINT length) ORLIX_LINKED_AS(SysAllocStringLen);
ORLIX_API void SysFreeString(BSTR text) ORLIX_LINKED_AS(SysFreeString);
ORLIX_API UINT SysStringLen(BSTR text) ORLIX_LINKED_AS(SysStringLen);  // in UTF-16 units; 0 for null

// The thread's current error information. GetErrorInfo hands it over and clears it: S_FALSE and null when there is
// none.
ORLIX_API HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) ORLIX_LINKED_AS(SetErrorInfo);
ORLIX_API HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) ORLIX_LINKED_AS(GetErrorInfo);
ORLIX_API HRESULT CreateErrorInfo(ICreateErrorInfo** info) ORLIX_LINKED_AS(CreateErrorInfo);

// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", upper case; the buffer takes 39 units with the terminator.
ORLIX_API int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) ORLIX_LINKED_AS(StringFromGUID2);
ORLIX_API HRESULT CLSIDFromString(LPCOLESTR text, CLSID* clsid) ORLIX_LINKED_AS(CLSIDFromString);

// Look-ups in what is registered in this process. The text of ProgIDFromCLSID is freed with CoTaskMemFree.
ORLIX_API HRESULT CLSIDFromProgID(LPCOLESTR progid, CLSID* clsid) ORLIX_LINKED_AS(CLSIDFromProgID);
ORLIX_API HRESULT ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* progid) ORLIX_LINKED_AS(ProgIDFromCLSID);
ORLIX_API void* CoTaskMemAlloc(size_t size) ORLIX_LINKED_AS(CoTaskMemAlloc);
ORLIX_API void CoTaskMemFree(void* memory) ORLIX_LINKED_AS(CoTaskMemFree);

#define CLSCTX_INPROC_SERVER 1
ORLIX_API HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID riid, void** object)
    ORLIX_LINKED_AS(CoCreateInstance);
ORLIX_API HRESULT CoGetClassObject(REFCLSID clsid, DWORD context, void* reserved, REFIID riid, void** object)
    ORLIX_LINKED_AS(CoGetClassObject);

// A stream in memory. `memory` must be null: the stream makes its own and frees it. Empty at first; clones share the
// content.
ORLIX_API HRESULT CreateStreamOnHGlobal(HGLOBAL memory, BOOL deleteOnRelease, IStream** stream)
    ORLIX_LINKED_AS(CreateStreamOnHGlobal);

// A stream on a regular file. mode: one of STGM_READ, STGM_WRITE, STGM_READWRITE, with STGM_CREATE to make the file or
// empty the one there is. Without STGM_CREATE, `create` makes a file that must not exist yet, and else the file must
// exist. Sharing flags and attributes are not used, `templateStream` must be null. The file cannot be cloned or locked.
#define STGM_READ 0
#define STGM_WRITE 1
#define STGM_READWRITE 2
#define STGM_SHARE_EXCLUSIVE 0x10
#define STGM_SHARE_DENY_WRITE 0x20
#define STGM_CREATE 0x1000
ORLIX_API HRESULT SHCreateStreamOnFileEx(LPCOLESTR path, DWORD mode, DWORD attributes, BOOL create,
                                         IStream* templateStream, IStream** stream)
    ORLIX_LINKED_AS(SHCreateStreamOnFileEx);

// The module's own entry points. The first look-up by class or ProgID registers the module in the store of the process,
// unless the client has called one of the two registering functions by then.
ORLIX_API HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** factory);
ORLIX_API HRESULT DllCanUnloadNow();
ORLIX_API HRESULT DllRegisterServer();
ORLIX_API HRESULT DllUnregisterServer();
ORLIX_API int NeedGdiPlus();
}

#pragma GCC diagnostic pop

#endif
