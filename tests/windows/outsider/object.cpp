#define INITGUID
#include "object.h"

#include <map>
#include <utility>

namespace {

struct Failure {
    HRESULT code;
    Words description;
};

struct State {
    Words journal;
    std::map<Words, Failure> failures;
    std::map<Words, VARIANT> values;
};

State& state() {
    static State& all = *new State;
    return all;
}

void leave_error_object(REFIID iid, Words description) {
    ICreateErrorInfo* made = nullptr;
    if (FAILED(CreateErrorInfo(&made))) return;
    made->SetGUID(iid);
    Words source = OLESTR("Outsider");
    made->SetSource(source.data());
    made->SetDescription(description.data());
    void* readable = nullptr;
    if (SUCCEEDED(made->QueryInterface(IID_IErrorInfo, &readable))) {
        SetErrorInfo(0, static_cast<IErrorInfo*>(readable));
        static_cast<IErrorInfo*>(readable)->Release();
    }
    made->Release();
}

}  // namespace

void note(const Words& line) { state().journal += line + OLESTR("\n"); }

Words take_journal() { return std::exchange(state().journal, Words()); }

Words shown(BSTR text) { return text ? Words(text, SysStringLen(text)) : Words(); }

Words shown(LONG number) {
    Words digits;
    const std::string narrow = std::to_string(number);
    for (const char digit : narrow) digits += static_cast<OLECHAR>(digit);
    return digits;
}

Words shown(VARIANT value) {
    switch (value.vt) {
        case VT_EMPTY:
            return OLESTR("Empty");
        case VT_NULL:
            return OLESTR("Null");
        case VT_BSTR:
            return shown(value.bstrVal);
        case VT_DISPATCH:
            return value.pdispVal ? OLESTR("an object") : OLESTR("Nothing");
        case VT_ARRAY | VT_VARIANT: {
            Words all;
            for (VARIANT& element : elements_of(value)) {
                all += (all.empty() ? Words() : Words(OLESTR(", "))) + shown(element);
                VariantClear(&element);
            }
            return OLESTR("[") + all + OLESTR("]");
        }
        default:
            break;
    }
    VARIANT text;
    VariantInit(&text);
    if (FAILED(VariantChangeTypeEx(&text, &value, 0x409, 0, VT_BSTR))) return OLESTR("?");
    const Words words = shown(text.bstrVal);
    VariantClear(&text);
    return words;
}

void fail_next(const Words& operation, HRESULT code, const Words& description) {
    state().failures[operation] = {code, description};
}

HRESULT outcome_of(const OLECHAR* operation, REFIID iid) {
    const auto failure = state().failures.find(operation);
    if (failure == state().failures.end()) return S_OK;
    const Failure raised = failure->second;
    state().failures.erase(failure);
    leave_error_object(iid, raised.description);
    return raised.code;
}

BSTR copy_of(const Words& text) {
    return SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

VARIANT text_value(const Words& text) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = copy_of(text);
    return value;
}

VARIANT array_value(std::vector<VARIANT> values) {
    VARIANT array;
    VariantInit(&array);
    array.vt = VT_ARRAY | VT_VARIANT;
    array.parray = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(values.size()));
    for (LONG i = 0; VARIANT & value : values) {
        SafeArrayPutElement(array.parray, &i, &value);
        VariantClear(&value);
        ++i;
    }
    return array;
}

std::vector<VARIANT> elements_of(const VARIANT& array) {
    std::vector<VARIANT> elements;
    LONG last = -1;
    LONG at = 0;
    if (array.vt != (VT_ARRAY | VT_VARIANT)) return elements;
    SafeArrayGetLBound(array.parray, 1, &at);
    SafeArrayGetUBound(array.parray, 1, &last);
    for (; at <= last; ++at) {
        VARIANT element;
        VariantInit(&element);
        SafeArrayGetElement(array.parray, &at, &element);
        elements.push_back(element);
    }
    return elements;
}

void give(const Words& attribute, VARIANT value) {
    VARIANT& kept = state().values[attribute];
    VariantInit(&kept);
    VariantCopyInd(&kept, &value);
}

VARIANT given(const Words& attribute) {
    VARIANT value;
    VariantInit(&value);
    const auto kept = state().values.find(attribute);
    if (kept != state().values.end()) VariantCopyInd(&value, &kept->second);
    return value.vt == (VT_ARRAY | VT_VARIANT) ? value : array_value({value});
}

HRESULT call(IDispatch* object, const OLECHAR* member, WORD flags, std::vector<VARIANT> arguments,
             VARIANT* result, EXCEPINFO* failure) {
    Words name = member;
    LPOLESTR names = name.data();
    DISPID id = DISPID_UNKNOWN;
    const HRESULT known = object->GetIDsOfNames(no_interface, &names, 1, LOCALE_NEUTRAL, &id);
    if (FAILED(known)) return known;
    std::vector<VARIANT> backwards(arguments.rbegin(), arguments.rend());
    DISPID put = DISPID_PROPERTYPUT;
    const bool is_put = flags == DISPATCH_PROPERTYPUT;
    DISPPARAMS passed{backwards.data(), is_put ? &put : nullptr,
                      static_cast<UINT>(backwards.size()), is_put ? 1u : 0u};
    UINT bad = 0;
    return object->Invoke(id, no_interface, LOCALE_NEUTRAL, flags, &passed, result, failure, &bad);
}
