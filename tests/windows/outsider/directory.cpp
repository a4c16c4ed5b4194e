// A directory provider that has no directory: what it is asked is noted, what it answers was given.

#include "object.h"

namespace {

// Rows with two users: their names, and 7 for all else. The record set is the platform's, because
// not every system has one of its own that works.
HRESULT make_rows(const std::vector<VARIANT>& columns, IDispatch** out) {
    CLSID kind;
    HRESULT code = CLSIDFromProgID(OLESTR("OrvoPlatform.Recordset"), &kind);
    if (FAILED(code)) return code;
    code = CoCreateInstance(kind, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                            reinterpret_cast<void**>(out));
    if (FAILED(code)) return code;
    IDispatch* rows = *out;
    VARIANT fields;
    VariantInit(&fields);
    code = call(rows, OLESTR("Fields"), DISPATCH_PROPERTYGET, {}, &fields);
    VARIANT wide_text;
    VariantInit(&wide_text);
    wide_text.vt = VT_I4;
    wide_text.lVal = 202;
    VARIANT size = wide_text;
    size.lVal = 50;
    VARIANT may_be_null = wide_text;
    may_be_null.lVal = 0x20;
    for (const VARIANT& column : columns)
        if (SUCCEEDED(code))
            code = call(fields.pdispVal, OLESTR("Append"), DISPATCH_METHOD,
                        {column, wide_text, size, may_be_null});
    if (SUCCEEDED(code)) code = call(rows, OLESTR("Open"), DISPATCH_METHOD, {});
    for (const OLECHAR* name : {OLESTR("ann"), OLESTR("bob")}) {
        if (SUCCEEDED(code)) code = call(rows, OLESTR("AddNew"), DISPATCH_METHOD, {});
        for (const VARIANT& column : columns) {
            const bool is_first = &column == &columns.front();
            VARIANT value =
                text_value(is_first || shown(column) == OLESTR("cn") ? name : OLESTR("7"));
            if (SUCCEEDED(code))
                code = call(rows, OLESTR("Collect"), DISPATCH_PROPERTYPUT, {column, value});
            VariantClear(&value);
        }
        if (SUCCEEDED(code)) code = call(rows, OLESTR("Update"), DISPATCH_METHOD, {});
    }
    if (SUCCEEDED(code)) code = call(rows, OLESTR("MoveFirst"), DISPATCH_METHOD, {});
    VariantClear(&fields);
    return code;
}

class Entry : public Foreign<IDirectoryEntry, IID_IDirectoryEntry> {
public:
    HRESULT STDMETHODCALLTYPE Reserved1() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Bind(BSTR* server, BSTR* container, BSTR* name, BSTR* user,
                                   BSTR* password, VARIANT* attributes) override {
        note_call(OLESTR("Bind"), server, container, name, user, password, attributes);
        return outcome_of(OLESTR("Bind"), IID_IDirectoryEntry);
    }
    HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetValues(BSTR* name, VARIANT* result) override {
        note_call(OLESTR("GetValues"), name);
        const HRESULT code = outcome_of(OLESTR("GetValues"), IID_IDirectoryEntry);
        if (SUCCEEDED(code)) *result = given(shown(name));
        return code;
    }
    HRESULT STDMETHODCALLTYPE SetValues(BSTR* name, VARIANT* value) override {
        note_call(OLESTR("SetValues"), name, value);
        return outcome_of(OLESTR("SetValues"), IID_IDirectoryEntry);
    }
    HRESULT STDMETHODCALLTYPE ClearValues(BSTR* name) override {
        note_call(OLESTR("ClearValues"), name);
        return outcome_of(OLESTR("ClearValues"), IID_IDirectoryEntry);
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateChild(VARIANT* classes, BSTR* naming,
                                          IDispatch** attributes) override {
        VARIANT names;
        VariantInit(&names);
        call(*attributes, OLESTR("Keys"), DISPATCH_METHOD, {}, &names);
        note_call(OLESTR("CreateChild"), classes, naming, names);
        VariantClear(&names);
        return outcome_of(OLESTR("CreateChild"), IID_IDirectoryEntry);
    }
    HRESULT STDMETHODCALLTYPE DeleteChild(BSTR* kind, BSTR* name) override {
        note_call(OLESTR("DeleteChild"), kind, name);
        return outcome_of(OLESTR("DeleteChild"), IID_IDirectoryEntry);
    }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitializeConnectionPool(VARIANT* names, VARIANT* values,
                                                       VARIANT_BOOL* result) override {
        note_call(OLESTR("InitializeConnectionPool"), names, values);
        *result = VARIANT_TRUE;
        return outcome_of(OLESTR("InitializeConnectionPool"), IID_IDirectoryEntry);
    }
    HRESULT STDMETHODCALLTYPE InitializeCache(VARIANT* names, VARIANT* values,
                                              VARIANT_BOOL* result) override {
        note_call(OLESTR("InitializeCache"), names, values);
        *result = 0;
        return outcome_of(OLESTR("InitializeCache"), IID_IDirectoryEntry);
    }
};

class Search : public Foreign<IDirectorySearch, IID_IDirectorySearch> {
public:
    HRESULT STDMETHODCALLTYPE Reserved1() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Connect(BSTR* server, BSTR* container, BSTR* user,
                                      BSTR* password) override {
        note_call(OLESTR("Connect"), server, container, user, password);
        return outcome_of(OLESTR("Connect"), IID_IDirectorySearch);
    }
    HRESULT STDMETHODCALLTYPE Execute(BSTR* filter, VARIANT* attributes, LONG maximum,
                                      IDispatch** result) override {
        note_call(OLESTR("Execute"), filter, attributes, maximum);
        *result = nullptr;
        HRESULT code = outcome_of(OLESTR("Execute"), IID_IDirectorySearch);
        std::vector<VARIANT> columns = elements_of(*attributes);
        if (SUCCEEDED(code)) code = make_rows(columns, result);
        for (VARIANT& column : columns) VariantClear(&column);
        return code;
    }
};

class Validator : public Foreign<IDirectoryValidator, IID_IDirectoryValidator> {
public:
    HRESULT STDMETHODCALLTYPE Reserved1() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Open(BSTR* server, BSTR* container) override {
        note_call(OLESTR("Open"), server, container);
        return outcome_of(OLESTR("Open"), IID_IDirectoryValidator);
    }
    HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Validate(VARIANT* path, VARIANT* password, LONG* result) override {
        note_call(OLESTR("Validate"), path, password);
        *result = -4;
        return outcome_of(OLESTR("Validate"), IID_IDirectoryValidator);
    }
};

class Schema : public Foreign<IDirectorySchema, IID_IDirectorySchema> {};

class Module : public Foreign<IDirectoryModule, IID_IDirectoryModule> {
public:
    HRESULT STDMETHODCALLTYPE Reserved1() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateSchema(IDirectorySchema** result) override {
        return made<Schema>(OLESTR("CreateSchema"), result);
    }
    HRESULT STDMETHODCALLTYPE CreateEntry(IDirectoryEntry** result) override {
        return made<Entry>(OLESTR("CreateEntry"), result);
    }
    HRESULT STDMETHODCALLTYPE CreateValidator(IDirectoryValidator** result) override {
        return made<Validator>(OLESTR("CreateValidator"), result);
    }
    HRESULT STDMETHODCALLTYPE CreateSearch(IDirectorySearch** result) override {
        return made<Search>(OLESTR("CreateSearch"), result);
    }

private:
    template <class C, class I>
    static HRESULT made(const OLECHAR* operation, I** result) {
        note_call(operation);
        *result = nullptr;
        const HRESULT code = outcome_of(operation, IID_IDirectoryModule);
        if (SUCCEEDED(code)) *result = new C;
        return code;
    }
};

}  // namespace

IUnknown* new_directory() {
    note(OLESTR("new Outsider.Directory"));
    return static_cast<IDirectoryModule*>(new Module);
}
