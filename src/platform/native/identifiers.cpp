#include <orlix/orlix.h>

namespace {

constexpr char16_t kDigits[] = u"0123456789ABCDEF";

// Two digits per byte, the high one first.
OLECHAR* PutHex(OLECHAR* out, uint64_t value, int bytes) {
    for (int shift = 8 * bytes - 4; shift >= 0; shift -= 4) *out++ = kDigits[(value >> shift) & 15];
    return out;
}

// Returns false if a unit is no digit.
bool GetHex(const OLECHAR*& in, int bytes, uint32_t& value) {
    value = 0;
    for (int digit = 0; digit < 2 * bytes; ++digit, ++in) {
        const OLECHAR c = *in;
        uint32_t nibble = 0;
        if (c >= u'0' && c <= u'9')
            nibble = static_cast<uint32_t>(c - u'0');
        else if (c >= u'A' && c <= u'F')
            nibble = static_cast<uint32_t>(c - u'A' + 10);
        else if (c >= u'a' && c <= u'f')
            nibble = static_cast<uint32_t>(c - u'a' + 10);
        else
            return false;
        value = value << 4 | nibble;
    }
    return true;
}

bool Skip(const OLECHAR*& in, OLECHAR expected) { return *in == expected && (++in, true); }

bool Parse(const OLECHAR* in, GUID& guid) {
    uint32_t value = 0;
    if (!Skip(in, u'{') || !GetHex(in, 4, guid.Data1) || !Skip(in, u'-')) return false;
    if (!GetHex(in, 2, value) || !Skip(in, u'-')) return false;
    guid.Data2 = static_cast<uint16_t>(value);
    if (!GetHex(in, 2, value) || !Skip(in, u'-')) return false;
    guid.Data3 = static_cast<uint16_t>(value);
    for (int i = 0; i < 8; ++i) {
        if (i == 2 && !Skip(in, u'-')) return false;
        if (!GetHex(in, 1, value)) return false;
        guid.Data4[i] = static_cast<uint8_t>(value);
    }
    return Skip(in, u'}') && *in == 0;
}

}  // namespace

int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) {
    constexpr int kUnits = 39;
    if (!text || capacity < kUnits) return 0;
    OLECHAR* out = text;
    *out++ = u'{';
    out = PutHex(out, guid.Data1, 4);
    *out++ = u'-';
    out = PutHex(out, guid.Data2, 2);
    *out++ = u'-';
    out = PutHex(out, guid.Data3, 2);
    *out++ = u'-';
    for (int i = 0; i < 8; ++i) {
        if (i == 2) *out++ = u'-';
        out = PutHex(out, guid.Data4[i], 1);
    }
    *out++ = u'}';
    *out = 0;
    return kUnits;
}

HRESULT CLSIDFromString(LPCOLESTR text, CLSID* clsid) {
    if (!clsid) return E_INVALIDARG;
    *clsid = GUID_NULL;
    if (!text) return S_OK;  // as the system does
    GUID parsed = {};
    if (!Parse(text, parsed)) return CO_E_CLASSSTRING;
    *clsid = parsed;
    return S_OK;
}
