// What a script needs to look into the outsider: its journal, failures to come, values to answer,
// and calls with named arguments, which these languages cannot write.

#include "object.h"

namespace {

constexpr const OLECHAR* members[] = {
    OLESTR("Take"),            // () -> the journal since the last time
    OLESTR("Fail"),            // (operation, number, description): of the operation's next call
    OLESTR("Give"),            // (attribute, value): what GetValues answers
    OLESTR("CallNamed"),       // (object, member, names, values) -> the member's result
    OLESTR("SetByReference"),  // (object, property, value)
};

// What stands in a caller's variable, too.
VARIANT followed(VARIANT passed) {
    VARIANT value;
    VariantInit(&value);
    VariantCopyInd(&value, &passed);
    return value;
}

HRESULT call_named(IDispatch* object, const Words& member, const std::vector<VARIANT>& names,
                   std::vector<VARIANT> values, VARIANT* result, EXCEPINFO* failure) {
    std::vector<Words> words{member};
    for (const VARIANT& name : names) words.push_back(shown(name));
    std::vector<LPOLESTR> raw;
    for (Words& word : words) raw.push_back(word.data());
    std::vector<DISPID> ids(raw.size(), DISPID_UNKNOWN);
    const HRESULT known = object->GetIDsOfNames(
        no_interface, raw.data(), static_cast<UINT>(raw.size()), LOCALE_NEUTRAL, ids.data());
    if (FAILED(known)) return known;
    DISPPARAMS passed{values.data(), ids.data() + 1, static_cast<UINT>(values.size()),
                      static_cast<UINT>(names.size())};
    UINT bad = 0;
    return object->Invoke(ids[0], no_interface, LOCALE_NEUTRAL,
                          DISPATCH_METHOD | DISPATCH_PROPERTYGET, &passed, result, failure, &bad);
}

HRESULT set_by_reference(IDispatch* object, const Words& property, VARIANT value) {
    constexpr WORD by_reference = 8;
    Words name = property;
    LPOLESTR names = name.data();
    DISPID id = DISPID_UNKNOWN;
    const HRESULT known = object->GetIDsOfNames(no_interface, &names, 1, LOCALE_NEUTRAL, &id);
    if (FAILED(known)) return known;
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS passed{&value, &put, 1, 1};
    UINT bad = 0;
    return object->Invoke(id, no_interface, LOCALE_NEUTRAL, by_reference, &passed, nullptr, nullptr,
                          &bad);
}

class Probe : public Foreign<IDispatch, IID_IDispatch> {
public:
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) override {
        for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
        for (DISPID id = 0; const OLECHAR* member : members) {
            ++id;
            if (count == 1 && Words(names[0]) == member) ids[0] = id;
        }
        return count == 1 && ids[0] != DISPID_UNKNOWN ? S_OK : DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* passed,
                                     VARIANT* result, EXCEPINFO* failure, UINT*) override {
        std::vector<VARIANT> arguments;
        for (UINT i = passed->cArgs; i > 0; --i)
            arguments.push_back(followed(passed->rgvarg[i - 1]));
        VARIANT answer;
        VariantInit(&answer);
        const HRESULT code = run(id, arguments, answer, failure);
        for (VARIANT& argument : arguments) VariantClear(&argument);
        if (result != nullptr)
            *result = answer;
        else
            VariantClear(&answer);
        return code;
    }

private:
    static HRESULT run(DISPID id, std::vector<VARIANT>& arguments, VARIANT& answer,
                       EXCEPINFO* failure) {
        constexpr std::size_t counts[] = {0, 3, 2, 4, 3};
        if (id < 1 || id > 5) return DISP_E_MEMBERNOTFOUND;
        if (arguments.size() != counts[id - 1]) return DISP_E_BADPARAMCOUNT;
        if (id == 1) {
            answer = text_value(take_journal());
        } else if (id == 2) {
            VARIANT number;
            VariantInit(&number);
            const HRESULT code = VariantChangeTypeEx(&number, &arguments[1], 0x409, 0, VT_I4);
            if (FAILED(code)) return code;
            fail_next(shown(arguments[0]), number.lVal, shown(arguments[2]));
        } else if (id == 3) {
            give(shown(arguments[0]), arguments[1]);
        } else if (id == 5) {
            return set_by_reference(arguments[0].pdispVal, shown(arguments[1]), arguments[2]);
        } else {
            std::vector<VARIANT> names = elements_of(arguments[2]);
            std::vector<VARIANT> values = elements_of(arguments[3]);
            const HRESULT code = call_named(arguments[0].pdispVal, shown(arguments[1]), names,
                                            values, &answer, failure);
            for (VARIANT& name : names) VariantClear(&name);
            for (VARIANT& value : values) VariantClear(&value);
            return code;
        }
        return S_OK;
    }
};

}  // namespace

IUnknown* new_probe() { return static_cast<IDispatch*>(new Probe); }
