// A region of another component, which may return anything.
#pragma once

#include <orlix/orlix.h>
#include <orlix/com_ptr.hpp>

#include <functional>
#include <map>
#include <vector>

namespace orlix {

inline SRun MakeRun(LONG start, LONG stop) {
    SRun run = {};
    run.m_lStart = start;
    run.m_lStop = stop;
    return run;
}

// Lives on the stack of a test, which checks its counts afterwards.
class ForeignRegion final : public IRegionOfInterest {
public:
    RECT box = {0, 0, -1, -1};
    std::map<LONG, std::vector<SRun>> rows;  // a row that is not listed has no runs
    HRESULT boxResult = S_OK;
    HRESULT rowResult = S_OK;
    std::function<HRESULT(LONG, SRun**, SRun**)> answer;  // instead of rows, when set
    ULONG references = 1;
    int rowsAsked = 0;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        *object = iid == __uuidof(IUnknown) || iid == __uuidof(IRegionOfInterest) ? this : nullptr;
        if (!*object) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return --references; }

    // Nobody asks.
    STDMETHODIMP get_Width(LONG*) noexcept override { return E_UNEXPECTED; }
    STDMETHODIMP get_Height(LONG*) noexcept override { return E_UNEXPECTED; }
    STDMETHODIMP get_BoundingBox(RECT* hVal) noexcept override {
        if (SUCCEEDED(boxResult)) *hVal = box;
        return boxResult;
    }
    STDMETHODIMP GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept override {
        ++rowsAsked;
        if (answer) return answer(row, begin, end);
        auto& runs = rows[row];
        *begin = runs.data();
        *end = runs.data() + runs.size();
        return rowResult;
    }
};

}  // namespace orlix
