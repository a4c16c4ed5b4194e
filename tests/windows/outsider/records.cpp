#include "records.h"

#include <algorithm>

namespace {

constexpr WORD get = DISPATCH_PROPERTYGET;
constexpr WORD put = DISPATCH_PROPERTYPUT;
constexpr WORD method = DISPATCH_METHOD;

enum : DISPID {
    item = 0,
    eof,
    move_next,
    move_first,
    name,
    join,
    part,
    next,
    touch,
    touches,
    is_same,
    broken,
    new_enum = -4,
};

}  // namespace

const std::vector<RecordsMember> records_members = {
    {OLESTR("Item"), item, get | put, 1, 1, VT_VARIANT},
    {OLESTR("EOF"), eof, get, 0, 0, VT_BOOL},
    {OLESTR("MoveNext"), move_next, method, 0, 0, VT_EMPTY},
    {OLESTR("MoveFirst"), move_first, method, 0, 0, VT_EMPTY},
    {OLESTR("Name"), name, get | put, 0, 0, VT_BSTR},
    {OLESTR("Join"), join, method, 2, 3, VT_BSTR},
    {OLESTR("Part"), part, get, 0, 1, VT_BSTR},
    {OLESTR("Next"), next, get, 0, 0, VT_DISPATCH},
    {OLESTR("Touch"), touch, method, 0, 0, VT_I4},
    {OLESTR("Touches"), touches, get, 0, 0, VT_I4},
    {OLESTR("IsSame"), is_same, method, 1, 1, VT_BOOL},
    {OLESTR("Broken"), broken, get, 0, 0, VT_BSTR},
    {OLESTR("_NewEnum"), new_enum, get | method, 0, 0, VT_DISPATCH},
};

namespace {

bool is_same_word(const Words& a, const Words& b) {
    const auto folded = [](OLECHAR unit) {
        return unit >= OLECHAR('A') && unit <= OLECHAR('Z') ? static_cast<OLECHAR>(unit + 32)
                                                            : unit;
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](OLECHAR x, OLECHAR y) { return folded(x) == folded(y); });
}

VARIANT empty_value() {
    VARIANT value;
    VariantInit(&value);
    return value;
}

VARIANT number_value(LONG number) {
    VARIANT value = empty_value();
    value.vt = VT_I4;
    value.lVal = number;
    return value;
}

VARIANT boolean_value(bool is_true) {
    VARIANT value = empty_value();
    value.vt = VT_BOOL;
    value.boolVal = is_true ? VARIANT_TRUE : 0;
    return value;
}

VARIANT object_value(IUnknown* object, VARTYPE type) {
    VARIANT value = empty_value();
    value.vt = type;
    value.punkVal = object;
    return value;
}

// A text, whatever a caller passed for it.
Words text_of(VARIANT value) {
    VARIANT text = empty_value();
    Words word;
    if (SUCCEEDED(VariantChangeTypeEx(&text, &value, 0x409, 0, VT_BSTR)))
        word = Words(text.bstrVal != nullptr ? text.bstrVal : OLESTR(""));
    VariantClear(&text);
    return word;
}

class NameEnumerator : public IEnumVARIANT {
public:
    explicit NameEnumerator(std::vector<Words> names) : names_(std::move(names)) {}
    virtual ~NameEnumerator() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        const bool is_known = iid == IID_IUnknown || iid == IID_IEnumVARIANT;
        *out = is_known ? this : nullptr;
        if (is_known) AddRef();
        return is_known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* values, ULONG* fetched) override {
        ULONG given = 0;
        for (; given < count && at_ < names_.size(); ++given)
            values[given] = text_value(names_[at_++]);
        if (fetched != nullptr) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        at_ = std::min(names_.size(), at_ + count);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        at_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** out) override {
        *out = nullptr;
        return E_NOTIMPL;
    }

private:
    std::atomic<ULONG> references_{1};
    std::vector<Words> names_;
    std::size_t at_ = 0;
};

class Records : public Foreign<IDispatch, IID_IDispatch> {
public:
    Records(Manner manner, std::size_t row) : manner_(manner), row_(row) {}

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = manner_ == Manner::typed ? 1 : 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** out) override {
        *out = manner_ == Manner::typed ? new_type_information() : nullptr;
        return *out != nullptr ? S_OK : E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) override {
        for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
        for (const RecordsMember& member : records_members)
            if (is_same_word(names[0], member.name)) ids[0] = member.id;
        return count == 1 && ids[0] != DISPID_UNKNOWN ? S_OK : DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* passed,
                                     VARIANT* result, EXCEPINFO* failure, UINT*) override {
        const auto member = std::find_if(records_members.begin(), records_members.end(),
                                         [&](const RecordsMember& one) { return one.id == id; });
        if (member == records_members.end()) return DISP_E_MEMBERNOTFOUND;
        if (manner_ != Manner::careless && !(flags & member->invocations))
            return DISP_E_MEMBERNOTFOUND;
        const bool is_put = (flags & put) != 0;
        std::vector<VARIANT> arguments;
        for (UINT i = passed->cArgs; i > 0; --i) {
            arguments.push_back(empty_value());
            VariantCopyInd(&arguments.back(), &passed->rgvarg[i - 1]);
        }
        const auto count = static_cast<short>(arguments.size()) - (is_put ? 1 : 0);
        HRESULT code = DISP_E_BADPARAMCOUNT;
        VARIANT answer = empty_value();
        if (count >= member->least && count <= member->most)
            code = is_put ? write(id, arguments) : read(id, arguments, answer, failure);
        for (VARIANT& argument : arguments) VariantClear(&argument);
        if (result != nullptr)
            *result = answer;
        else
            VariantClear(&answer);
        return code;
    }

private:
    HRESULT write(DISPID id, const std::vector<VARIANT>& arguments) {
        if (id != name) return DISP_E_MEMBERNOTFOUND;
        names_[row_] = text_of(arguments[0]);
        return S_OK;
    }

    HRESULT read(DISPID id, const std::vector<VARIANT>& arguments, VARIANT& answer,
                 EXCEPINFO* failure) {
        switch (id) {
            case item:
                answer = text_value(names_[row_] + OLESTR(" ") + text_of(arguments[0]));
                break;
            case eof:
                answer = boolean_value(row_ == names_.size());
                break;
            case move_next:
                ++row_;
                break;
            case move_first:
                row_ = 0;
                break;
            case name:
                answer = text_value(names_[row_]);
                break;
            case join: {
                const Words between = arguments.size() > 2 ? text_of(arguments[2]) : Words();
                answer = text_value(text_of(arguments[0]) + between + text_of(arguments[1]));
                break;
            }
            case part:
                answer = text_value(arguments.empty() ? OLESTR("whole")
                                                      : OLESTR("part ") + text_of(arguments[0]));
                break;
            case next:
                answer = object_value(static_cast<IDispatch*>(new Records(manner_, row_ + 1)),
                                      VT_DISPATCH);
                break;
            case touch:
                answer = number_value(++touches_);
                break;
            case touches:
                answer = number_value(touches_);
                break;
            case is_same:
                answer = boolean_value(arguments[0].vt == VT_DISPATCH &&
                                       arguments[0].pdispVal == static_cast<IDispatch*>(this));
                break;
            case broken:
                if (failure == nullptr) return DISP_E_EXCEPTION;
                *failure = {};
                failure->bstrSource = copy_of(OLESTR("Records"));
                failure->bstrDescription = copy_of(OLESTR("it is broken"));
                failure->scode = static_cast<HRESULT>(0x80041234);
                return DISP_E_EXCEPTION;
            case new_enum:
                answer = object_value(new NameEnumerator(names_), VT_UNKNOWN);
                break;
        }
        return S_OK;
    }

    const Manner manner_;
    std::vector<Words> names_{OLESTR("ann"), OLESTR("bob"), OLESTR("cid")};
    std::size_t row_;
    LONG touches_ = 0;
};

}  // namespace

IUnknown* new_records(Manner manner) { return static_cast<IDispatch*>(new Records(manner, 0)); }
