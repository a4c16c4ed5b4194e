// Type information that was written by hand: the attributes and functions of a dispatch interface.

#include "records.h"

namespace {

// One row for each way in which a member can be called.
struct Function {
    FUNCDESC description;
    std::vector<ELEMDESC> parameters;
};

std::vector<Function> functions() {
    std::vector<Function> all;
    for (const RecordsMember& member : records_members) {
        for (const WORD way : {DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT}) {
            if (!(member.invocations & way)) continue;
            Function function{};
            const bool is_put = way == DISPATCH_PROPERTYPUT;
            for (short i = 0; i < member.most + (is_put ? 1 : 0); ++i) {
                ELEMDESC parameter{};
                parameter.tdesc.vt = VT_VARIANT;
                parameter.paramdesc.wParamFlags = PARAMFLAG_FIN;
                if (i >= member.least && i < member.most)
                    parameter.paramdesc.wParamFlags |= PARAMFLAG_FOPT;
                function.parameters.push_back(parameter);
            }
            function.description.memid = member.id;
            function.description.funckind = FUNC_DISPATCH;
            function.description.invkind = static_cast<INVOKEKIND>(way);
            function.description.cParams = static_cast<SHORT>(function.parameters.size());
            function.description.elemdescFunc.tdesc.vt = member.answer;
            all.push_back(function);
        }
    }
    for (Function& function : all)
        function.description.lprgelemdescParam = function.parameters.data();
    return all;
}

class TypeInformation : public ITypeInfo {
public:
    virtual ~TypeInformation() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        const bool is_known = iid == IID_IUnknown || iid == IID_ITypeInfo;
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
    HRESULT STDMETHODCALLTYPE GetTypeAttr(TYPEATTR** out) override {
        *out = new TYPEATTR{};
        (*out)->typekind = TKIND_DISPATCH;
        (*out)->cFuncs = static_cast<WORD>(functions_.size());
        return S_OK;
    }
    void STDMETHODCALLTYPE ReleaseTypeAttr(TYPEATTR* attributes) override { delete attributes; }
    HRESULT STDMETHODCALLTYPE GetFuncDesc(UINT index, FUNCDESC** out) override {
        *out = &functions_[index].description;
        return S_OK;
    }
    void STDMETHODCALLTYPE ReleaseFuncDesc(FUNCDESC*) override {}

    HRESULT STDMETHODCALLTYPE GetTypeComp(ITypeComp**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetVarDesc(UINT, VARDESC**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetNames(MEMBERID, BSTR*, UINT, UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetRefTypeOfImplType(UINT, HREFTYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetImplTypeFlags(UINT, INT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(LPOLESTR*, UINT, MEMBERID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(void*, MEMBERID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDocumentation(MEMBERID, BSTR*, BSTR*, DWORD*, BSTR*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDllEntry(MEMBERID, INVOKEKIND, BSTR*, BSTR*, WORD*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetRefTypeInfo(HREFTYPE, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE AddressOfMember(MEMBERID, INVOKEKIND, void**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, void**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetMops(MEMBERID, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainingTypeLib(ITypeLib**, UINT*) override { return E_NOTIMPL; }
    void STDMETHODCALLTYPE ReleaseVarDesc(VARDESC*) override {}

private:
    std::atomic<ULONG> references_{1};
    std::vector<Function> functions_ = functions();
};

}  // namespace

ITypeInfo* new_type_information() { return new TypeInformation; }
