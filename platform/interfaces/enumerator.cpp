#include "platform/interfaces/enumerator.h"

#include <algorithm>
#include <array>
#include <memory>

#include "platform/interfaces/border.h"
#include "platform/interfaces/dispatch.h"
#include "platform/interfaces/face.h"
#include "platform/interfaces/standard_slots.h"

namespace orvo {
namespace detail {
namespace {

using abi::HRESULT;

using Items = std::shared_ptr<const std::vector<Variant>>;

const InterfaceInfo& enumerator_info() {
    static const InterfaceInfo info{&abi::iid_enum_variant, false, {}};
    return info;
}

const abi::Slot* enumerator_slots();

class Enumerator final : public ObjectCore {
public:
    Enumerator(Items items, std::size_t next)
        : ObjectCore("Enumerator", false),
          items_(std::move(items)),
          next_(next),
          face_{enumerator_slots(), this, this, &enumerator_info()} {}

    std::span<Face> faces() override { return {&face_, 1}; }
    abi::IUnknown* get() { return reinterpret_cast<abi::IUnknown*>(&face_); }

    std::size_t left() const { return items_->size() - next_; }
    const Variant& take() { return (*items_)[next_++]; }
    void skip(std::size_t count) { next_ += count; }
    void reset() { next_ = 0; }
    Enumerator* clone() const { return new Enumerator(items_, next_); }

private:
    Items items_;
    std::size_t next_;
    Face face_;
};

Enumerator& enumerator_of(Face* face) { return *static_cast<Enumerator*>(face->target); }

HRESULT next(Face* face, std::uint32_t wanted, abi::VARIANT* out, std::uint32_t* fetched) noexcept {
    if (fetched != nullptr) *fetched = 0;
    if (!face->core->is_called_at_home()) return abi::rpc_e_wrong_thread;
    if (out == nullptr || (fetched == nullptr && wanted != 1)) return abi::e_pointer;
    Enumerator& self = enumerator_of(face);
    const auto given = static_cast<std::uint32_t>(std::min<std::size_t>(wanted, self.left()));
    try {
        for (std::uint32_t i = 0; i < given; ++i) {
            Variant(self.take()).detach(out[i]);
            if (fetched != nullptr) ++*fetched;
        }
    } catch (...) {
        return report_current_exception(abi::iid_enum_variant, face->core->source());
    }
    return given == wanted ? abi::s_ok : abi::s_false;
}

HRESULT skip(Face* face, std::uint32_t count) noexcept {
    if (!face->core->is_called_at_home()) return abi::rpc_e_wrong_thread;
    Enumerator& self = enumerator_of(face);
    const std::size_t skipped = std::min<std::size_t>(count, self.left());
    self.skip(skipped);
    return skipped == count ? abi::s_ok : abi::s_false;
}

HRESULT reset(Face* face) noexcept {
    if (!face->core->is_called_at_home()) return abi::rpc_e_wrong_thread;
    enumerator_of(face).reset();
    return abi::s_ok;
}

HRESULT clone(Face* face, abi::IUnknown** out) noexcept {
    if (out == nullptr) return abi::e_pointer;
    *out = nullptr;
    if (!face->core->is_called_at_home()) return abi::rpc_e_wrong_thread;
    try {
        *out = enumerator_of(face).clone()->get();
        return abi::s_ok;
    } catch (...) {
        return report_current_exception(abi::iid_enum_variant, face->core->source());
    }
}

const abi::Slot* enumerator_slots() {
    static const auto slots = [] {
        std::array<abi::Slot, 7> all;
        put_standard_slots(all.data(), false);
        all[abi::slot_enum_next] = reinterpret_cast<abi::Slot>(&next);
        all[abi::slot_enum_skip] = reinterpret_cast<abi::Slot>(&skip);
        all[abi::slot_enum_reset] = reinterpret_cast<abi::Slot>(&reset);
        all[abi::slot_enum_clone] = reinterpret_cast<abi::Slot>(&clone);
        return all;
    }();
    return slots.data();
}

}  // namespace
}  // namespace detail

Object make_enumerator(std::vector<Variant> items) {
    auto shared = std::make_shared<const std::vector<Variant>>(std::move(items));
    return Object::attach((new detail::Enumerator(std::move(shared), 0))->get());
}

namespace late {
namespace {

constexpr std::int32_t not_a_collection = 451;

// The enumerator that the collection's `_NewEnum` answers.
Object enumerator_of(const Object& collection) {
    static constexpr abi::IID none{};
    abi::DISPPARAMS no_arguments{};
    abi::VARIANT raw{};
    abi::EXCEPINFO failure{};
    const abi::HRESULT code =
        abi::call_slot<abi::HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                       abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
            collection.get(), abi::slot_invoke, abi::DISPID_NEWENUM, &none, abi::fixed_locale,
            abi::DISPATCH_METHOD | abi::DISPATCH_PROPERTYGET, &no_arguments, &raw, &failure,
            nullptr);
    if (code == abi::disp_e_membernotfound) raise_runtime_error(not_a_collection);
    if (abi::failed(code)) detail::raise_late_failure(code, failure);
    const Variant answer = Variant::attach(raw);
    Object enumerator;
    if (!answer.is_object() || answer.get()->punkVal == nullptr ||
        abi::failed(abi::query_interface(answer.get()->punkVal, abi::iid_enum_variant,
                                         reinterpret_cast<void**>(enumerator.put()))))
        raise_runtime_error(not_a_collection);
    return enumerator;
}

}  // namespace

std::vector<Variant> items_of(const Object& collection) {
    if (!collection) raise_runtime_error(runtime_error::object_not_set);
    const Object enumerator = enumerator_of(collection);
    std::vector<Variant> items;
    for (;;) {
        abi::VARIANT raw{};
        std::uint32_t fetched = 0;
        const abi::HRESULT code =
            abi::call_slot<abi::HRESULT, std::uint32_t, abi::VARIANT*, std::uint32_t*>(
                enumerator.get(), abi::slot_enum_next, 1, &raw, &fetched);
        if (abi::failed(code)) detail::raise_result(code);
        if (fetched == 0) return items;
        items.push_back(Variant::attach(raw));
    }
}

}  // namespace late
}  // namespace orvo
