#include "platform/values/value_bytes.h"

#include <bit>
#include <cstring>
#include <limits>
#include <new>

#include "platform/system/vartypes.h"
#include "platform/values/array_view.h"
#include "platform/values/failure.h"

namespace orvo {
namespace {

// A value is its type in one byte, with the highest bit for an array, and its content: the bytes of
// a plain one, a text as a block; of an array the number of its elements and one (0: it was never
// dimensioned), its lower bound and the elements.
static_assert(std::endian::native == std::endian::little);
constexpr unsigned array_mark = 0x80;

[[noreturn]] void refuse(TextView reason) {
    throw Failure(runtime_error::invalid_call, {}, Text(reason));
}

template <class T>
void append_plainly(std::string& bytes, const T& value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <class T>
std::optional<T> try_take_plainly(std::string_view& bytes) {
    if (bytes.size() < sizeof(T)) return {};
    T value;
    std::memcpy(&value, bytes.data(), sizeof value);
    bytes.remove_prefix(sizeof value);
    return value;
}

void append_text(std::string& bytes, abi::BSTR text) {
    const std::size_t size = text ? abi::SysStringByteLen(text) : 0;
    append_block(bytes, size ? std::string_view(reinterpret_cast<const char*>(text), size)
                             : std::string_view());
}

abi::BSTR try_take_text(std::string_view& bytes) {
    const auto block = try_take_block(bytes);
    if (!block || block->size() > std::numeric_limits<std::int32_t>::max()) return nullptr;
    abi::BSTR text =
        abi::SysAllocStringByteLen(block->data(), static_cast<std::uint32_t>(block->size()));
    if (!text) raise_runtime_error(runtime_error::out_of_memory);
    return text;
}

void append(std::string& bytes, const Variant& value, int depth);
std::optional<Variant> try_take(std::string_view& bytes, int depth);

void append_array(std::string& bytes, const detail::ArrayView& view, int depth) {
    if (!view.is_vector()) raise_runtime_error(runtime_error::type_mismatch);
    if (depth == deepest_value) refuse(u"Arrays stand in each other too deeply");
    const abi::TypeRow& row = abi::row_of(view.type);
    const std::size_t size = view.size();
    append_number(bytes, view.array ? std::uint64_t{size} + 1 : 0);
    if (view.array) append_plainly(bytes, view.lower_bound());
    if (size == 0) return;
    if (abi::is_plain(view.type)) {
        bytes.append(static_cast<const char*>(view.array->pvData), size * row.size);
    } else if (row.content == abi::Content::text) {
        for (std::size_t i = 0; i < size; ++i)
            append_text(bytes, static_cast<const abi::BSTR*>(view.array->pvData)[i]);
    } else if (row.content == abi::Content::variant) {
        for (std::size_t i = 0; i < size; ++i)
            append(bytes, std::launder(static_cast<const Variant*>(view.array->pvData))[i],
                   depth + 1);
    } else {
        for (std::size_t i = 0; i < size; ++i)
            if (static_cast<abi::IUnknown* const*>(view.array->pvData)[i])
                refuse(u"An object cannot be kept");
        bytes.append(size, '\0');
    }
}

void append(std::string& bytes, const Variant& value, int depth) {
    const abi::VARIANT& raw = *value.get();
    if (raw.vt & abi::VT_ARRAY) {
        const detail::ArrayView view = detail::array_of(raw);
        if (abi::row_of(view.type).size == 0) raise_runtime_error(runtime_error::type_mismatch);
        bytes += static_cast<char>(view.type | array_mark);
        return append_array(bytes, view, depth);
    }
    const abi::TypeRow& row = abi::row_of(raw.vt);
    if (row.content == abi::Content::unknown || row.content == abi::Content::variant)
        raise_runtime_error(runtime_error::type_mismatch);
    bytes += static_cast<char>(raw.vt);
    if (row.content == abi::Content::text) {
        append_text(bytes, raw.bstrVal);
    } else if (row.content == abi::Content::object) {
        if (raw.punkVal) refuse(u"An object cannot be kept");
    } else if (row.content == abi::Content::decimal) {
        abi::DECIMAL decimal = abi::decimal_of(raw);
        decimal.wReserved = 0;
        append_plainly(bytes, decimal);
    } else {
        bytes.append(reinterpret_cast<const char*>(&raw.llVal), row.size);
    }
}

// The elements of an array that is theirs alone; false where they do not stand there.
bool try_take_elements(std::string_view& bytes, const detail::ArrayView& view, int depth) {
    const abi::TypeRow& row = abi::row_of(view.type);
    const std::size_t size = view.size();
    if (abi::is_plain(view.type)) {
        std::memcpy(view.array->pvData, bytes.data(), size * row.size);
        bytes.remove_prefix(size * row.size);
        return true;
    }
    for (std::size_t i = 0; i < size; ++i) {
        if (row.content == abi::Content::text) {
            abi::BSTR text = try_take_text(bytes);
            if (!text) return false;
            static_cast<abi::BSTR*>(view.array->pvData)[i] = text;
        } else if (row.content == abi::Content::variant) {
            auto element = try_take(bytes, depth + 1);
            if (!element) return false;
            std::launder(static_cast<Variant*>(view.array->pvData))[i] = std::move(*element);
        } else {
            if (bytes.empty() || bytes.front() != 0) return false;
            bytes.remove_prefix(1);
        }
    }
    return true;
}

std::optional<Variant> try_take_array(std::string_view& bytes, abi::VARTYPE type, int depth) {
    const abi::TypeRow& row = abi::row_of(type);
    if (row.size == 0 || depth == deepest_value) return {};
    const auto number = try_take_number(bytes);
    if (!number) return {};
    abi::VARIANT raw{};
    if (*number > 0) {
        const std::uint64_t count = *number - 1;
        const auto lower = try_take_plainly<std::int32_t>(bytes);
        // Whatever the count says: what is allocated has come.
        if (!lower || count > bytes.size() / (abi::is_plain(type) ? row.size : 1)) return {};
        if (*lower + static_cast<std::int64_t>(count) - 1 >
            std::numeric_limits<std::int32_t>::max())
            return {};
        raw.parray = abi::SafeArrayCreateVector(type, *lower, static_cast<std::uint32_t>(count));
        if (!raw.parray) raise_runtime_error(runtime_error::out_of_memory);
    }
    raw.vt = static_cast<abi::VARTYPE>(abi::VT_ARRAY | type);
    Variant array = Variant::attach(raw);
    const detail::ArrayView view = detail::array_of(*array.get());
    if (view.size() > 0 && !try_take_elements(bytes, view, depth)) return {};
    return array;
}

std::optional<Variant> try_take(std::string_view& bytes, int depth) {
    const auto tag = try_take_plainly<std::uint8_t>(bytes);
    if (!tag) return {};
    const auto type = static_cast<abi::VARTYPE>(*tag & ~array_mark);
    if (*tag & array_mark) return try_take_array(bytes, type, depth);
    const abi::TypeRow& row = abi::row_of(type);
    abi::VARIANT raw{};
    raw.vt = type;
    switch (row.content) {
        case abi::Content::unknown:
        case abi::Content::variant:
            return {};
        case abi::Content::object:
            break;
        case abi::Content::text:
            raw.bstrVal = try_take_text(bytes);
            if (!raw.bstrVal) return {};
            break;
        case abi::Content::decimal: {
            const auto decimal = try_take_plainly<abi::DECIMAL>(bytes);
            if (!decimal || decimal->wReserved != 0) return {};
            abi::put_decimal(raw, *decimal);
            break;
        }
        default:
            if (bytes.size() < row.size) return {};
            std::memcpy(&raw.llVal, bytes.data(), row.size);
            bytes.remove_prefix(row.size);
    }
    return Variant::attach(raw);
}

}  // namespace

void append_value(std::string& bytes, const Variant& value) { append(bytes, value, 0); }

std::optional<Variant> try_take_value(std::string_view& bytes) { return try_take(bytes, 0); }

void append_number(std::string& bytes, std::uint64_t number) {
    for (; number >= 0x80; number >>= 7) bytes += static_cast<char>(number | 0x80);
    bytes += static_cast<char>(number);
}

std::optional<std::uint64_t> try_take_number(std::string_view& bytes) {
    std::uint64_t number = 0;
    for (int shift = 0; shift < 64; shift += 7) {
        const auto byte = try_take_plainly<std::uint8_t>(bytes);
        if (!byte) return {};
        const std::uint64_t bits = *byte & 0x7F;
        if (bits << shift >> shift != bits) return {};
        number |= bits << shift;
        // A last byte of nothing is a longer form of the same number.
        if (!(*byte & 0x80)) return bits == 0 && shift > 0 ? std::nullopt : std::optional(number);
    }
    return {};
}

void append_block(std::string& bytes, std::string_view block) {
    append_number(bytes, block.size());
    bytes += block;
}

std::optional<std::string_view> try_take_block(std::string_view& bytes) {
    const auto size = try_take_number(bytes);
    if (!size || *size > bytes.size()) return {};
    const std::string_view block = bytes.substr(0, static_cast<std::size_t>(*size));
    bytes.remove_prefix(block.size());
    return block;
}

}  // namespace orvo
