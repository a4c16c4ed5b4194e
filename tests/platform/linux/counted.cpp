#include "counted.h"

namespace orvo::testing {

using namespace abi;

namespace {

HRESULT query(Counted* self, const IID* iid, void** out) {
    bool known = *iid == iid_unknown || (*iid == iid_dispatch && self->has_dispatch);
    *out = known ? self : nullptr;
    if (!known) return e_nointerface;
    ++self->references;
    return s_ok;
}
std::uint32_t add(Counted* self) { return static_cast<std::uint32_t>(++self->references); }
std::uint32_t drop(Counted* self) { return static_cast<std::uint32_t>(--self->references); }
HRESULT no_type_info_count(Counted*, std::uint32_t* count) {
    *count = 0;
    return s_ok;
}
HRESULT no_type_info(Counted*) { return e_notimpl; }
HRESULT no_names(Counted*) { return disp_e_unknownname; }
HRESULT invoke(Counted* self, DISPID id, const IID*, LCID locale, std::uint16_t flags,
               DISPPARAMS* arguments, VARIANT* value, EXCEPINFO* details, std::uint32_t* wrong) {
    ++self->invoked;
    self->locale = locale;
    self->flags = flags;
    self->had_details = details != nullptr || wrong != nullptr;
    if (id != DISPID_VALUE || arguments->cArgs != 0) return disp_e_membernotfound;
    if (self->during) self->during();
    if (failed(self->default_result)) return self->default_result;
    return VariantCopy(value, &self->default_value);
}

const Slot slots[] = {
    reinterpret_cast<Slot>(query),        reinterpret_cast<Slot>(add),
    reinterpret_cast<Slot>(drop),         reinterpret_cast<Slot>(no_type_info_count),
    reinterpret_cast<Slot>(no_type_info), reinterpret_cast<Slot>(no_names),
    reinterpret_cast<Slot>(invoke)};

}  // namespace

Counted::Counted() { this->abi::IUnknown::slots = testing::slots; }

}  // namespace orvo::testing
