#pragma once

// Objects of somebody who knows the published interfaces and nothing else: counted by hand, called
// by slot; what they are called with is noted.

#include <TavikPMMInterfaces.h>

#include <atomic>
#include <string>
#include <vector>

using Words = std::basic_string<OLECHAR>;

// One line of the journal for each call, in their order.
void note(const Words& line);
Words take_journal();

// A value as the journal shows it.
Words shown(BSTR text);
Words shown(VARIANT value);
inline Words shown(BSTR* text) { return shown(*text); }
inline Words shown(VARIANT* value) { return shown(*value); }
Words shown(LONG number);

// Notes "operation(a, b, …)".
template <class... A>
void note_call(const OLECHAR* operation, const A&... arguments) {
    Words line = Words(operation) + OLESTR("(");
    const Words* separator = nullptr;
    const Words comma = OLESTR(", ");
    [[maybe_unused]] auto add = [&](const Words& word) {
        line += (separator ? *separator : Words()) + word;
        separator = &comma;
    };
    (add(shown(arguments)), ...);
    note(line + OLESTR(")"));
}

// Makes the next call of an operation fail, with an error object.
void fail_next(const Words& operation, HRESULT code, const Words& description);
// What a call of the operation is to answer.
HRESULT outcome_of(const OLECHAR* operation, REFIID iid);

BSTR copy_of(const Words& text);
VARIANT text_value(const Words& text);
// An array of values with lower bound 0, which takes their content over.
VARIANT array_value(std::vector<VARIANT> values);
std::vector<VARIANT> elements_of(const VARIANT& array);

// What an attribute is answered with; an array with one empty value where nothing was given.
void give(const Words& attribute, VARIANT value);
VARIANT given(const Words& attribute);

// An object with one interface of its own. Late binding is refused: the component calls by slot.
template <class I, const IID& own>
class Foreign : public I, public ISupportErrorInfo {
public:
    virtual ~Foreign() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        *out = nullptr;
        if (iid == IID_IUnknown || iid == IID_IDispatch || iid == own)
            *out = static_cast<I*>(this);
        else if (iid == IID_ISupportErrorInfo)
            *out = static_cast<ISupportErrorInfo*>(this);
        if (*out == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override {
        return iid == own ? S_OK : S_FALSE;
    }

private:
    std::atomic<ULONG> references_{1};
};

// What late binding wants in the place of an interface.
inline constexpr IID no_interface{};

// Calls a member by name; arguments in the order of its parameters.
HRESULT call(IDispatch* object, const OLECHAR* member, WORD flags, std::vector<VARIANT> arguments,
             VARIANT* result = nullptr, EXCEPINFO* failure = nullptr);

// New objects, by the names under which callers create them.
IUnknown* new_directory();
IUnknown* new_configuration();
IUnknown* new_log();
IUnknown* new_probe();
