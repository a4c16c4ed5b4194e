#pragma once

// What the client's parts share: reports of what did not hold, and owners of the platform's things.

#include <OrvoMembership.h>

#include <string>
#include <utility>

// Says what did not hold; the program ends with 1 then.
void check(bool holds, const std::string& what);
void check_equal(const std::wstring& actual, const std::wstring& expected, const std::string& what);
void check_result(HRESULT actual, HRESULT expected, const std::string& what);
int failure_count();

std::string narrow(const std::wstring& text);

template <class I>
class Held {
public:
    Held() = default;
    Held(Held&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    Held(const Held&) = delete;
    ~Held() { reset(); }

    void reset() {
        if (pointer_) std::exchange(pointer_, nullptr)->Release();
    }
    I** put() {
        reset();
        return &pointer_;
    }
    I* get() const { return pointer_; }
    I* operator->() const { return pointer_; }

private:
    I* pointer_ = nullptr;
};

class Bstr {
public:
    Bstr() = default;
    explicit Bstr(const std::wstring& text) : text_(SysAllocStringLen(text.data(), text.size())) {}
    Bstr(const Bstr&) = delete;
    ~Bstr() { SysFreeString(text_); }
    BSTR* put() { return &text_; }
    BSTR get() const { return text_; }
    std::wstring text() const { return {text_ ? text_ : L"", SysStringLen(text_)}; }

private:
    BSTR text_ = nullptr;
};

class AnyValue {
public:
    AnyValue() { VariantInit(&value_); }
    AnyValue(const AnyValue&) = delete;
    ~AnyValue() { VariantClear(&value_); }
    VARIANT* put() {
        VariantClear(&value_);
        return &value_;
    }
    const VARIANT& get() const { return value_; }
    std::wstring text() const { return value_.vt == VT_BSTR ? value_.bstrVal : L"(no text)"; }

private:
    VARIANT value_;
};

template <class I>
Held<I> create(const CLSID& clsid) {
    Held<I> object;
    check_result(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(I),
                                  reinterpret_cast<void**>(object.put())),
                 S_OK, "creation");
    return object;
}
