#include "platform/interfaces/type_information.h"

#include <span>

#include "platform/system/type_information.h"

namespace orvo::detail {
namespace {

using abi::HRESULT;

enum : std::size_t {
    slot_get_function = 5,
    slot_get_variable = 6,
    slot_get_other_type = 8,
    slot_get_referred_type = 14,
    slot_release_function = 20,
    slot_release_variable = 21,
};

// The platform's own structures, as far as they are read here.
struct TypeDescription {
    const TypeDescription* referred;
    abi::VARTYPE type;
};

struct ElementDescription {
    TypeDescription type;
    void* otherwise;
    std::uint16_t flags;
};
static_assert(sizeof(ElementDescription) == 32);

struct FunctionDescription {
    abi::DISPID member;
    HRESULT* results;
    ElementDescription* parameters;
    std::int32_t kind;
    std::int32_t invocation;  // DISPATCH_* that it is called with
    std::int32_t convention;
    std::int16_t parameter_count;
    std::int16_t optional_count;
    std::int16_t offset;
    std::int16_t result_count;
    ElementDescription answer;
};

struct VariableDescription {
    abi::DISPID member;
    char16_t* schema;
    void* value;
    ElementDescription type;
    std::uint16_t flags;
};

constexpr std::int32_t kind_interface = 3;
constexpr std::int32_t kind_dispatch = 4;
constexpr std::uint16_t variable_is_read_only = 1;
constexpr std::uint16_t parameter_is_locale = 4;
constexpr std::uint16_t parameter_is_answer = 8;
constexpr std::uint16_t parameter_may_be_missing = 0x10 | 0x20;  // optional; it has a default
constexpr abi::VARTYPE type_pointer = 26;
constexpr std::uint32_t late_bound_side = 0xFFFFFFFF;  // of a dual interface

// A structure that type information lends, and takes back.
template <class T>
class Lent {
public:
    template <class... A>
    Lent(abi::IUnknown* info, std::size_t get, std::size_t release, A... arguments)
        : info_(info), release_(release) {
        if (abi::failed(abi::call_slot<HRESULT, A..., T**>(info, get, arguments..., &lent_)))
            lent_ = nullptr;
    }
    ~Lent() {
        if (lent_ != nullptr) abi::call_slot<void, T*>(info_, release_, lent_);
    }
    Lent(const Lent&) = delete;
    Lent& operator=(const Lent&) = delete;

    explicit operator bool() const { return lent_ != nullptr; }
    const T* operator->() const { return lent_; }
    const T& operator*() const { return *lent_; }

private:
    abi::IUnknown* info_;
    std::size_t release_;
    T* lent_ = nullptr;
};

bool is_object(const TypeDescription& type) {
    return type.type == abi::VT_DISPATCH || type.type == type_pointer;
}

void add(const FunctionDescription& function, late::MemberKind& kind) {
    if (function.invocation & (abi::DISPATCH_PROPERTYPUT | abi::DISPATCH_PROPERTYPUTREF)) {
        kind.is_writable = true;
        return;
    }
    if (function.invocation == abi::DISPATCH_METHOD)
        kind.is_method = true;
    else
        kind.is_readable = true;
    kind.answers_object = is_object(function.answer.type);
    kind.parameters = kind.required = 0;
    const bool takes_any = function.optional_count < 0;  // the last one stands for any number
    for (const ElementDescription& parameter :
         std::span(function.parameters, static_cast<std::size_t>(function.parameter_count))) {
        if (parameter.flags & (parameter_is_locale | parameter_is_answer)) continue;
        ++kind.parameters;
        if (!(parameter.flags & parameter_may_be_missing)) ++kind.required;
    }
    if (takes_any && kind.required > 0) --kind.required;
}

// The late-bound side of an object's type information; empty where there is none.
Object late_bound_information(const Object& object) {
    Object dispatch;
    if (abi::failed(abi::query_interface(object.get(), abi::iid_dispatch,
                                         reinterpret_cast<void**>(dispatch.put()))))
        return {};
    Object info;
    std::uint32_t count = 0;
    if (abi::failed(abi::call_slot<HRESULT, std::uint32_t*>(
            dispatch.get(), abi::slot_get_type_info_count, &count)) ||
        count == 0 ||
        abi::failed(abi::call_slot<HRESULT, std::uint32_t, abi::LCID, abi::IUnknown**>(
            dispatch.get(), abi::slot_get_type_info, 0, abi::fixed_locale, info.put())) ||
        !info)
        return {};
    const Lent<abi::TypeAttributes> attributes(info.get(), abi::slot_type_get_attributes,
                                               abi::slot_type_release_attributes);
    if (!attributes || attributes->kind == kind_dispatch) return attributes ? info : Object();
    std::uint32_t reference = 0;
    Object other;
    if (attributes->kind != kind_interface || !(attributes->flags & abi::type_is_dual) ||
        abi::failed(abi::call_slot<HRESULT, std::uint32_t, std::uint32_t*>(
            info.get(), slot_get_other_type, late_bound_side, &reference)) ||
        abi::failed(abi::call_slot<HRESULT, std::uint32_t, abi::IUnknown**>(
            info.get(), slot_get_referred_type, reference, other.put())))
        return {};
    return other;
}

}  // namespace

std::optional<late::MemberKind> try_described_kind(const Object& object, late::MemberId member) {
    const Object info = late_bound_information(object);
    if (!info) return std::nullopt;
    const Lent<abi::TypeAttributes> attributes(info.get(), abi::slot_type_get_attributes,
                                               abi::slot_type_release_attributes);
    if (!attributes) return std::nullopt;
    late::MemberKind kind{.is_foreign = true};
    bool is_known = false;
    for (std::uint32_t i = 0; i < attributes->functions; ++i) {
        const Lent<FunctionDescription> function(info.get(), slot_get_function,
                                                 slot_release_function, i);
        if (!function || function->member != member) continue;
        add(*function, kind);
        is_known = true;
    }
    for (std::uint32_t i = 0; i < attributes->variables; ++i) {
        const Lent<VariableDescription> variable(info.get(), slot_get_variable,
                                                 slot_release_variable, i);
        if (!variable || variable->member != member) continue;
        kind.is_readable = is_known = true;
        kind.is_writable = !(variable->flags & variable_is_read_only);
        kind.answers_object = is_object(variable->type.type);
    }
    if (!is_known) return std::nullopt;
    return kind;
}

}  // namespace orvo::detail
