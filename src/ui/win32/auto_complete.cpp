#include "ui/win32/auto_complete.h"

#include <objbase.h>
#include <shldisp.h>
#include <shlguid.h>

#include <atomic>

#include "ui/win32/win32_text.h"

namespace {

// The list the shell object walks: a fixed set of texts.
class string_list final : public IEnumString {
public:
    explicit string_list(std::vector<std::wstring> values, std::size_t at = 0) : values_(std::move(values)), at_(at) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IEnumString)) {
            *out = static_cast<IEnumString*>(this);
            AddRef();
            return S_OK;
        }
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
    ULONG STDMETHODCALLTYPE Release() override {
        ULONG n = --refs_;
        if (n == 0) delete this;
        return n;
    }

    HRESULT STDMETHODCALLTYPE Next(ULONG count, LPOLESTR* out, ULONG* fetched) override {
        if (!out || (count > 1 && !fetched)) return E_INVALIDARG;
        ULONG given = 0;
        while (given < count && at_ < values_.size()) {
            const std::wstring& v = values_[at_];
            // The caller frees each text with CoTaskMemFree.
            auto* copy = static_cast<wchar_t*>(CoTaskMemAlloc((v.size() + 1) * sizeof(wchar_t)));
            if (!copy) break;
            wmemcpy(copy, v.c_str(), v.size() + 1);
            out[given++] = copy;
            ++at_;
        }
        if (fetched) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        at_ = std::min(values_.size(), at_ + count);
        return at_ < values_.size() ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        at_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumString** out) override {
        if (!out) return E_POINTER;
        *out = new string_list(values_, at_);
        return S_OK;
    }

private:
    ~string_list() = default;
    std::vector<std::wstring> values_;
    std::size_t at_;
    std::atomic<ULONG> refs_{1};
};

} // namespace

bool attach_auto_complete(HWND edit, const std::vector<std::string>& values) {
    IAutoComplete* complete = nullptr;
    if (FAILED(CoCreateInstance(CLSID_AutoComplete, nullptr, CLSCTX_INPROC_SERVER, IID_IAutoComplete,
                                reinterpret_cast<void**>(&complete))))
        return false;
    std::vector<std::wstring> wide;
    wide.reserve(values.size());
    for (const std::string& v : values) wide.push_back(to_wide(v));
    auto* list = new string_list(std::move(wide));
    HRESULT hr = complete->Init(edit, list, nullptr, nullptr);
    IAutoComplete2* options = nullptr;
    if (SUCCEEDED(hr) && SUCCEEDED(complete->QueryInterface(IID_IAutoComplete2, reinterpret_cast<void**>(&options)))) {
        options->SetOptions(ACO_AUTOSUGGEST | ACO_AUTOAPPEND | ACO_UPDOWNKEYDROPSLIST);
        options->Release();
    }
    // The shell object keeps its own references for the life of the control.
    list->Release();
    complete->Release();
    return SUCCEEDED(hr);
}
